#pragma once

#include <QNetworkProxy>
#include <cstdint>

/// What this process takes for the system's proxy, as long as the object lives.
class SystemProxy {
public:
    explicit SystemProxy(std::uint16_t port, const char* user = "", const char* password = "") {
        QNetworkProxy::setApplicationProxy(
            QNetworkProxy(QNetworkProxy::HttpProxy, "127.0.0.1", port, user, password));
    }
    ~SystemProxy() { QNetworkProxy::setApplicationProxy(m_before); }
    SystemProxy(const SystemProxy&) = delete;
    SystemProxy& operator=(const SystemProxy&) = delete;

private:
    const QNetworkProxy m_before = QNetworkProxy::applicationProxy();
};
