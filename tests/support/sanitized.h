#pragma once

extern "C" void __asan_init() __attribute__((weak));

/// Whether this process runs under AddressSanitizer, which not every test's own code is built with.
inline bool sanitized() {
    return __asan_init != nullptr;
}
