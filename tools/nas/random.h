#pragma once

#include <cstddef>
#include <string>

namespace nas {

// So many random bytes as hexadecimal digits.
std::string randomHex(size_t bytes);

}  // namespace nas
