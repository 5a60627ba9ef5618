#pragma once

#include <cstdint>

namespace torvi {

/// The library's progress callback. Its data is the transfer's Progress; an interrupt stops the transfer.
uint32_t onProgress(int64_t total, int64_t transferred, int64_t streamTotal, int64_t streamTransferred,
                    uint32_t stream, uint32_t reason, void* source, void* destination, void* data);

}  // namespace torvi
