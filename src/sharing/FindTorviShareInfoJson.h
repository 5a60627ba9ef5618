#pragma once

#include <string>
#include <vector>

#include "WebFileManShareAPI.h"

/// The reply of "nubo_find_share": the shares below a path.
class TORVIAPI_EXPORT CFindTorviShareInfoJson {
public:
    /// The path that shares must lie below; given before the reply is parsed.
    void SetFilter(std::wstring path) { filter = std::move(path); }
    int Parser(char* text);
    int GetStatus() const { return status; }

    std::wstring filter;
    int32_t status = -1;
    std::vector<_WFM_TORVI_SHARE_INFORMATION> shares;
};
