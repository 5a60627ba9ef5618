#pragma once

#include <cstdint>

namespace Lattice {

/// Milliseconds that a login waits when its caller doesn't say.
inline constexpr uint32_t kLoginTimeoutMs = 15000;

inline uint32_t LoginTimeout(const uint32_t* timeoutMs) {
    return timeoutMs != nullptr && *timeoutMs != 0 ? *timeoutMs : kLoginTimeoutMs;
}

}  // namespace Lattice
