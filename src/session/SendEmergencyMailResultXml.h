#pragma once

#include "WebFileManAPI.h"

/// The reply to the wish for an emergency code by mail.
class TORVIAPI_EXPORT CSendEmergencyMailResultXml {
public:
    int Parser(char* text);
    int GetResult() const { return result; }
    bool IsMaxTryFailed() const { return tryLimit >= 0 && tryLimit <= tryCount; }

    int32_t result = 0;
    int32_t tryLimit = -1;
    int32_t tryCount = 0;
};
