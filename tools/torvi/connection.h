#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "options.h"
#include "teams.h"

namespace torvi {

/// A password that is looked for, or asked for, when it is first needed. Copies share what was found.
class Password {
public:
    Password() = default;
    explicit Password(std::function<QString()> find) : m_state(std::make_shared<State>()) {
        m_state->find = std::move(find);
    }
    QString text() const {
        if (m_state == nullptr) return {};
        if (!m_state->text) m_state->text = m_state->find();
        return *m_state->text;
    }

private:
    struct State {
        std::function<QString()> find;
        std::optional<QString> text;
    };
    std::shared_ptr<State> m_state;
};

/// What a second step of a login may go on with, as the options say.
struct SecondFactor {
    QString code;
    QString answer;
    bool mail = false;
};

/// Whom to talk to and as whom, all sources merged.
struct Connection {
    QString server;
    int port = 0;
    bool tls = false;
    int tlsPort = 0;  ///< where to go if the server insists on HTTPS; 0 for nowhere
    QString user;
    Password password;
    SecondFactor secondFactor;
    QString proxy;
    uint32_t proxyMode = 0;
    QString proxyHost;
    QString proxyUser;
    QString proxyPassword;
    QString node;
    bool fcgi = false;
    bool olderService = false;  ///< the sync service need not be asked
    QString uid;                ///< what the server called itself at the login, empty if that isn't known
    std::vector<TeamFolder> teams;
    uint32_t timeoutMs = 0;

    QString address() const { return QStringLiteral("%1:%2").arg(server).arg(port); }
    /// The user, the server and the port in one text.
    QString identity() const { return QStringLiteral("%1@%2").arg(user, address()); }
    /// none, system, or HOST:PORT. Throws the usage failure for anything else.
    void useProxy(const QString& text);
    /// False if it is there already, or was given no port for it.
    bool goToTls();
};

enum class Needs { Server, Login };

/// The way out that was stored: none, system, or HOST:PORT.
struct StoredProxy {
    QString proxy;
    QString user;
    std::optional<QString> password;
};
/// Merges command line, environment and what was stored; asks for the proxy's password if it is wanted.
void resolveProxy(Connection& connection, const GlobalOptions& options, const StoredProxy& stored);

/// Throws the usage failure for a value on the command line that isn't understood, whatever is stored.
void checkValues(const GlobalOptions& options);
/// Merges command line, environment, profile and defaults. The password waits until it is needed.
Connection resolveConnection(const GlobalOptions& options, Needs needs);

/// The name that the program goes by in requests. An empty one makes listings fail.
const wchar_t* agentName();

}  // namespace torvi
