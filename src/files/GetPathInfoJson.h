#pragma once

#include <string>
#include <vector>

#include "WebFileManAPI.h"

/// The reply of "stat": what one path is.
class TORVIAPI_EXPORT CGetPathInfoJson {
public:
    CGetPathInfoJson(std::wstring expectedName, uint32_t typeFilter, uint32_t fieldMask)
        : expectedName(std::move(expectedName)), typeFilter(typeFilter), fieldMask(fieldMask) {}

    int Parser(char* text);
    int GetStatus() const { return status; }

    int32_t status = -1;
    std::wstring expectedName;
    uint32_t typeFilter;
    uint32_t fieldMask;
    std::vector<_WFM_PATH_INFORMATION> records;
};
