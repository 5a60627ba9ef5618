#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of a session that is opened from a token.
class TORVIAPI_EXPORT CActivateJson {
public:
    int Parser(char* text);
    int GetStatus() const { return status; }
    const std::wstring& GetServerName() const { return servername; }
    /// 1 and `*out` written if the reply says whether the user is an administrator, otherwise 0.
    int IsAdminGroup(bool* out) const;

    int32_t status = -1;
    int32_t isAdmin = -1;
    std::wstring servername;
};
