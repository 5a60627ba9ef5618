#pragma once

#include <cstdint>
#include <vector>

#include "WebFileManShareAPI.h"

/// The reply of "get_ad_info": the directory domains that the server knows.
class TORVIAPI_EXPORT CShareGetAdInfoJson {
public:
    int Parser(char* text);
    /// 0, or -1 for any refusal.
    int GetStatus() const { return status; }

    int32_t status = -1;
    int32_t adSupport = 0;
    int32_t trustedDomainEnable = 0;
    uint32_t count = 0;  ///< the server's own; `number` where it doesn't count
    /// How many records are kept; those beyond only count. A reply may hold more than memory does.
    uint32_t room = UINT32_MAX;
    uint32_t number = 0;
    std::vector<_WFM_TORVI_AD_INFORMATION> domains;
};
