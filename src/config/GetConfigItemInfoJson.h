#pragma once

#include <string>
#include <vector>

#include "WebFileManAPI.h"

/// One item of a device's configuration, its value decoded.
struct _GET_DEVICE_CONFIG_ITEM_INFO {
    uint32_t flag = 0;
    std::wstring value;
};

/// The reply of "nubo_get_device_config".
class TORVIAPI_EXPORT CGetConfigItemInfoJson {
public:
    int Parser(char* text);
    int GetStatus() const { return status; }

    int32_t status = -1;
    std::wstring deviceName;
    std::wstring deviceUID;
    int32_t total = 0;
    /// Those that the item table knows.
    std::vector<_GET_DEVICE_CONFIG_ITEM_INFO> items;
};
