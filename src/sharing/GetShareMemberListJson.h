#pragma once

#include <string>
#include <vector>

#include "WebFileManAPI.h"

/// One member of a share, as the server tells it.
struct TorviShareMemberInfo {
    std::wstring name;
    int32_t shareMember = 0;
    int32_t eventStatus = 0;
    int32_t eventID = 0;
    std::wstring description;
    int32_t torviUser = 0;
};

/// The reply of "nubo_team_folder_get_member" and "nubo_get_share_member".
class TORVIAPI_EXPORT CGetShareMemberListJson {
public:
    int Parser(char* text);
    /// The server's own number.
    int GetStatus() const { return status; }

    int32_t status = -1;
    uint32_t total = 0;
    std::vector<TorviShareMemberInfo> members;
};
