#pragma once

#include <vector>

#include "WebFileManShareAPI.h"

/// The reply of a link's own "get_list".
class TORVIAPI_EXPORT CShareLinkItemListJson {
public:
    int Parser(char* text);

    uint32_t total = 0;
    std::vector<_WFM_SHARE_LINK_ITEM_INFO> items;
};
