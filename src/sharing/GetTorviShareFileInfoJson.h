#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply to the question for a shared folder.
class TORVIAPI_EXPORT CGetTorviShareFileInfoJson {
public:
    int Parser(char* text);
    int GetStatus() const { return status; }
    /// 0: it is there and shared; 2: it is gone; 13: the reply doesn't say enough.
    uint32_t GetFolderStatus() const { return folderStatus; }

    int32_t status = -1;
    uint32_t folderStatus = 0;
    int32_t eventID = 0;
    bool fileExists = false;
    int32_t shareIDStatus = 0;
    int32_t eventStatus = 0;
    int32_t nuboType = 0;
    std::wstring shareID;
    std::wstring nasID;
};
