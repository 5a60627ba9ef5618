#pragma once

#include "calls.h"

namespace cloud {

// Refuses headers that aren't exactly the call's.
void checkHeaders(const HttpRequest& http, const Call& call);

// The access token in Authorization; Refusal if it isn't there as it must be.
std::string bearerOf(const HttpRequest& http);

}  // namespace cloud
