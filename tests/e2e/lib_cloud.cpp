#include "lib_cloud.h"

#include <memory>

namespace e2e {

namespace {

constexpr const wchar_t* kVersion = L"1.0";
constexpr int kTries = 8;

Token tokenOf(std::uint32_t dwStatus, const _CLOUD_TOKEN_INFORMATION& record) {
    return {dwStatus,
            utf8(record.error),
            utf8(record.error_description),
            utf8(record.access_token),
            utf8(record.token_type),
            utf8(record.refresh_token),
            utf8(record.email),
            utf8(record.display_name),
            utf8(record.user_id),
            record.expires_in};
}

CloudDevice deviceOf(const _NAS_DEVICE_INFORMATION_API_V11& record) {
    CloudDevice device;
    device.id = utf8(record.szDeviceID);
    device.name = utf8(record.szDeviceName);
    device.user = utf8(record.szUserID);
    device.description = utf8(record.szDescription);
    device.model = utf8(record.info.szModelName);
    device.token = utf8(record.szToken);
    device.accessCode = utf8(record.szAccessCode);
    for (std::int32_t i = 0; i < record.info.nLanIPCount; ++i)
        device.lan += (i > 0 ? " " : "") + utf8(record.info.lppLanIPs[i]->szIPv4);
    for (std::int32_t i = 0; i < record.nServiceCount; ++i) {
        const _NAS_DEVICE_SERVICE_INFO& service = *record.lppServices[i];
        device.services +=
            (i > 0 ? " " : "") + utf8(service.szProtocol) + ":" + std::to_string(service.nInternalPort);
    }
    for (std::int32_t i = 0; i < record.nUserCount; ++i)
        device.users.push_back(utf8(record.lppUsers[i]->szUserName));
    return device;
}

/// Takes over a list of the library.
void take(std::int32_t count, _NAS_DEVICE_INFORMATION_API_V11** list, std::vector<CloudDevice>& devices) {
    devices.clear();
    for (std::int32_t i = 0; i < count; ++i) devices.push_back(deviceOf(*list[i]));
    EXPECT_EQ(ZenoFreeDeviceInfo(count, &list), 0u);
    EXPECT_EQ(list, nullptr);
}

std::vector<std::string> texts(std::int32_t count, wchar_t** list) {
    std::vector<std::string> all;
    for (std::int32_t i = 0; i < count; ++i) all.push_back(utf8(list[i]));
    return all;
}

/// Whether a request failed as one with a broken checksum does.
bool isBroken(std::uint32_t dwStatus, std::int32_t reply) {
    constexpr std::int32_t wrongChecksum = 8;
    return dwStatus != 0 || reply == wrongChecksum;
}

}  // namespace

Token CloudClient::signIn() const {
    const auto record = std::make_unique<_CLOUD_TOKEN_INFORMATION>();
    const std::uint32_t status =
        ZenoAPIAPPSignin(m_host.c_str(), kAgent, kVersion, app.c_str(), secret.c_str(), m_secure, 0, nullptr,
                         nullptr, nullptr, nullptr, record.get());
    return tokenOf(status, *record);
}

Token CloudClient::refresh(const std::string& refreshToken) const {
    const auto record = std::make_unique<_CLOUD_TOKEN_INFORMATION>();
    const std::uint32_t status =
        ZenoAPIAPPRefreshToken(m_host.c_str(), kAgent, wide(refreshToken).c_str(), kVersion, app.c_str(),
                               secret.c_str(), m_secure, 0, nullptr, nullptr, nullptr, nullptr, record.get());
    return tokenOf(status, *record);
}

Token CloudClient::info(const std::string& accessToken) const {
    const auto record = std::make_unique<_CLOUD_TOKEN_INFORMATION>();
    const std::uint32_t status =
        ZenoAPIGetTokenInfo(m_host.c_str(), kAgent, wide(accessToken).c_str(), kVersion, app.c_str(), nullptr,
                            m_secure, 0, nullptr, nullptr, nullptr, nullptr, record.get());
    return tokenOf(status, *record);
}

std::uint32_t CloudClient::signOut(const std::string& accessToken) const {
    return ZenoAPIAPPSignOut(m_host.c_str(), wide(accessToken).c_str(), kAgent, kVersion, app.c_str(),
                             m_secure, 0, nullptr, nullptr, nullptr);
}

Numbers CloudClient::devices(const std::string& accessToken, std::vector<CloudDevice>& devices) const {
    std::int32_t count = 0xABCD;
    _NAS_DEVICE_INFORMATION_API_V11** list = nullptr;
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return ZenoAPIGetAllDeviceInfo(m_host.c_str(), kAgent, kVersion, app.c_str(),
                                       wide(accessToken).c_str(), m_secure, 0, nullptr, nullptr, nullptr,
                                       nullptr, result, &count, &list);
    });
    take(count, list, devices);
    return numbers;
}

Numbers CloudClient::devicesNamed(const std::string& accessToken, const std::wstring& name,
                                  std::vector<CloudDevice>& devices) const {
    std::int32_t count = 0xABCD;
    _NAS_DEVICE_INFORMATION_API_V11** list = nullptr;
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return ZenoAPIGetDeviceInfoByName(m_host.c_str(), kAgent, kVersion, app.c_str(),
                                          wide(accessToken).c_str(), name.c_str(), m_secure, 0, nullptr,
                                          nullptr, nullptr, nullptr, result, &count, &list);
    });
    take(count, list, devices);
    return numbers;
}

Numbers CloudClient::count(const std::string& accessToken, std::int32_t& count) const {
    return numbersOf([&](std::uint32_t* result) {
        return ZenoAPIGetAllDeviceCount(m_host.c_str(), kAgent, kVersion, app.c_str(),
                                        wide(accessToken).c_str(), m_secure, 0, nullptr, nullptr, nullptr,
                                        nullptr, result, &count);
    });
}

CloudLists CloudClient::lists(const std::string& accessToken, const std::wstring& device) const {
    const auto record = std::make_unique<_CLOUD_LINK_INFORMATION>();
    CloudLists lists;
    lists.dwStatus = ZenoAPIGetCloudLinkSetting(m_host.c_str(), kAgent, kVersion, app.c_str(),
                                                wide(accessToken).c_str(), device.c_str(), m_secure, 0,
                                                nullptr, nullptr, nullptr, nullptr, record.get());
    lists.code = record->nResultCode;
    lists.wan = texts(record->nWanIPCount, record->lppWanIPs);
    lists.lan = texts(record->nLanIPCount, record->lppLanIPs);
    lists.ddns = texts(record->nDdnsCount, record->lppDdns);
    lists.link = utf8(record->szCloudLinkID);
    EXPECT_EQ(ZenoFreeCloudInfo(record.get()), 0u);
    EXPECT_EQ(record->nLanIPCount, 0);
    EXPECT_EQ(record->lppLanIPs, nullptr);
    return lists;
}

std::uint32_t CloudClient::publicIP(const std::string& accessToken, std::string& address) const {
    wchar_t text[260] = {};
    const std::uint32_t status =
        ZenoAPIGetPublicIP(m_host.c_str(), kAgent, kVersion, app.c_str(), wide(accessToken).c_str(), m_secure,
                           0, nullptr, nullptr, nullptr, nullptr, text);
    address = utf8(text);
    return status;
}

DeviceId CloudClient::deviceId(const std::wstring& user) const {
    DeviceId answer;
    for (int i = 0; i < kTries && isBroken(answer.dwStatus, answer.reply); ++i) {
        const auto record = std::make_unique<_CLOUD_DEVICE_ID_INFORMATION>();
        answer.dwStatus =
            ZenoAPIGetDeviceID(m_host.c_str(), kAgent, kVersion, app.c_str(), user.c_str(), secret.c_str(),
                               m_secure, 0, nullptr, nullptr, nullptr, nullptr, record.get());
        answer.reply = record->nResponseCode;
        answer.id = utf8(record->szDeviceID);
        answer.message = utf8(record->szMessage);
    }
    return answer;
}

Link CloudClient::link(const std::wstring& device) const {
    Link link;
    for (int i = 0; i < kTries && isBroken(link.dwStatus, link.reply); ++i) {
        const auto record = std::make_unique<_CLOUD_VLINK_INFORMATION>();
        link.dwStatus =
            PeltAPIGetVLinkInfo(m_host.c_str(), device.c_str(), kAgent, kVersion, app.c_str(), secret.c_str(),
                                m_secure, 0, nullptr, nullptr, nullptr, nullptr, record.get());
        link = {link.dwStatus,
                record->nReplyCode,
                record->nHttpCode,
                utf8(record->szVLinkID),
                utf8(record->szWANIP),
                utf8(record->szLANIPs),
                utf8(record->szGatewayIP),
                utf8(record->szMessage),
                utf8(record->szActionTime)};
    }
    return link;
}

std::uint32_t CloudClient::ports(const std::wstring& device, _CLOUD_SERVICE_PORTS& ports) const {
    std::uint32_t status = 0xABCD;
    ports = {};
    // A refusal looks like ports that aren't there.
    for (int i = 0; i < kTries && (status != 0 || ports.nInternalHttpPort == 0); ++i) {
        status =
            PeltAPIGetServicePorts(m_host.c_str(), device.c_str(), kAgent, kVersion, app.c_str(),
                                   secret.c_str(), m_secure, 0, nullptr, nullptr, nullptr, nullptr, &ports);
    }
    return status;
}

void LibCloud::SetUp() {
    CloudTest::SetUp();
    if (IsSkipped()) return;
    cloud.emplace(cloudOptions());
    Nas::Options options;
    options.arguments = cloud->registration("anna", "Cellar", "nas-1");
    const std::vector<std::string> more = nasOptions();
    options.arguments.insert(options.arguments.end(), more.begin(), more.end());
    nas.emplace(options);
    client.emplace(cloudHost(), GetParam());
}

Cloud::Options LibCloud::cloudOptions() const {
    Cloud::Options options;
    options.address = *wire::cloudAddress();
    options.clientPorts = true;
    return options;
}

}  // namespace e2e
