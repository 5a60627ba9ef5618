#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of the server's general authentication, which speaks XML.
class TORVIAPI_EXPORT AuthLoginResultXml {
public:
    int Parser(char* text);
    /// 0 for a login that passed, otherwise -2.
    int GetAuthStatus() const { return authStatus; }
    int GetErrorCode() const { return errorCode; }
    const std::wstring& GetSid() const { return sid; }
    int GetIsAdmin() const { return isAdmin; }
    const std::wstring& GetNToken() const { return ntoken; }
    const std::wstring& GetServerName() const { return servername; }
    bool IsMaxTryFailed() const { return tryLimit >= 0 && tryLimit <= tryCount; }

    int32_t authStatus = -2;
    int32_t errorCode = 0;
    std::wstring sid;
    std::wstring ntoken;
    std::wstring servername;
    int32_t isAdmin = 0;
    int32_t need2sv = 0;
    int32_t lostPhone = 0;
    int32_t tryLimit = -1;
    int32_t tryCount = 0;
};
