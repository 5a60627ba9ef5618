#include "outcome_text.h"

namespace nas {

std::string orDash(const std::string& name) {
    return name.empty() ? "-" : name;
}

std::string outcomeText(const LedgerEntry& entry, const std::string& statusWord) {
    std::string text = " user=" + orDash(entry.user) + " http=" + std::to_string(entry.http);
    if (entry.status != LedgerEntry::kNoStatus) {
        text.append(" ").append(statusWord).append("=").append(std::to_string(entry.status));
    }
    if (entry.http >= 400) {
        text += " refused: " + entry.reason;
    } else if (!entry.reason.empty()) {
        text += " (" + entry.reason + ")";
    }
    return text;
}

}  // namespace nas
