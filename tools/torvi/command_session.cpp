#include <WebFileManShareAPI.h>

#include <memory>

#include "address.h"
#include "commands.h"
#include "failure.h"
#include "keptsession.h"
#include "output.h"
#include "password.h"
#include "profile.h"
#include "serverversion.h"
#include "session.h"
#include "status.h"

namespace torvi {
namespace {

/// What later commands know the server again by, if it tells.
void learnIdentity(const Session& session, Profile& profile) {
    const auto record = std::make_unique<_NAS_USER_UID_INFORMATION>();
    const uint32_t dwStatus =
        WebFileManQueryUID(session.context(), session.server(), session.port(), nullptr, record.get());
    if (dwStatus != 0) return;
    profile.uid = QString::fromWCharArray(record->szUID);
    // One that is booting has none for the moment only.
    if (record->bNuboCGI) profile.olderService = false;
}

Profile profileOf(const Connection& connection, bool savePassword) {
    Profile profile;
    profile.server = connection.server;
    profile.port = connection.port;
    profile.tls = connection.tls;
    profile.user = connection.user;
    profile.proxy = connection.proxy;
    profile.proxyUser = connection.proxyUser;
    profile.node = connection.node;
    profile.fcgi = connection.fcgi;
    profile.olderService = connection.olderService;
    profile.teams = connection.teams;
    if (savePassword) {
        profile.password = connection.password.text();
        if (!connection.proxyPassword.isEmpty()) profile.proxyPassword = connection.proxyPassword;
    }
    return profile;
}

const char* serviceText(Service service) {
    return service == Service::Sync ? "sync" : "older";
}

void login(const GlobalOptions& global, bool savePassword) {
    Connection wanted = resolveConnection(global, Needs::Login);
    // A login finds out anew what the server has.
    wanted.olderService = false;
    const Session session(wanted, Keep::FromNowOn);
    const Connection& connection = session.connection();
    Profile profile = profileOf(connection, savePassword);
    learnIdentity(session, profile);
    saveProfile(profile);
    if (global.json) {
        return printJson(Json{{"server", utf8(connection.server)},
                              {"port", connection.port},
                              {"tls", connection.tls},
                              {"user", utf8(connection.user)},
                              {"serverName", utf8(session.serverName())},
                              {"admin", session.isAdmin()},
                              {"clusterNode", session.isSlave()},
                              {"service", serviceText(session.service())},
                              {"sessionKept", session.isKept()},
                              {"profile", utf8(profilePath())},
                              {"passwordSaved", savePassword}});
    }
    if (global.quiet) return;
    QString greeting = QStringLiteral("Logged in to %1 as %2").arg(connection.address(), connection.user);
    if (!session.serverName().isEmpty()) greeting += QStringLiteral(" (%1)").arg(session.serverName());
    printLine(greeting);
    printLine(session.isKept() ? QStringLiteral("The session is kept for later commands")
                               : QStringLiteral("At the older service: each command logs in by itself"));
    printLine(QStringLiteral("Profile stored in %1, %2")
                  .arg(profilePath(), savePassword ? QStringLiteral("with the password")
                                                   : QStringLiteral("without the password")));
}

/// What a logout is to end.
struct Farewell {
    std::vector<Connection> sessions;
    std::optional<Failure> obstacle;  ///< why their servers can't be told
};

/// Whether the command line leaves it possible that this one is meant.
bool mayBeMeant(const GlobalOptions& global, const Connection& kept) {
    const Address named = namedServer(global);
    return (named.host.isEmpty() || kept.server == named.host) &&
           kept.port == named.port.value_or(global.port.value_or(kept.port)) &&
           kept.tls == global.tls.value_or(kept.tls) &&
           (!global.user || kept.user == QString::fromStdString(*global.user));
}

/// Without the way there, for which a password may be wanted; nobody's if no server is named or stored.
Connection namedConnection(const GlobalOptions& global) {
    if (namedServer(global).host.isEmpty() && !loadProfile()) return {};
    GlobalOptions direct = global;
    direct.proxy = "none";
    return resolveConnection(direct, Needs::Server);
}

Farewell farewell(const GlobalOptions& global, bool all) {
    Farewell result;
    Connection connection;
    try {
        connection = namedConnection(global);
    } catch (const Failure& failure) {
        // Which session a profile that can't be read is about, nobody can say.
        result.obstacle = failure;
        for (const Connection& kept : KeptSession::all(connection)) {
            if (all || mayBeMeant(global, kept)) result.sessions.push_back(kept);
        }
        return result;
    }
    try {
        if (!connection.server.isEmpty()) connection = resolveConnection(global, Needs::Server);
    } catch (const Failure& failure) {
        if (failure.exit() == Exit::Cancelled) throw;
        result.obstacle = failure;
    }
    result.sessions = all ? KeptSession::all(connection) : std::vector<Connection>{connection};
    return result;
}

/// Forgets it without a word to the server. False if there is none.
bool forgetKeptSession(const Connection& connection) {
    if (!KeptSession::exists(connection)) return false;
    KeptSession(connection).forget();
    return true;
}

/// Whether the profile belongs to another server than the one that is named.
bool speaksOfAnother(const QString& named) {
    try {
        const std::optional<Profile> profile = loadProfile();
        return profile && !named.isEmpty() && named != profile->server;
    } catch (const Failure&) {
        return false;
    }
}

void logout(const GlobalOptions& global, bool all) {
    // What isn't understood must not lead to what is stored.
    checkValues(global);
    const QString named = namedServer(global).host;
    int ended = 0;
    int lost = 0;
    const auto [sessions, obstacle] = farewell(global, all);
    for (const Connection& connection : sessions) {
        if (obstacle) {
            if (forgetKeptSession(connection)) ++lost;
        } else if (const std::optional<bool> outcome = endKeptSession(connection)) {
            ++(*outcome ? ended : lost);
        }
    }
    if (obstacle && lost > 0) {
        const QString why = QStringLiteral("no session was ended at the server: %1").arg(obstacle->message());
        reportFailure(Failure(obstacle->exit(), why), false);
    }
    const bool removed = !speaksOfAnother(named) && removeProfile();
    if (global.json) {
        return printJson(Json{{"profile", utf8(profilePath())},
                              {"removed", removed},
                              {"sessionsEnded", ended},
                              {"sessionsLost", lost}});
    }
    if (global.quiet) return;
    if (ended > 0) printLine(QStringLiteral("Session ended"));
    if (lost > 0) printLine(QStringLiteral("Session forgotten; the server did not hear of it"));
    printLine(removed ? QStringLiteral("Profile removed") : QStringLiteral("There is no such profile"));
}

void version(const GlobalOptions& global) {
    const Connection connection = resolveConnection(global, Needs::Server);
    const QString what = QStringLiteral("version of %1").arg(connection.address());
    const ServerVersion version = askVersion(connection, what);
    if (version.dwStatus != 0 || version.word != 0) throw callFailure(what, version.dwStatus, version.word);
    if (global.json) {
        return printJson(Json{{"server", utf8(connection.server)},
                              {"port", connection.port},
                              {"version", utf8(version.number)},
                              {"build", utf8(version.build)}});
    }
    printLine(QStringLiteral("%1 build %2").arg(version.number, version.build));
}

}  // namespace

void addSessionCommands(const Commands& commands) {
    const GlobalOptions& global = commands.global;
    Action& action = commands.action;

    CLI::App* loginCommand =
        commands.app.add_subcommand("login", "Begin a session for later commands, and store the profile");
    auto savePassword = std::make_shared<bool>(false);
    loginCommand->add_flag("--save-password", *savePassword,
                           "Keep the password in the profile, in clear, readable by you alone");
    loginCommand->callback([&global, &action, savePassword] {
        action = [&global, savePassword] { login(global, *savePassword); };
    });

    CLI::App* logoutCommand =
        commands.app.add_subcommand("logout", "End the kept session and remove the stored profile");
    auto all = std::make_shared<bool>(false);
    logoutCommand->add_flag("--all", *all, "End the sessions at other servers, too");
    logoutCommand->callback([&global, &action, all] { action = [&global, all] { logout(global, *all); }; });

    CLI::App* versionCommand =
        commands.app.add_subcommand("version", "Tell the server's version; needs no login");
    versionCommand->callback([&global, &action] { action = [&global] { version(global); }; });
}

}  // namespace torvi
