#pragma once

#include <cstdint>

#include "WebFileManAPI.h"

/// The reply of "device/count": how many devices a user has.
class TORVIAPI_EXPORT CZenoGetAllDeviceCountJson {
public:
    int Parser(char* text);
    int GetStatus() const { return status; }

    int32_t code = -1;
    int32_t status = -1;
    int32_t count = 0;
};
