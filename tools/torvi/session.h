#pragma once

#include <WebFileManAPI.h>

#include <string>

#include "connection.h"

namespace torvi {

/// Logged in from construction to destruction.
class Session {
public:
    explicit Session(const Connection& connection);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // The arguments that every call of the context form begins with.
    _WFM_AUTH_CONTEXT* context() const { return m_context; }
    const wchar_t* server() const { return m_server.c_str(); }
    uint32_t port() const { return m_port; }
    const wchar_t* node() const { return m_node.c_str(); }
    /// For the calls that look at no path: the node that holds this one.
    std::wstring nodeOf(const QString& path) const;
    const std::vector<TeamFolder>& teams() const { return m_teams; }

    bool isAdmin() const { return m_admin; }
    bool isSlave() const { return m_slave; }
    const QString& serverName() const { return m_serverName; }
    /// The server, the port and the user in one text.
    const QString& identity() const { return m_identity; }

    /// Ends the session that is open now, if any. For the way out when the stack can't be unwound.
    static void endCurrent();

private:
    void tellTeamFolders();
    void end();

    std::wstring m_server;
    uint32_t m_port;
    std::wstring m_node;
    QString m_identity;
    std::vector<TeamFolder> m_teams;
    QString m_serverName;
    bool m_admin = false;
    bool m_slave = false;
    _WFM_AUTH_CONTEXT* m_context = nullptr;
    bool m_ended = false;
};

}  // namespace torvi
