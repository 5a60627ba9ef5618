#pragma once

#include "calls.h"

namespace cloud {

// The call that a request is; sets what its path names. Refusal if there is none.
const Call& findCall(const HttpRequest& http, std::string& id);

// Reads the query or the form, which must be exactly the call's.
void readFields(Request& request, const Call& call);

}  // namespace cloud
