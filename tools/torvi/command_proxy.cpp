#include <memory>

#include "commands.h"
#include "connection.h"
#include "failure.h"
#include "output.h"
#include "profile.h"
#include "serverversion.h"
#include "status.h"

namespace torvi {
namespace {

struct ProxyOptions {
    std::string action = "show";
    std::string proxy;
    bool savePassword = false;
};

Profile requireProfile() {
    if (auto profile = loadProfile()) return *profile;
    throw Failure(Exit::Usage,
                  QStringLiteral("proxy: there is no profile to keep one in; run `torvi login` first, with "
                                 "--proxy if it is needed to get there"));
}

QString shown(const Profile& profile) {
    return profile.proxy.isEmpty() ? QStringLiteral("none") : profile.proxy;
}

void show(const GlobalOptions& global, const Profile& profile) {
    if (global.json) {
        return printJson(Json{{"proxy", utf8(shown(profile))},
                              {"proxyUser", utf8(profile.proxyUser)},
                              {"passwordSaved", profile.proxyPassword.has_value()}});
    }
    if (global.quiet) return;
    QString line = QStringLiteral("Proxy: %1").arg(shown(profile));
    if (!profile.proxyUser.isEmpty()) line += QStringLiteral(", as %1").arg(profile.proxyUser);
    if (profile.proxyPassword) line += QStringLiteral(", with the password");
    printLine(line);
}

void set(const GlobalOptions& global, const ProxyOptions& options, Profile& profile) {
    Connection connection;
    connection.useProxy(QString::fromStdString(options.proxy));
    profile.proxy = connection.proxy;
    profile.proxyUser = QString::fromStdString(global.proxyUser.value_or(""));
    profile.proxyPassword.reset();
    if (!options.savePassword) return;
    GlobalOptions asked = global;
    asked.server = utf8(profile.server);
    asked.proxy = options.proxy;
    asked.proxyUser = utf8(profile.proxyUser);
    profile.proxyPassword = resolveConnection(asked, Needs::Server).proxyPassword;
}

void test(const GlobalOptions& global, const ProxyOptions& options) {
    GlobalOptions asked = global;
    if (!options.proxy.empty()) asked.proxy = options.proxy;
    const Connection connection = resolveConnection(asked, Needs::Server);
    const QString way = connection.proxyMode == 2   ? QStringLiteral("through %1").arg(connection.proxyHost)
                        : connection.proxyMode == 1 ? QStringLiteral("by the system's settings")
                                                    : QStringLiteral("without a proxy");
    const QString what = QStringLiteral("proxy: %1 %2").arg(connection.address(), way);
    const ServerVersion answer = askVersion(connection, what);
    if (answer.dwStatus != 0) throw callFailure(what, answer.dwStatus, answer.word);
    if (global.json) {
        return printJson(Json{{"server", utf8(connection.server)},
                              {"port", connection.port},
                              {"proxy", connection.proxyMode == 0 ? "none" : utf8(connection.proxy)},
                              {"reached", true}});
    }
    if (!global.quiet) printLine(QStringLiteral("%1 answers, %2").arg(connection.address(), way));
}

void proxy(const GlobalOptions& global, const ProxyOptions& options) {
    if (options.action == "test") return test(global, options);
    Profile profile = requireProfile();
    if (options.action == "set") {
        if (options.proxy.empty())
            throw Failure(Exit::Usage, QStringLiteral("proxy set: which one? HOST:PORT, system or none"));
        set(global, options, profile);
    } else if (options.action == "clear") {
        profile.proxy.clear();
        profile.proxyUser.clear();
        profile.proxyPassword.reset();
    }
    if (options.action != "show") saveProfile(profile);
    show(global, profile);
}

}  // namespace

void addProxyCommand(const Commands& commands) {
    const GlobalOptions& global = commands.global;
    Action& action = commands.action;
    CLI::App* command = commands.app.add_subcommand("proxy", "Show, set, clear or test the profile's proxy");
    auto options = std::make_shared<ProxyOptions>();
    command->add_option("action", options->action, "show, set, clear or test")
        ->check(CLI::IsMember({"show", "set", "clear", "test"}).description(""))
        ->type_name("")
        ->capture_default_str();
    command->add_option("address", options->proxy, "none, system, or HOST:PORT of an HTTP proxy")
        ->type_name("");
    command->add_flag("--save-password", options->savePassword,
                      "set: keep the proxy's password, in clear, readable by you alone");
    command->callback(
        [&global, &action, options] { action = [&global, options] { proxy(global, *options); }; });
}

}  // namespace torvi
