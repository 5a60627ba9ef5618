#pragma once

#include <string>
#include <vector>

#include "WebFileManAPI.h"

/// The reply of "get_tree": the folders below one node. An array is the good answer, an object the bad one.
class TORVIAPI_EXPORT CGetFolderInfoJson {
public:
    /// `filter` is one folder's name, or "*" for all.
    CGetFolderInfoJson(std::wstring filter, uint32_t fieldMask)
        : fieldMask(fieldMask), filter(std::move(filter)) {}

    int Parser(char* text);
    int GetStatus() const { return status; }

    int32_t status = -1;
    uint32_t fieldMask;
    std::wstring filter;
    std::vector<_WFM_PATH_INFORMATION> records;
};
