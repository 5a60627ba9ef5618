#pragma once

#include "WebFileManAPI.h"

/// The reply of "nubo_auth_config_password".
class TORVIAPI_EXPORT CAuthConfigPasswordJson {
public:
    int Parser(char* text);
    int GetStatus() const { return status; }

    int32_t status = -1;
    int32_t authResult = -1;
};
