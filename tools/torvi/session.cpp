#include "session.h"

#include <QCryptographicHash>
#include <QSysInfo>
#include <iterator>

#include "output.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

Session* g_current = nullptr;

/// The same for this user on this machine every time, and it tells nobody which machine that is.
QString installationId() {
    QCryptographicHash hash(QCryptographicHash::Sha1);
    hash.addData("torvi/");
    hash.addData(QSysInfo::machineUniqueId());
    hash.addData(QSysInfo::machineHostName().toUtf8());
    hash.addData(qgetenv("USER"));
    return QString::fromLatin1(hash.result().toHex());
}

QString computerName() {
    const QString name = QSysInfo::machineHostName();
    return name.isEmpty() ? QStringLiteral("computer") : name;
}

}  // namespace

Session::Session(const Connection& connection)
    : m_server(wide(connection.server)),
      m_port(static_cast<uint32_t>(connection.port)),
      m_node(wide(connection.node)),
      m_identity(QStringLiteral("%1@%2").arg(connection.user, connection.address())) {
    wchar_t serverName[260] = {};
    uint32_t resultWord = 0;
    const uint32_t dwStatus = TorviLogin(
        m_server.c_str(), connection.port, wide(connection.user).c_str(), wide(connection.password).c_str(),
        connection.tls, wide(computerName()).c_str(), wide(installationId()).c_str(), agentName(), 0,
        static_cast<uint32_t>(std::size(serverName)), connection.proxyMode,
        wide(connection.proxyHost).c_str(), wide(connection.proxyUser).c_str(),
        wide(connection.proxyPassword).c_str(), L"", L"" TORVI_VERSION, 0, &connection.timeoutMs,
        connection.fcgi, serverName, &m_admin, &m_slave, &resultWord, &m_context, 0, nullptr);
    const QString what = QStringLiteral("login to %1 as %2").arg(connection.address(), connection.user);
    if (m_context == nullptr) {
        if (interrupted()) throwCancelled(what);
        throw loginFailure(what, dwStatus, resultWord);
    }
    m_serverName = QString::fromWCharArray(serverName);
    g_current = this;
}

Session::~Session() {
    g_current = nullptr;
    end();
    WFMFreeAuthContext(m_context);
}

void Session::end() {
    if (m_ended) return;
    m_ended = true;
    // A session that can't be ended runs out on the server.
    TorviLogout(m_server.c_str(), m_port, false, m_context);
}

void Session::endCurrent() {
    if (g_current != nullptr) g_current->end();
}

}  // namespace torvi
