#pragma once

#include "WebFileManShareAPI.h"

/// The reply of "nubo_get_config_acl".
class TORVIAPI_EXPORT CGetConfigACLInfoJson {
public:
    int Parser(char* text);
    int GetStatus() const { return status; }

    int32_t status = -1;
    int32_t total = 0;
    WFM_TORVI_CONFIG_ACL_INFO rights{};
};
