#pragma once

#include <string>
#include <vector>

#include "WebFileManAPI.h"

/// What the two replies about sync folders share. They have no common shape, but common records.
class TORVIAPI_EXPORT CGetSyncingFolderListBaseJson {
public:
    CGetSyncingFolderListBaseJson() = default;
    CGetSyncingFolderListBaseJson(const CGetSyncingFolderListBaseJson&) = delete;
    CGetSyncingFolderListBaseJson& operator=(const CGetSyncingFolderListBaseJson&) = delete;
    virtual ~CGetSyncingFolderListBaseJson() = default;

    virtual int Parser(char* text) = 0;

    /// Whether a text is the name of a unit, in whatever case.
    bool IsValidSizeUnit(std::wstring unit) const;
    /// A number of units in bytes; 0 for what isn't a whole number, -1 for a negative one or another unit.
    int64_t GetFileSizeByte(std::wstring unit, std::wstring number) const;

    int32_t status = -1;  ///< the server's own number
    int32_t total = -1;
    uint32_t adminGroup = 0;
    std::vector<_NAS_SYNCING_FOLDER_INFORMATION> folders;
};
