#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply to the question for the system's own session.
class TORVIAPI_EXPORT CGetSystemJson {
public:
    int Parser(char* text);
    int GetStatus() const { return status; }
    const std::wstring& GetSid() const { return sid; }

    int32_t status = -1;
    std::wstring sid;
};
