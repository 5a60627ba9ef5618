#pragma once

#include <nlohmann/json.hpp>

#include "tree.h"

namespace nas {

// An entry as listings and stat tell it, but for who shares it. Sizes are texts: readers of numbers stop at
// 32 bits.
nlohmann::json entryJson(const Entry& entry);

}  // namespace nas
