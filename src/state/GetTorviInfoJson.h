#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of "nubo_get_nubo_info": what the sync service has for this user.
class TORVIAPI_EXPORT CGetTorviInfoJson {
public:
    int Parser(char* text);
    /// Whether the reply has the four keys that it must have.
    bool GetResult() const { return result; }
    int GetStatus() const { return status; }

    bool result = false;
    int32_t status = -1;
    bool functionEnable = false;
    bool userEnable = false;
    bool homeIsExist = true;
    bool teamFolderIsExist = true;
    bool clusterSupport = false;
    int32_t clusterStatus = 0;
    std::wstring slaveId;
};
