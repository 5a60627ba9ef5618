#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace nas {

// The text of a value, whatever bytes stand in its own texts: what isn't UTF-8 there is replaced.
std::string dumped(const nlohmann::json& json);

}  // namespace nas
