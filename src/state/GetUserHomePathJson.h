#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of "nubo_get_user_home".
class TORVIAPI_EXPORT CGetUserHomePathJson {
public:
    int Parser(char* text);
    int GetStatus() const { return status; }
    const std::wstring& GetHomePath() const { return homePath; }

    int32_t status = -1;
    std::wstring homePath;
};
