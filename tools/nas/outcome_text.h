#pragma once

#include <string>

#include "ledger.h"

namespace nas {

// A name in a line of the log, "-" if there is none.
std::string orDash(const std::string& name);

// " user=anna http=200 status=1 (why)": how a request ended, for the log. The word is what the reply calls
// its number.
std::string outcomeText(const LedgerEntry& entry, const std::string& statusWord);

}  // namespace nas
