#pragma once

#include <vector>

#include "WebFileManShareAPI.h"

/// The reply of "nubo_get_my_event".
class TORVIAPI_EXPORT CShareGetEventJson {
public:
    int Parser(char* text);
    int GetStatus() const { return status; }

    int32_t status = -1;
    uint32_t total = 0;
    std::vector<_WFM_TORVI_EVENT_INFORMATION> events;
};
