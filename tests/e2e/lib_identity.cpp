#include "lib_identity.h"

#include <memory>
#include <tuple>

#include "WebFileManShareAPI.h"

namespace e2e {

namespace {

Identity identityOf(const _NAS_USER_UID_INFORMATION& record) {
    return {record.bBooting,
            record.bRecovering,
            record.bMigrating,
            record.bNuboCGI,
            record.bFcgi,
            record.dwUserType,
            utf8(record.szUID),
            utf8(record.szSUID),
            utf8(record.szMAC),
            utf8(record.szTorviVersion),
            utf8(record.szVersioningVersion)};
}

auto fields(const Identity& identity) {
    return std::tie(identity.booting, identity.recovering, identity.migrating, identity.syncService,
                    identity.fcgi, identity.userType, identity.uid, identity.suid, identity.mac,
                    identity.syncVersion, identity.versioning);
}

}  // namespace

bool Identity::operator==(const Identity& other) const {
    return fields(*this) == fields(other);
}

std::ostream& operator<<(std::ostream& out, const Identity& identity) {
    return out << testing::PrintToString(fields(identity));
}

std::uint32_t Probe::identity(Identity& identity) const {
    auto record = std::make_unique<_NAS_USER_UID_INFORMATION>();
    const std::uint32_t status =
        WFMGetNASUserUID(kServer, port, tlsPort, tls, user.c_str(), kAgent, proxyMode, proxyHost.c_str(),
                         proxyUser.c_str(), proxyPassword.c_str(), nullptr, &timeoutMs, cancel, record.get());
    identity = identityOf(*record);
    return status;
}

std::uint32_t Probe::isServer(const wchar_t* uid) const {
    return WFMValidIP(kServer, port, 0, tls, user.c_str(), uid, kAgent, proxyMode, proxyHost.c_str(),
                      proxyUser.c_str(), proxyPassword.c_str(), nullptr, nullptr, timeoutMs);
}

std::uint32_t ownIdentity(const Client& client, Identity& identity) {
    auto record = std::make_unique<_NAS_USER_UID_INFORMATION>();
    const std::uint32_t status =
        WebFileManQueryUID(client.context(), kServer, client.port(), nullptr, record.get());
    identity = identityOf(*record);
    return status;
}

}  // namespace e2e
