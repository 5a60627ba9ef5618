#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "WebFileManShareAPI.h"

/// One team folder, as the server tells it.
struct _TORVI_TEAM_FOLDER_JSON_INFO {
    int32_t nType = 0;
    int32_t nStatus = 0;
    std::wstring strOwner;
    std::wstring strShareID;
    std::wstring strParentID;
    std::wstring strNasID;
    std::wstring strName;
    std::wstring strPath;
    std::wstring strOriginalPath;
    std::vector<_WFM_TORVI_TEAM_FOLDER_RECEIVER_INFO> receivers;
};

/// The reply of "nubo_team_folder_get_list".
class TORVIAPI_EXPORT CShareGetTeamFolderJson {
public:
    int Parser(char* text);
    /// The server's own number.
    int GetStatus() const { return status; }

    int32_t status = -1;
    uint32_t total = 0;
    /// How many folders are kept. A reply may hold more than memory does.
    uint32_t room = UINT32_MAX;
    std::vector<_TORVI_TEAM_FOLDER_JSON_INFO> folders;
};
