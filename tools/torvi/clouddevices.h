#pragma once

#include <WebFileManAPI.h>

#include <QStringList>
#include <vector>

#include "cloudsession.h"

namespace torvi {

/// Devices that a call has allocated.
class CloudDevices {
public:
    CloudDevices() = default;
    ~CloudDevices() { ZenoFreeDeviceInfo(m_count, &m_list); }
    CloudDevices(const CloudDevices&) = delete;
    CloudDevices& operator=(const CloudDevices&) = delete;

    int32_t* count() { return &m_count; }
    _NAS_DEVICE_INFORMATION_API_V11*** list() { return &m_list; }
    std::vector<const _NAS_DEVICE_INFORMATION_API_V11*> records() const {
        if (m_list == nullptr) return {};
        return {m_list, m_list + m_count};
    }

private:
    int32_t m_count = 0;
    _NAS_DEVICE_INFORMATION_API_V11** m_list = nullptr;
};

/// The addresses at which the directory knows a device.
struct CloudNetwork {
    QStringList wan;
    QStringList lan;
    QStringList ddns;
    QString linkId;
};

/// The link of a device as the remote-access service tells it.
struct CloudLink {
    int32_t code = 0;  ///< 0 if there is one
    QString message;   ///< the service's words
    QString id;
    QString wan;
    QString lan;
    QString gateway;
    QString time;
};

/// The ports of a device's web server; 0 for one that isn't mapped.
struct CloudPorts {
    int32_t http = 0;
    int32_t https = 0;
    int32_t externalHttp = 0;
    int32_t externalHttps = 0;
};

void allDevices(CloudSession& session, const QString& what, CloudDevices& devices);
void devicesNamed(CloudSession& session, const QString& what, const QString& name, CloudDevices& devices);
int32_t deviceCount(CloudSession& session, const QString& what);
CloudNetwork deviceNetwork(CloudSession& session, const QString& what, const QString& id);
QString publicAddress(CloudSession& session, const QString& what);

// These want the application's secret and nobody's token.
/// Throws if the service knows no device of the user.
QString deviceOf(const Cloud& cloud, const QString& what, const QString& userId);
/// Throws if the application is refused; that there is no link is an answer.
CloudLink deviceLink(const Cloud& cloud, const QString& what, const QString& id);
/// Of a device whose link has been told for the same secret.
CloudPorts devicePorts(const Cloud& cloud, const QString& what, const QString& id);

}  // namespace torvi
