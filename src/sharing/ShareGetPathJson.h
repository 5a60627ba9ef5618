#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of "nubo_get_share_path".
class TORVIAPI_EXPORT CShareGetPathJson {
public:
    int Parser(char* text);
    int GetStatus() const { return status; }
    const std::wstring& GetPath() const { return path; }

    int32_t status = -1;
    std::wstring path;
};
