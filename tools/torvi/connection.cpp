#include "connection.h"

#include <QNetworkProxyFactory>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "address.h"
#include "failure.h"
#include "password.h"
#include "profile.h"

namespace torvi {
namespace {

QString text(const std::optional<std::string>& value) {
    return QString::fromStdString(value.value_or(""));
}

QString findProxyPassword(const Connection& connection, const GlobalOptions& options,
                          const StoredProxy& stored) {
    if (options.proxyPasswordFile) return readPasswordFile(text(options.proxyPasswordFile));
    if (const char* password = std::getenv("TORVI_PROXY_PASSWORD")) return QString::fromUtf8(password);
    if (stored.password && stored.user == connection.proxyUser && stored.proxy == connection.proxy)
        return *stored.password;
    return askPassword(
        QStringLiteral("Password of %1 for the proxy %2: ").arg(connection.proxyUser, connection.proxyHost));
}

QString findPassword(const Connection& connection, const std::optional<std::string>& file,
                     const std::optional<Profile>& own) {
    // A kept password goes to the place that it was kept for, and never in clear where it went over TLS.
    const bool kept = own && own->password && own->user == connection.user && own->port == connection.port &&
                      (connection.tls || !own->tls);
    if (file) return readPasswordFile(text(file));
    if (const char* password = std::getenv("TORVI_PASSWORD")) return QString::fromUtf8(password);
    if (kept) return *own->password;
    return askPassword(QStringLiteral("Password of %1 at %2: ").arg(connection.user, connection.address()));
}

}  // namespace

void Connection::useProxy(const QString& text) {
    proxy = text;
    if (text.isEmpty() || text == QLatin1String("none")) return;
    if (text == QLatin1String("system")) {
        QNetworkProxyFactory::setUseSystemConfiguration(true);
        proxyMode = 1;
        return;
    }
    QString address = text;
    if (address.startsWith(QLatin1String("http://"))) address.remove(0, 7);
    if (address.endsWith(QLatin1Char('/'))) address.chop(1);
    const int colon = address.lastIndexOf(QLatin1Char(':'));
    bool numeric = false;
    const int number = address.mid(colon + 1).toInt(&numeric);
    // The library reads this port into 16 bits with a sign.
    constexpr int kHighestPort = std::numeric_limits<short>::max();
    if (colon < 1 || !numeric || number < 1 || number > kHighestPort) {
        throw Failure(Exit::Usage,
                      QStringLiteral("--proxy: %1 is neither none nor system nor HOST:PORT with a port "
                                     "from 1 to %2")
                          .arg(text, QString::number(kHighestPort)));
    }
    proxyMode = 2;
    proxyHost = address;
}

bool Connection::goToTls() {
    if (tls || tlsPort == 0) return false;
    tls = true;
    port = tlsPort;
    return true;
}

const wchar_t* agentName() {
    return L"torvi";
}

void resolveProxy(Connection& connection, const GlobalOptions& options, const StoredProxy& stored) {
    connection.proxyUser = options.proxyUser ? text(options.proxyUser) : stored.user;
    connection.useProxy(options.proxy ? text(options.proxy) : stored.proxy);
    if (connection.proxyMode == 2 && !connection.proxyUser.isEmpty())
        connection.proxyPassword = findProxyPassword(connection, options, stored);
}

void checkValues(const GlobalOptions& options) {
    namedServer(options);
    parseTeamFolders(options.teams);
    Connection().useProxy(text(options.proxy));
}

Connection resolveConnection(const GlobalOptions& options, Needs needs) {
    std::optional<Profile> own = loadProfile();
    // The profile speaks of one server and says nothing about another.
    const Address named = namedServer(options);
    if (own && options.server && named.host != own->server) own.reset();

    Connection connection;
    connection.server = own ? own->server : named.host;
    if (connection.server.isEmpty()) {
        throw Failure(Exit::Usage,
                      QStringLiteral("no server: give --server, or store one with `torvi login`"));
    }
    const Profile profile = own.value_or(Profile());
    connection.tls = options.tls.value_or(profile.tls);
    const bool sameScheme = own && profile.tls == connection.tls;
    const int defaultPort = connection.tls ? 443 : 8080;
    const int usualPort = sameScheme && profile.port > 0 ? profile.port : defaultPort;
    connection.port = named.port.value_or(options.port.value_or(usualPort));
    connection.tlsPort = options.tlsPort.value_or(0);
    connection.user = options.user ? text(options.user) : profile.user;
    connection.node = options.node ? text(options.node) : profile.node;
    connection.fcgi = options.fcgi.value_or(profile.fcgi);
    // What the profile knows of the server holds at the port where it was learned.
    const bool samePlace = sameScheme && connection.port == profile.port;
    connection.olderService = samePlace && profile.olderService;
    connection.uid = samePlace ? profile.uid : QString();
    connection.secondFactor = {text(options.code), text(options.answer), options.mail};
    connection.teams = options.teams.empty() ? profile.teams : parseTeamFolders(options.teams);
    connection.timeoutMs = static_cast<uint32_t>(std::lround(options.timeoutSeconds * 1000));

    if (needs == Needs::Login && connection.user.isEmpty()) {
        throw Failure(Exit::Usage, QStringLiteral("no user: give --user, or store one with `torvi login`"));
    }
    resolveProxy(connection, options, {profile.proxy, profile.proxyUser, profile.proxyPassword});
    connection.password = Password(
        [connection, file = options.passwordFile, own] { return findPassword(connection, file, own); });
    return connection;
}

}  // namespace torvi
