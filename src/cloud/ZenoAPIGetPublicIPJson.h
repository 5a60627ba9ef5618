#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of "utility/geo/search": the address from which the service was asked.
class TORVIAPI_EXPORT CZenoAPIGetPublicIPJson {
public:
    int Parser(char* text);
    int GetStatus() const { return status; }

    int32_t code = -1;
    int32_t status = -1;
    std::wstring message;
    std::wstring publicIP;
};
