#include "rule_text.h"

namespace nas {

std::vector<std::string> splitRule(const std::string& rule, size_t most) {
    std::vector<std::string> pieces;
    size_t from = 0;
    for (size_t colon = 0; pieces.size() + 1 < most && (colon = rule.find(':', from)) != std::string::npos;
         from = colon + 1) {
        pieces.push_back(rule.substr(from, colon - from));
    }
    pieces.push_back(rule.substr(from));
    return pieces;
}

}  // namespace nas
