#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of "get_share_link", scanned as plain text.
class TORVIAPI_EXPORT CWebFileManGetLinkXml {
public:
    int Parser(char* text);
    int GetStatus() const { return status; }

    /// The value behind a key, without blanks and quotes; false, and `out` untouched, where there is none
    /// whose bytes are fewer than `capacity`.
    static bool GetValue(const char* text, const char* key, wchar_t* out, int capacity);

    int32_t status = -1;
    std::wstring linkURL;
    std::wstring expireTime;
};
