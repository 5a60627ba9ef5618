#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of "get_domain_ip_list": by which names and addresses a server is reached.
class TORVIAPI_EXPORT CGetDomainIPListJson {
public:
    int Parser(char* text);
    int GetStatus() const { return status; }

    int32_t status = -1;
    std::wstring peltnetHostName;
    std::wstring ddnsHostName;
    std::wstring externalIP;
    std::wstring localIP;
    std::wstring hostIP;
    std::wstring localIPList;
    int32_t port = 0;
    int32_t sslPort = 0;
    int32_t extPort = 0;
    int32_t extSslPort = 0;
};
