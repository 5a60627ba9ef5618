#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply to the question whose a token is.
class TORVIAPI_EXPORT CZenoGetTokenInfoJson {
public:
    int Parser(char* text);
    void store(_CLOUD_TOKEN_INFORMATION& token) const;

    std::wstring error;
    std::wstring errorDescription;
    std::wstring userID;
    std::wstring displayName;
    std::wstring email;
    int expiresIn = 0;  ///< seconds
};
