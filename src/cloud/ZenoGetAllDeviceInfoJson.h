#pragma once

#include <vector>

#include "cloud/devicerecord.h"

/// The reply of "device" and "device/search": the devices of a user.
class TORVIAPI_EXPORT CZenoGetAllDeviceInfoJson {
public:
    int Parser(char* text);
    int GetStatus() const { return status; }

    int32_t code = -1;
    int32_t status = -1;
    std::vector<Lattice::DevicePtr> devices;
};
