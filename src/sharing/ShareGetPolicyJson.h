#pragma once

#include "WebFileManAPI.h"

/// The reply of "nubo_get_policy".
class TORVIAPI_EXPORT CShareGetPolicyJson {
public:
    int Parser(char* text);
    uint32_t GetPolicy() const { return policy; }

    uint32_t policy = 0;
};
