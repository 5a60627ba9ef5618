#include "clouddevices.h"

#include <QUrl>
#include <memory>

#include "failure.h"
#include "output.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

QStringList texts(int32_t count, wchar_t** list) {
    QStringList all;
    for (int32_t i = 0; i < count; ++i) all << text(list[i]);
    return all;
}

/// The library puts these into URLs as they are.
std::wstring urlText(const QString& text) {
    return QString::fromLatin1(QUrl::toPercentEncoding(text)).toStdWString();
}

/// What a service says of a request that the application's secret has proved.
enum ReplyCode {
    kGood = 0,
    kOther = 1,
    kWrongTime = 2,
    kNoDevice = 5,
    kNoLink = 6,
    kNoApplication = 7,
    kWrongCheck = 8
};

Exit exitOf(int32_t code) {
    switch (code) {
        case kNoDevice:
        case kNoLink:
            return Exit::NotFound;
        case kNoApplication:
        case kWrongCheck:
            return Exit::NotAuthenticated;
        default:
            return Exit::Refused;
    }
}

Failure replyFailure(const QString& what, int32_t code, const QString& message) {
    const Failure failure =
        Failure(exitOf(code), QStringLiteral("%1: the cloud says: %2 (reply code %3)")
                                  .arg(what, message.isEmpty() ? QStringLiteral("-") : message)
                                  .arg(code))
            .withNumbers(0, std::nullopt);
    if (code != kWrongTime) return failure;
    return failure.withAdvice(QStringLiteral("set the clock of this machine"));
}

/// Some checksums have a line end in them and break their request. They change with every millisecond, so
/// that another try helps; `again` is asked with what came of one.
template <typename Ask, typename Again>
uint32_t askWithChecksum(const QString& what, Ask ask, Again again) {
    constexpr int kTries = 6;
    uint32_t dwStatus = 0;
    for (int i = 0; i < kTries; ++i) {
        dwStatus = ask();
        if (interrupted()) throwCancelled(what);
        if (!again(dwStatus)) break;
    }
    return dwStatus;
}

}  // namespace

void allDevices(CloudSession& session, const QString& what, CloudDevices& devices) {
    session.ask(what, [&devices](const Cloud& cloud) {
        uint32_t word = 0;
        const uint32_t dwStatus = ZenoAPIGetAllDeviceInfo(
            wide(cloud.host).c_str(), agentName(), kAppVersion, wide(cloud.clientId).c_str(),
            wide(cloud.tokens.access).c_str(), cloud.tls, cloud.way.proxyMode,
            wide(cloud.way.proxyHost).c_str(), wide(cloud.way.proxyUser).c_str(),
            wide(cloud.way.proxyPassword).c_str(), nullptr, &word, devices.count(), devices.list());
        return CloudAnswer{dwStatus, static_cast<int32_t>(word)};
    });
}

void devicesNamed(CloudSession& session, const QString& what, const QString& name, CloudDevices& devices) {
    session.ask(what, [&](const Cloud& cloud) {
        uint32_t word = 0;
        const uint32_t dwStatus = ZenoAPIGetDeviceInfoByName(
            wide(cloud.host).c_str(), agentName(), kAppVersion, wide(cloud.clientId).c_str(),
            wide(cloud.tokens.access).c_str(), urlText(name).c_str(), cloud.tls, cloud.way.proxyMode,
            wide(cloud.way.proxyHost).c_str(), wide(cloud.way.proxyUser).c_str(),
            wide(cloud.way.proxyPassword).c_str(), nullptr, &word, devices.count(), devices.list());
        return CloudAnswer{dwStatus, static_cast<int32_t>(word)};
    });
}

int32_t deviceCount(CloudSession& session, const QString& what) {
    int32_t count = 0;
    session.ask(what, [&count](const Cloud& cloud) {
        uint32_t word = 0;
        const uint32_t dwStatus = ZenoAPIGetAllDeviceCount(
            wide(cloud.host).c_str(), agentName(), kAppVersion, wide(cloud.clientId).c_str(),
            wide(cloud.tokens.access).c_str(), cloud.tls, cloud.way.proxyMode,
            wide(cloud.way.proxyHost).c_str(), wide(cloud.way.proxyUser).c_str(),
            wide(cloud.way.proxyPassword).c_str(), nullptr, &word, &count);
        return CloudAnswer{dwStatus, static_cast<int32_t>(word)};
    });
    return count;
}

CloudNetwork deviceNetwork(CloudSession& session, const QString& what, const QString& id) {
    CloudNetwork network;
    session.ask(what, [&](const Cloud& cloud) {
        _CLOUD_LINK_INFORMATION record = {};
        const uint32_t dwStatus = ZenoAPIGetCloudLinkSetting(
            wide(cloud.host).c_str(), agentName(), kAppVersion, wide(cloud.clientId).c_str(),
            wide(cloud.tokens.access).c_str(), urlText(id).c_str(), cloud.tls, cloud.way.proxyMode,
            wide(cloud.way.proxyHost).c_str(), wide(cloud.way.proxyUser).c_str(),
            wide(cloud.way.proxyPassword).c_str(), nullptr, &record);
        network = {texts(record.nWanIPCount, record.lppWanIPs), texts(record.nLanIPCount, record.lppLanIPs),
                   texts(record.nDdnsCount, record.lppDdns), text(record.szCloudLinkID)};
        ZenoFreeCloudInfo(&record);
        return CloudAnswer{dwStatus, record.nResultCode};
    });
    return network;
}

QString publicAddress(CloudSession& session, const QString& what) {
    wchar_t address[260] = {};
    session.ask(what, [&address](const Cloud& cloud) {
        return CloudAnswer{
            ZenoAPIGetPublicIP(wide(cloud.host).c_str(), agentName(), kAppVersion,
                               wide(cloud.clientId).c_str(), wide(cloud.tokens.access).c_str(), cloud.tls,
                               cloud.way.proxyMode, wide(cloud.way.proxyHost).c_str(),
                               wide(cloud.way.proxyUser).c_str(), wide(cloud.way.proxyPassword).c_str(),
                               nullptr, address),
            0};
    });
    if (address[0] == 0)
        throw Failure(Exit::Refused, QStringLiteral("%1: the cloud didn't tell it").arg(what));
    return text(address);
}

QString deviceOf(const Cloud& cloud, const QString& what, const QString& userId) {
    _CLOUD_DEVICE_ID_INFORMATION record = {};
    const auto ask = [&] {
        return ZenoAPIGetDeviceID(wide(cloud.host).c_str(), agentName(), kAppVersion,
                                  wide(cloud.clientId).c_str(), urlText(userId).c_str(),
                                  wide(cloud.clientSecret).c_str(), cloud.tls, cloud.way.proxyMode,
                                  wide(cloud.way.proxyHost).c_str(), wide(cloud.way.proxyUser).c_str(),
                                  wide(cloud.way.proxyPassword).c_str(), nullptr, &record);
    };
    const uint32_t dwStatus = askWithChecksum(what, ask, [&record](uint32_t status) {
        return status == kHttpError || (status == 0 && record.nResponseCode == kWrongCheck);
    });
    if (dwStatus != 0) throw statusFailure(what, dwStatus);
    if (record.nResponseCode != kGood) throw replyFailure(what, record.nResponseCode, text(record.szMessage));
    return text(record.szDeviceID);
}

CloudLink deviceLink(const Cloud& cloud, const QString& what, const QString& id) {
    const auto record = std::make_unique<_CLOUD_VLINK_INFORMATION>();
    const auto ask = [&] {
        return PeltAPIGetVLinkInfo(wide(cloud.remoteHost).c_str(), urlText(id).c_str(), agentName(),
                                   kAppVersion, wide(cloud.clientId).c_str(),
                                   wide(cloud.clientSecret).c_str(), cloud.tls, cloud.way.proxyMode,
                                   wide(cloud.way.proxyHost).c_str(), wide(cloud.way.proxyUser).c_str(),
                                   wide(cloud.way.proxyPassword).c_str(), nullptr, record.get());
    };
    const uint32_t dwStatus = askWithChecksum(what, ask, [&record](uint32_t status) {
        return status == kHttpError || (status == 0 && record->nReplyCode == kWrongCheck);
    });
    if (dwStatus != 0) throw statusFailure(what, dwStatus);
    const CloudLink link = {record->nReplyCode,        text(record->szMessage), text(record->szVLinkID),
                            text(record->szWANIP),     text(record->szLANIPs),  text(record->szGatewayIP),
                            text(record->szActionTime)};
    if (exitOf(link.code) != Exit::NotFound && link.code != kGood)
        throw replyFailure(what, link.code, link.message);
    return link;
}

CloudPorts devicePorts(const Cloud& cloud, const QString& what, const QString& id) {
    _CLOUD_SERVICE_PORTS record = {};
    const auto ask = [&] {
        return PeltAPIGetServicePorts(wide(cloud.remoteHost).c_str(), urlText(id).c_str(), agentName(),
                                      kAppVersion, wide(cloud.clientId).c_str(),
                                      wide(cloud.clientSecret).c_str(), cloud.tls, cloud.way.proxyMode,
                                      wide(cloud.way.proxyHost).c_str(), wide(cloud.way.proxyUser).c_str(),
                                      wide(cloud.way.proxyPassword).c_str(), nullptr, &record);
    };
    // A refusal looks like ports that aren't there. The secret is good, so that a second look tells.
    constexpr int kLooks = 2;
    int looks = 0;
    const auto again = [&](uint32_t status) {
        if (status != 0) return status == kHttpError;
        return record.nInternalHttpPort == 0 && record.nInternalHttpsPort == 0 && ++looks < kLooks;
    };
    const uint32_t dwStatus = askWithChecksum(what, ask, again);
    if (dwStatus != 0) throw statusFailure(what, dwStatus);
    return {record.nInternalHttpPort, record.nInternalHttpsPort, record.nExternalHttpPort,
            record.nExternalHttpsPort};
}

}  // namespace torvi
