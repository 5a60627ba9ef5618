#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace nas {

class Faults;
class Ledger;

// The control requests that every stand-in has, "POST /control/faults" and its kin; nothing for another one.
std::optional<nlohmann::json> runCommonControl(Faults& faults, Ledger& ledger, const std::string& what,
                                               const std::string& body);

}  // namespace nas
