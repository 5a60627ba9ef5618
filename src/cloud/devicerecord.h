#pragma once

#include <memory>

#include "WebFileManAPI.h"

namespace Lattice {

/// Frees a device with the lists in it; null is safe.
struct FreeDevice {
    void operator()(_NAS_DEVICE_INFORMATION_API_V11* device) const;
};
using DevicePtr = std::unique_ptr<_NAS_DEVICE_INFORMATION_API_V11, FreeDevice>;

}  // namespace Lattice
