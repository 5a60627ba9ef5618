#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of "nubo_get_static_information": what doesn't change while a server runs.
class TORVIAPI_EXPORT CTorviGetNASStaticInfoJson {
public:
    int Parser(char* text);
    int GetStatus() const { return status; }

    int32_t status = -1;
    std::wstring model;
    std::wstring firmwareVersion;
    int64_t queueLimit = 0;
    int64_t messageQueueLimit = 0;
};
