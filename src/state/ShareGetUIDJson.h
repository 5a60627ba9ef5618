#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of the identity calls: who a server is, before or after a login.
class TORVIAPI_EXPORT CShareGetUIDJson {
public:
    int Parser(char* text);

    bool isBooting = false;
    bool isRecovering = false;
    bool isMigrating = false;
    bool nuboCGI = false;
    bool fcgi = false;  ///< stays false, whatever the reply says
    uint32_t userType = 0;
    std::wstring uid;
    std::wstring suid;
    std::wstring mac;
    std::wstring torviVersion;
    std::wstring versioningVersion;
};
