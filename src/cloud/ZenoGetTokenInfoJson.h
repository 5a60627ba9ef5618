#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply to the question whose a token is.
class TORVIAPI_EXPORT CZenoGetTokenInfoJson {
public:
    int Parser(char* text);
    void store(_CLOUD_TOKEN_INFORMATION& token) const;

    std::wstring error;
    std::wstring error_description;
    std::wstring user_id;
    std::wstring display_name;
    std::wstring email;
    int expires_in = 0;  ///< seconds
};
