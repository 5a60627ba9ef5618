#pragma once

#include <cstdint>
#include <vector>

#include "WebFileManShareAPI.h"

/// The reply of "nubo_get_device_config_list".
class TORVIAPI_EXPORT CGetDeviceListJson {
public:
    int Parser(char* text);
    int GetStatus() const { return status; }

    int32_t status = -1;
    uint32_t total = 0;
    /// How many records are kept; those beyond only count. A reply may hold more than memory does.
    uint32_t room = UINT32_MAX;
    uint32_t number = 0;
    std::vector<_WFM_TORVI_DEVICE_INFORMATION> devices;
};
