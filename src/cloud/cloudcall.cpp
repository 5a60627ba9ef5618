#include "cloud/cloudcall.h"

#include <QDateTime>

#include "cloud/checksum.h"

namespace Lattice {

namespace {

constexpr uint32_t kHttpPort = 80;
constexpr uint32_t kHttpsPort = 443;

/// The cloud services listen on the ports of their schemes only.
Connection ConnectionOf(const CloudClient& client) {
    return {client.server,    client.secure ? kHttpsPort : kHttpPort,
            client.secure,    client.agentName,
            client.proxyMode, client.proxyHost,
            client.proxyUser, client.proxyPassword};
}

}  // namespace

CloudCall::CloudCall(const CallRules& rules, const CloudClient& client)
    : Call(rules, ConnectionOf(client)), m_client(client) {}

void CloudCall::addAppHeaders() {
    header("Accept", L"application/json");
    header("X-VEXA-APP-ID", m_client.appID);
    header("X-VEXA-SUBAPP-ID", m_client.appID);
    header("X-VEXA-APP-VER", m_client.appVersion);
}

void CloudCall::addTokenHeaders(const wchar_t* accessToken) {
    addAppHeaders();
    header("Authorization", L"Bearer " + TextOf(accessToken));
}

void CloudCall::addChecksumHeaders(const wchar_t* appSecret) {
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    header("X-VEXA-APP-VER", m_client.appVersion);
    header("X-VEXA-CHECK", Checksum(appSecret, m_client.appID, now, m_client.appVersion));
    header("X-VEXA-TIME", std::to_wstring(now));
    header("X-VEXA-APP-ID", m_client.appID);
}

}  // namespace Lattice
