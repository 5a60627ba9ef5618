#pragma once

#include "lib_support.h"

namespace e2e {

/// Who a server says it is, without its 5 KB.
struct Identity {
    bool booting = false, recovering = false, migrating = false, syncService = false, fcgi = false;
    std::uint32_t userType = 0;
    std::string uid, suid, mac, syncVersion, versioning;
    bool operator==(const Identity& other) const;
};
std::ostream& operator<<(std::ostream& out, const Identity& identity);

/// A question to a server before any login.
struct Probe {
    std::uint16_t port = 0;
    bool tls = false;
    std::uint16_t tlsPort = 0;  ///< to go to if the server insists on it
    std::wstring user = L"anna";
    std::uint32_t proxyMode = 0;
    std::wstring proxyHost, proxyUser, proxyPassword;
    std::uint32_t timeoutMs = 0;
    bool* cancel = nullptr;

    std::uint32_t identity(Identity& identity) const;
    /// Whether the server is the one of that uid; null: any.
    std::uint32_t isServer(const wchar_t* uid) const;
};

/// The same question in a session.
std::uint32_t ownIdentity(const Client& client, Identity& identity);

}  // namespace e2e
