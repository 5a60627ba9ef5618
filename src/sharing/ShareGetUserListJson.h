#pragma once

#include <string>
#include <vector>

#include "WebFileManAPI.h"

/// One user of the server.
struct TorviUserInfo {
    std::wstring name;
    std::wstring policy;
    std::wstring description;
    int32_t torviUser = 0;
};

/// The reply of "nubo_get_user_list".
class TORVIAPI_EXPORT CShareGetUserListJson {
public:
    int Parser(char* text);
    /// The server's own number.
    int GetStatus() const { return status; }

    int32_t status = -1;
    uint32_t total = 0;
    std::vector<TorviUserInfo> users;
};
