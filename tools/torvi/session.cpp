#include "session.h"

#include "failure.h"
#include "keptsession.h"
#include "login.h"
#include "output.h"

namespace torvi {
namespace {

Session* g_current = nullptr;

/// Without a context if there is none that the server takes up.
Entrance takeUpKept(const Connection& connection, const KeptSession& kept, const std::wstring& useless) {
    const std::wstring sid = kept.sid();
    if (sid.empty() || sid == useless) return {};
    return takeUp(connection, sid, kept.slaveId());
}

/// The login that an ended session leads to.
Entrance logInAgain(Connection& connection) {
    try {
        connection.password.text();
    } catch (const Failure& failure) {
        if (failure.exit() != Exit::Usage) throw;
        throw Failure(Exit::NotAuthenticated,
                      QStringLiteral("the session of %1 has ended, and there is no password for another")
                          .arg(connection.identity()))
            .withAdvice(QStringLiteral("run `torvi login` again"));
    }
    return logIn(connection);
}

}  // namespace

Session::Session(const Connection& connection, Keep keep)
    : m_connection(connection), m_node(wide(connection.node)) {
    g_current = this;
    try {
        keep == Keep::FromNowOn ? beginKept() : begin();
    } catch (...) {
        end();
        throw;
    }
    m_server = wide(m_connection.server);
    tellTeamFolders();
}

Session::~Session() {
    end();
}

void Session::begin() {
    if (KeptSession::exists(m_connection)) {
        KeptSession kept(m_connection);
        // Another process may have logged out meanwhile.
        if (!kept.sid().empty()) return goOn(kept, std::wstring());
    }
    m_entrance = logIn(m_connection);
}

void Session::goOn(KeptSession& kept, const std::wstring& useless) {
    m_entrance = takeUpKept(m_connection, kept, useless);
    m_kept = m_entrance.context != nullptr;
    if (m_kept) return;
    m_entrance = logInAgain(m_connection);
    // One that is booting has its sync service back soon.
    if (m_entrance.service != Service::Sync) return;
    kept.keep(sidOf(m_entrance), slaveIdOf(m_entrance));
    m_kept = true;
}

void Session::beginKept() {
    m_entrance = logIn(m_connection);
    KeptSession kept(m_connection);
    Entrance before;
    try {
        before = takeUpKept(m_connection, kept, std::wstring());
    } catch (const Failure&) {
        // It runs out on the server.
    }
    if (m_entrance.service == Service::Sync) {
        kept.keep(sidOf(m_entrance), slaveIdOf(m_entrance));
        m_kept = true;
    } else {
        kept.forget();
    }
    if (before.context != nullptr) logOut(m_connection, before, true);
}

void Session::renew() {
    const std::wstring ended = sidOf(m_entrance);
    if (m_kept) {
        m_kept = false;
        KeptSession kept(m_connection);
        goOn(kept, ended);
    } else {
        m_entrance = logInAgain(m_connection);
    }
    tellTeamFolders();
}

void Session::tellTeamFolders() {
    if (teams().empty()) return;
    std::wstring own = slaveIdOf(m_entrance);
    std::vector<std::wstring> texts;
    for (const TeamFolder& team : teams()) {
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
    WFMUpdateTeamFolderInfo(context(), static_cast<int32_t>(teams().size()), clients.data(), servers.data(),
                            own.empty() ? nullptr : nodes.data());
}

std::wstring Session::nodeOf(const QString& path) const {
    const TeamFolder* team = teamFolderOf(teams(), path);
    return team != nullptr && !team->node.isEmpty() ? wide(team->node) : m_node;
}

void Session::end() {
    g_current = nullptr;
    if (m_entrance.context == nullptr) return;
    // A session that can't be ended runs out on the server.
    if (!m_kept) logOut(m_connection, m_entrance, false);
    m_entrance.context.reset();
}

void Session::endCurrent() {
    if (g_current == nullptr || g_current->m_kept || g_current->context() == nullptr) return;
    logOut(g_current->m_connection, g_current->m_entrance, false);
}

std::optional<bool> endKeptSession(const Connection& connection) {
    if (!KeptSession::exists(connection)) return std::nullopt;
    KeptSession kept(connection);
    bool ended = false;
    try {
        const Entrance entrance = takeUpKept(connection, kept, std::wstring());
        // One that the server doesn't take up has ended there.
        ended = entrance.context == nullptr || logOut(connection, entrance, true);
    } catch (const Failure&) {
        // The server can't be reached.
    }
    kept.forget();
    return ended;
}

}  // namespace torvi
