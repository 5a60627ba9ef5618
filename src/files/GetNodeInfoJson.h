#pragma once

#include <string>
#include <vector>

#include "WebFileManAPI.h"

/// The reply of "get_list": one page of a folder.
class TORVIAPI_EXPORT CGetNodeInfoJson {
public:
    virtual int Parser(char* text);  // first in the class's table; it must stay there
    virtual ~CGetNodeInfoJson() = default;

    int GetStatus() const { return status; }

    int32_t status = -1;
    uint32_t total = 0;
    uint32_t nextStart = 0;  ///< grows by the whole page, whatever the pattern keeps
    std::wstring pattern;
    uint32_t typeFilter = 3;
    uint32_t fieldMask = 0;
    std::vector<_WFM_PATH_INFORMATION> records;
};
