#pragma once

#include "calls.h"

namespace nas {

// The part of addLinkCalls that updates, deletes and lists links that are there.
void addLinkChangeCalls(std::vector<Call>& calls);

// The address of a link as "result", and what went wrong beside it.
Answer linkResult(const std::string& url, bool mailed, bool inTime);

}  // namespace nas
