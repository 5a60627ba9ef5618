#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply to a request for a token: the token, or why there is none.
class TORVIAPI_EXPORT CZenoAPIAPPSigninJson {
public:
    int Parser(char* text);
    void store(_CLOUD_TOKEN_INFORMATION& token) const;

    std::wstring error;
    std::wstring error_description;
    std::wstring access_token;
    std::wstring token_type;
    std::wstring refresh_token;
    int expires_in = 0;  ///< seconds
};
