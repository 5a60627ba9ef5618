#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of a web file manager login.
class TORVIAPI_EXPORT CWebFileManLogin {
public:
    int Parser(char* text);
    /// The server's status as a client code.
    int GetAuthResult() const { return status; }
    const std::wstring& GetSid() const { return sid; }
    const std::wstring& GetServerName() const { return servername; }
    bool GetIsAdmin() const { return isAdmin; }
    /// The form of the second step that is wanted, 0 for none.
    int IsNeed2StepVerification() const { return need2sv != 0 ? lostPhone : 0; }
    bool IsMaxTryFailed() const { return tryLimit >= 0 && tryLimit <= tryCount; }

    int32_t result = -1;  ///< 1 for a login that was accepted
    std::wstring sid;
    std::wstring servername;
    bool isAdmin = false;
    int32_t status = -1;
    int32_t need2sv = 0;
    int32_t lostPhone = 0;
    int32_t tryLimit = -1;
    int32_t tryCount = 0;
};
