#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply to a request for a token: the token, or why there is none.
class TORVIAPI_EXPORT CZenoAPIAPPSigninJson {
public:
    int Parser(char* text);
    void store(_CLOUD_TOKEN_INFORMATION& token) const;

    std::wstring error;
    std::wstring errorDescription;
    std::wstring accessToken;
    std::wstring tokenType;
    std::wstring refreshToken;
    int expiresIn = 0;  ///< seconds
};
