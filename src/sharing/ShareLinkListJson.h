#pragma once

#include <cstdint>
#include <vector>

#include "WebFileManShareAPI.h"

/// The reply of "get_share_list".
class TORVIAPI_EXPORT CShareLinkListJson {
public:
    int Parser(char* text);
    /// The server's own number.
    int GetStatus() const { return status; }

    int32_t status = -1;
    int32_t maxShareFile = 0;
    int32_t total = 0;
    /// How many records are kept; those beyond only count. A reply may hold more than memory does.
    uint32_t room = UINT32_MAX;
    uint32_t number = 0;
    std::vector<_WFM_SHARE_LINK_INFO> links;
};
