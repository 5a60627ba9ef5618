#pragma once

#include <vector>

#include "WebFileManAPI.h"

/// The reply of "nubo_get_quota_info": how much room a user has.
class TORVIAPI_EXPORT CGetUserQuotaJson {
public:
    int Parser(char* text);
    int GetStatus() const { return status; }

    int32_t status = -1;
    int64_t volumeFree = 0;
    int64_t volumeTotal = 0;
    std::vector<USER_QUOTA_INFO> quotas;
    bool quotaEnabled = false;
};
