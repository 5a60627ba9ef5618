#pragma once

#include <cstdint>
#include <vector>

#include "WebFileManShareAPI.h"

/// The reply of a link's own "get_list".
class TORVIAPI_EXPORT CShareLinkItemListJson {
public:
    int Parser(char* text);

    uint32_t total = 0;
    /// How many records are kept; those beyond only count. A reply may hold more than memory does.
    uint32_t room = UINT32_MAX;
    uint32_t number = 0;
    std::vector<_WFM_SHARE_LINK_ITEM_INFO> items;
};
