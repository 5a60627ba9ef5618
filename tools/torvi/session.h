#pragma once

#include <WebFileManAPI.h>

#include <optional>
#include <string>

#include "connection.h"
#include "context.h"

namespace torvi {

class KeptSession;

/// What becomes of a session when the command is over.
enum class Keep {
    IfBegun,    ///< it goes on if `torvi login` has begun one for this user and server; else it is ended
    FromNowOn,  ///< a new one is begun, in place of one that there may be
};

/// Logged in from construction to destruction.
class Session {
public:
    explicit Session(const Connection& connection, Keep keep = Keep::IfBegun);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // The arguments that every call of the context form begins with.
    _WFM_AUTH_CONTEXT* context() const { return m_entrance.context.get(); }
    const wchar_t* server() const { return m_server.c_str(); }
    uint32_t port() const { return static_cast<uint32_t>(m_connection.port); }
    const wchar_t* node() const { return m_node.c_str(); }
    /// For the calls that look at no path: the node that holds this one.
    std::wstring nodeOf(const QString& path) const;
    const std::vector<TeamFolder>& teams() const { return m_connection.teams; }

    /// How the server was reached in the end.
    const Connection& connection() const { return m_connection; }
    bool isAdmin() const { return m_entrance.admin; }
    bool isSlave() const { return m_entrance.slave; }
    Service service() const { return m_entrance.service; }
    bool isKept() const { return m_kept; }
    /// Not after a second step at the older service.
    bool canListFiles() const { return !m_entrance.secondStep; }
    const QString& serverName() const { return m_entrance.serverName; }
    /// The server, the port and the user in one text.
    QString identity() const { return m_connection.identity(); }

    /// Once the server has ended it: another one in its place.
    void renew();

    /// Ends the session that is open now, if any, unless it is kept. For the way out when the stack can't be
    /// unwound.
    static void endCurrent();

private:
    void begin();
    void beginKept();
    void goOn(KeptSession& kept, const std::wstring& useless);
    void tellTeamFolders();
    void end();

    Connection m_connection;
    std::wstring m_server;
    std::wstring m_node;
    Entrance m_entrance;
    bool m_kept = false;
};

/// Ends the kept session of this user at this server and forgets it. Nothing if there is none; false if it
/// could not be ended at the server, and runs out there.
std::optional<bool> endKeptSession(const Connection& connection);

}  // namespace torvi
