#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of "get_share_link" to a selection of files.
class TORVIAPI_EXPORT CGetandCreateLinkJson {
public:
    int Parser(char* text);
    int GetStatus() const { return status; }

    int32_t status = -1;
    bool multiple = false;
    std::wstring linkURL;
    std::wstring linkName;
    std::wstring expireTime;
    std::wstring ssid;
};
