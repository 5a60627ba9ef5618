#pragma once

#include <cstddef>

namespace nas {

// All of the bytes, or it throws.
void writeAll(int fd, const char* data, size_t length);

}  // namespace nas
