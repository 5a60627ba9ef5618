#include <WebFileManAPI.h>

#include <QStringList>
#include <memory>
#include <vector>

#include "address.h"
#include "commands.h"
#include "connection.h"
#include "failure.h"
#include "output.h"
#include "serverversion.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

constexpr uint32_t kWrongAnswer = 14;

/// The question needs a name, though not one that the server knows.
QString askingUser(const Connection& connection) {
    if (!connection.user.isEmpty()) return connection.user;
    const QString name = QString::fromLocal8Bit(qgetenv("USER"));
    return name.isEmpty() ? QStringLiteral("guest") : name;
}

/// Who a server is, by its own account.
struct Identity {
    _NAS_USER_UID_INFORMATION record;
    ServerVersion version;

    QString state() const {
        QStringList states;
        if (record.bBooting) states << QStringLiteral("booting");
        if (record.bRecovering) states << QStringLiteral("recovering");
        if (record.bMigrating) states << QStringLiteral("migrating");
        return states.isEmpty() ? QStringLiteral("ready") : states.join(QStringLiteral(", "));
    }
    QString uid() const { return text(record.szUID); }
};

void askIdentity(const Connection& connection, Identity& identity) {
    const QString what = QStringLiteral("identity of %1").arg(connection.address());
    // Without a port for HTTPS: who went there would not be told.
    const uint32_t dwStatus = WFMGetNASUserUID(
        wide(connection.server).c_str(), static_cast<uint32_t>(connection.port), 0, connection.tls,
        wide(askingUser(connection)).c_str(), agentName(), connection.proxyMode,
        wide(connection.proxyHost).c_str(), wide(connection.proxyUser).c_str(),
        wide(connection.proxyPassword).c_str(), L"", &connection.timeoutMs, cancelFlag(), &identity.record);
    if (interrupted()) throwCancelled(what);
    if (dwStatus == 0) return;
    if (connection.tls || statusFailure(what, dwStatus).exit() != Exit::Refused)
        throw statusFailure(what, dwStatus);
    throw statusFailure(what, dwStatus)
        .withAdvice(
            QStringLiteral("a server that insists on HTTPS answers so: try --tls, or --tls-port PORT"));
}

void line(const char* label, const QString& value) {
    printLine(QStringLiteral("%1 %2")
                  .arg(QLatin1String(label), -14)
                  .arg(value.isEmpty() ? QStringLiteral("-") : value));
}

void printIdentity(const Connection& connection, const Identity& identity) {
    const _NAS_USER_UID_INFORMATION& record = identity.record;
    line("Server:", QStringLiteral("%1, %2").arg(connection.address(), connection.tls ? "HTTPS" : "HTTP"));
    line("State:", identity.state());
    const ServerVersion& version = identity.version;
    line("Firmware:", version.build.isEmpty()
                          ? version.number
                          : QStringLiteral("%1 build %2").arg(version.number, version.build));
    line("Sync service:",
         record.bNuboCGI ? text(record.szTorviVersion) : QStringLiteral("none, only the older service"));
    line("Versioning:", text(record.szVersioningVersion));
    line("UID:", identity.uid());
    line("SUID:", text(record.szSUID));
    line("MAC:", text(record.szMAC));
    line("User type:", QStringLiteral("%1, for %2").arg(record.dwUserType).arg(askingUser(connection)));
}

Json toJson(const Connection& connection, const Identity& identity) {
    const _NAS_USER_UID_INFORMATION& record = identity.record;
    return Json{{"server", utf8(connection.server)},
                {"port", connection.port},
                {"tls", connection.tls},
                {"user", utf8(askingUser(connection))},
                {"state", utf8(identity.state())},
                {"booting", record.bBooting},
                {"recovering", record.bRecovering},
                {"migrating", record.bMigrating},
                {"version", utf8(identity.version.number)},
                {"build", utf8(identity.version.build)},
                {"syncService", record.bNuboCGI},
                {"syncVersion", utf8(text(record.szTorviVersion))},
                {"versioningVersion", utf8(text(record.szVersioningVersion))},
                {"uid", utf8(identity.uid())},
                {"suid", utf8(text(record.szSUID))},
                {"mac", utf8(text(record.szMAC))},
                {"userType", record.dwUserType}};
}

void probe(const GlobalOptions& global) {
    Connection connection = resolveConnection(global, Needs::Server);
    const auto identity = std::make_unique<Identity>();
    try {
        askIdentity(connection, *identity);
    } catch (const Failure& failure) {
        if (failure.exit() != Exit::Refused || !connection.goToTls()) throw;
        askIdentity(connection, *identity);
    }
    const QString what = QStringLiteral("version of %1").arg(connection.address());
    identity->version = askVersion(connection, what);
    if (global.json) return printJson(toJson(connection, *identity));
    printIdentity(connection, *identity);
}

struct PingOptions {
    std::vector<std::string> addresses;
    std::string uid;
};

/// The address, at the connection's port if it names none.
Connection candidateOf(Connection connection, const QString& text) {
    const Address address = parseAddress(QStringLiteral("ping"), text);
    connection.server = address.host;
    connection.port = address.port.value_or(connection.port);
    return connection;
}

uint32_t isThatServer(const Connection& candidate, const QString& uid) {
    const uint32_t dwStatus =
        WFMValidIP(wide(candidate.server).c_str(), static_cast<uint32_t>(candidate.port), 0, candidate.tls,
                   wide(askingUser(candidate)).c_str(), wide(uid).c_str(), agentName(), candidate.proxyMode,
                   wide(candidate.proxyHost).c_str(), wide(candidate.proxyUser).c_str(),
                   wide(candidate.proxyPassword).c_str(), L"", L"", candidate.timeoutMs);
    if (interrupted()) throwCancelled(QStringLiteral("ping %1").arg(candidate.address()));
    return dwStatus;
}

QString verdict(uint32_t dwStatus, bool compared) {
    if (dwStatus == 0) return compared ? QStringLiteral("it is") : QStringLiteral("answers");
    if (dwStatus == kWrongAnswer) return QStringLiteral("another server");
    return QStringLiteral("no such server: %1").arg(QLatin1String(dwStatusName(dwStatus)));
}

/// What the candidates are compared with. Empty takes any server.
QString expectedUid(const Connection& connection, const PingOptions& options) {
    if (!options.uid.empty()) return QString::fromStdString(options.uid);
    if (!connection.uid.isEmpty() || options.addresses.empty()) return connection.uid;
    const auto identity = std::make_unique<Identity>();
    askIdentity(connection, *identity);
    return identity->uid();
}

Failure pingFailure(const Connection& candidate, uint32_t dwStatus, const QString& uid) {
    const QString what = QStringLiteral("ping %1").arg(candidate.address());
    if (dwStatus != kWrongAnswer || uid.isEmpty()) return statusFailure(what, dwStatus);
    return Failure(Exit::Refused, QStringLiteral("%1: another server answers there").arg(what))
        .withNumbers(dwStatus, std::nullopt);
}

void ping(const GlobalOptions& global, const PingOptions& options) {
    const bool network = IsNetworkAlive();
    const Connection connection = resolveConnection(global, Needs::Server);
    const QString uid = expectedUid(connection, options);
    std::vector<Connection> candidates;
    for (const std::string& address : options.addresses)
        candidates.push_back(candidateOf(connection, QString::fromStdString(address)));
    if (candidates.empty()) candidates.push_back(connection);

    Table table;
    table.addColumn(QStringLiteral("ADDRESS"));
    table.addColumn(QStringLiteral("VERDICT"));
    Json addresses = Json::array();
    std::optional<Failure> first;
    for (const Connection& candidate : candidates) {
        const uint32_t dwStatus = isThatServer(candidate, uid);
        if (dwStatus != 0 && !first) first = pingFailure(candidate, dwStatus, uid);
        table.addRow({candidate.address(), verdict(dwStatus, !uid.isEmpty())});
        addresses.push_back(Json{{"address", utf8(candidate.address())},
                                 {"valid", dwStatus == 0},
                                 {"dwStatus", dwStatus},
                                 {"dwStatusName", dwStatusName(dwStatus)}});
    }
    if (global.json) {
        printJson(Json{{"network", network}, {"uid", utf8(uid)}, {"addresses", addresses}});
    } else if (!global.quiet) {
        line("Network:", network ? QStringLiteral("up") : QStringLiteral("none but this machine itself"));
        line("Looked for:", uid.isEmpty() ? QStringLiteral("any server") : uid);
        table.print(stdout);
    }
    if (!first) return;
    // Not as a document of its own: stdout has one already.
    reportFailure(*first, false);
    throw AlreadyReported(first->exit());
}

}  // namespace

void addProbeCommands(const Commands& commands) {
    const GlobalOptions& global = commands.global;
    Action& action = commands.action;

    CLI::App* probeCommand =
        commands.app.add_subcommand("probe", "Tell who a server is and what it has; needs no login");
    probeCommand->callback([&global, &action] { action = [&global] { probe(global); }; });

    CLI::App* pingCommand = commands.app.add_subcommand(
        "ping", "Tell whether there is a network, and whether addresses are really that server's");
    auto options = std::make_shared<PingOptions>();
    pingCommand
        ->add_option("address", options->addresses, "HOST or HOST:PORT; the server itself if none is given")
        ->type_name("");
    pingCommand
        ->add_option("--uid", options->uid,
                     "The server's UID, as probe tells it; the one that login stored, or the server tells")
        ->type_name("UID");
    pingCommand->callback(
        [&global, &action, options] { action = [&global, options] { ping(global, *options); }; });
}

}  // namespace torvi
