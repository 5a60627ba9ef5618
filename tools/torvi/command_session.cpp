#include <memory>

#include "failure.h"
#include "options.h"
#include "output.h"
#include "password.h"
#include "profile.h"
#include "session.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

void login(const GlobalOptions& global, bool savePassword) {
    const Connection connection = resolveConnection(global, Needs::Login);
    Json json;
    QString greeting;
    {
        const Session session(connection);
        greeting = QStringLiteral("Logged in to %1 as %2").arg(connection.address(), connection.user);
        if (!session.serverName().isEmpty()) greeting += QStringLiteral(" (%1)").arg(session.serverName());
        json["server"] = utf8(connection.server);
        json["port"] = connection.port;
        json["tls"] = connection.tls;
        json["user"] = utf8(connection.user);
        json["serverName"] = utf8(session.serverName());
        json["admin"] = session.isAdmin();
        json["clusterNode"] = session.isSlave();
    }
    Profile profile;
    profile.server = connection.server;
    profile.port = connection.port;
    profile.tls = connection.tls;
    profile.user = connection.user;
    profile.proxy = connection.proxy;
    profile.proxyUser = connection.proxyUser;
    profile.node = connection.node;
    profile.fcgi = connection.fcgi;
    profile.teams = connection.teams;
    if (savePassword) {
        profile.password = connection.password;
        if (!connection.proxyPassword.isEmpty()) profile.proxyPassword = connection.proxyPassword;
    }
    saveProfile(profile);
    json["profile"] = utf8(profilePath());
    json["passwordSaved"] = savePassword;
    if (global.json) return printJson(json);
    if (global.quiet) return;
    printLine(greeting);
    printLine(QStringLiteral("Profile stored in %1, %2")
                  .arg(profilePath(), savePassword ? QStringLiteral("with the password")
                                                   : QStringLiteral("without the password")));
}

void logout(const GlobalOptions& global) {
    const bool removed = removeProfile();
    if (global.json) return printJson(Json{{"profile", utf8(profilePath())}, {"removed", removed}});
    if (global.quiet) return;
    printLine(removed ? QStringLiteral("Profile removed") : QStringLiteral("There is no profile"));
}

void version(const GlobalOptions& global) {
    const Connection connection = resolveConnection(global, Needs::Server);
    const auto record = std::make_unique<_WFM_VERSION_INFORMATION>();
    uint32_t word = 0;
    const uint32_t dwStatus = WFMGetVersion(
        wide(connection.server).c_str(), static_cast<uint32_t>(connection.port), agentName(), connection.tls,
        connection.proxyMode, wide(connection.proxyHost).c_str(), wide(connection.proxyUser).c_str(),
        wide(connection.proxyPassword).c_str(), L"", 0, &word, record.get());
    const QString what = QStringLiteral("version of %1").arg(connection.address());
    if (dwStatus != 0 || word != 0) {
        if (interrupted()) throwCancelled(what);
        throw callFailure(what, dwStatus, word);
    }
    const QString number = QString::fromWCharArray(record->szVersion);
    const QString build = QString::fromWCharArray(record->szBuildNumber);
    if (global.json) {
        return printJson(Json{{"server", utf8(connection.server)},
                              {"port", connection.port},
                              {"version", utf8(number)},
                              {"build", utf8(build)}});
    }
    printLine(QStringLiteral("%1 build %2").arg(number, build));
}

}  // namespace

void addSessionCommands(const Commands& commands) {
    const GlobalOptions& global = commands.global;
    Action& action = commands.action;

    CLI::App* loginCommand =
        commands.app.add_subcommand("login", "Check a login and store it as the profile");
    auto savePassword = std::make_shared<bool>(false);
    loginCommand->add_flag("--save-password", *savePassword,
                           "Keep the password in the profile, in clear, readable by you alone");
    loginCommand->callback([&global, &action, savePassword] {
        action = [&global, savePassword] { login(global, *savePassword); };
    });

    CLI::App* logoutCommand = commands.app.add_subcommand("logout", "Remove the stored profile");
    logoutCommand->callback([&global, &action] { action = [&global] { logout(global); }; });

    CLI::App* versionCommand =
        commands.app.add_subcommand("version", "Tell the server's version; needs no login");
    versionCommand->callback([&global, &action] { action = [&global] { version(global); }; });
}

}  // namespace torvi
