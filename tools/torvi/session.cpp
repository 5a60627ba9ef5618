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
      m_identity(QStringLiteral("%1@%2").arg(connection.user, connection.address())),
      m_teams(connection.teams) {
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
    tellTeamFolders();
}

Session::~Session() {
    g_current = nullptr;
    end();
    WFMFreeAuthContext(m_context);
}

void Session::tellTeamFolders() {
    if (m_teams.empty()) return;
    wchar_t own[260] = {};
    uint32_t capacity = static_cast<uint32_t>(std::size(own));
    if (WFMGetSlaveID(m_context, &capacity, own) != 0) own[0] = L'\0';
    std::vector<std::wstring> texts;
    for (const TeamFolder& team : m_teams) {
        texts.push_back(wide(team.client));
        texts.push_back(wide(team.server));
        // An empty one would end the list. Whatever names no node is on this one.
        texts.push_back(team.node.isEmpty() ? own : wide(team.node));
    }
    std::vector<wchar_t*> clients, servers, nodes;
    for (size_t i = 0; i < texts.size(); i += 3) {
        clients.push_back(texts[i].data());
        servers.push_back(texts[i + 1].data());
        nodes.push_back(texts[i + 2].data());
    }
    WFMUpdateTeamFolderInfo(m_context, static_cast<int32_t>(m_teams.size()), clients.data(), servers.data(),
                            own[0] == L'\0' ? nullptr : nodes.data());
}

std::wstring Session::nodeOf(const QString& path) const {
    const TeamFolder* team = teamFolderOf(m_teams, path);
    return team != nullptr && !team->node.isEmpty() ? wide(team->node) : m_node;
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
