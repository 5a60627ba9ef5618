#pragma once

#include "lib_support.h"

namespace e2e {

/// The second step of a login at the file manager.
struct SecondStep {
    std::uint16_t port = 0;
    bool tls = false;
    std::wstring code;
    bool isAnswer = false;
    std::wstring user = L"anna", password = L"secret";

    Numbers run();

    wire::SessionPtr session;
    std::wstring serverName;
    bool isAdmin = false;
};

/// A session from a token.
struct Activation {
    std::uint16_t port = 0;
    bool tls = false;
    std::wstring token;
    std::wstring node;     ///< that is asked
    std::wstring ownNode;  ///< that the session gets
    std::uint32_t proxyMode = 0;
    std::wstring proxyHost, proxyUser, proxyPassword;

    Numbers run();

    wire::SessionPtr session;
    std::wstring serverName;
    bool isAdmin = false;
};

/// The id of the system's session; the capacity is that of the buffer.
Numbers systemSid(const Client& client, std::wstring& sid, std::uint32_t capacity = 260);
std::wstring slaveID(const _WFM_AUTH_CONTEXT* context);

}  // namespace e2e
