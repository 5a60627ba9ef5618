#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of a sync-service login.
class TORVIAPI_EXPORT CTorviLogin {
public:
    int Parser(char* text);

    std::wstring sid;
    std::wstring servername;
    bool isAdmin = false;
    bool isCluster = false;
    int32_t status = -1;
    std::wstring peltnet_dn;
    std::wstring ddns_dn;
    std::wstring ext_ip;
    std::wstring local_ip;
    std::wstring local_ip_list;
    int32_t port = 0;
    int32_t sslPort = 0;
    int32_t extPort = 0;
    int32_t extSslPort = 0;
    std::wstring slaveId;
};
