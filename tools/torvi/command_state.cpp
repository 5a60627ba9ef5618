#include <WebFileManShareAPI.h>

#include <QRegularExpression>
#include <QStringList>
#include <memory>
#include <vector>

#include "commands.h"
#include "failure.h"
#include "output.h"
#include "recordlist.h"
#include "session.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

/// For calls that have done their work when both numbers are 0.
void check(const QString& what, uint32_t dwStatus, uint32_t word) {
    if (interrupted()) throwCancelled(what);
    if (dwStatus != 0 || word != 0) throw callFailure(what, dwStatus, word);
}

/// Sizes that a server doesn't tell are below 0.
QString sizeText(int64_t size) {
    return size < 0 ? QStringLiteral("-") : humanSize(size);
}

Json sizeJson(int64_t size) {
    return size < 0 ? Json(nullptr) : Json(size);
}

/// What one label of a screen stands for.
class Screen {
public:
    void add(const char* label, const QString& value) {
        printLine(QStringLiteral("%1 %2")
                      .arg(QLatin1String(label), -22)
                      .arg(value.isEmpty() ? QStringLiteral("-") : value));
    }
    void add(const char* label, bool yes) { add(label, yes ? QStringLiteral("yes") : QStringLiteral("no")); }
};

struct State {
    _NAS_STATIC_INFORMATION fixed;
    _NAS_STATUS_INFORMATION status;
    _TORVI_INFORMATION sync;
    bool syncTold = false;
    _DOMAIN_IP_LIST_INFORMATION addresses;
    int64_t modified = 0;
};

void askState(const Session& session, bool detail, State& state) {
    uint32_t word = 0;
    uint32_t dwStatus = WFMTorviGetNASStatus(session.context(), session.server(), session.port(),
                                             session.node(), detail, cancelFlag(), &word, &state.status);
    check(QStringLiteral("status"), dwStatus, word);
    dwStatus = WFMTorviGetNASStaticInfo(session.context(), session.server(), session.port(), session.node(),
                                        nullptr, &state.fixed, &word);
    check(QStringLiteral("status: model and firmware"), dwStatus, word);
    dwStatus = WebFileManGetTorviInformation(session.context(), session.server(), session.port(), nullptr,
                                             session.node(), &state.syncTold, &state.sync);
    check(QStringLiteral("status: sync service"), dwStatus, 0);
    dwStatus = WFMGetDomainIPList(session.context(), session.server(), session.port(), 0, nullptr, nullptr,
                                  &state.addresses, &word);
    // A text that is too long is left out, the others are good.
    constexpr uint32_t kTooLong = 8;
    check(QStringLiteral("status: addresses"), dwStatus, word == kTooLong ? 0 : word);
    // A server that nothing was changed on knows no time.
    dwStatus = WFMGetTorviLastModifiedTime(session.context(), session.server(), session.port(), nullptr,
                                           &state.modified, &word);
    check(QStringLiteral("status: last change"), dwStatus, 0);
    if (word != 0) state.modified = 0;
}

QString joinedAddress(const wchar_t* host, int32_t port, int32_t tlsPort) {
    const QString name = text(host);
    if (name.isEmpty()) return name;
    QStringList ports;
    if (port > 0) ports << QStringLiteral("HTTP %1").arg(port);
    if (tlsPort > 0) ports << QStringLiteral("HTTPS %1").arg(tlsPort);
    return ports.isEmpty() ? name : QStringLiteral("%1 (%2)").arg(name, ports.join(QStringLiteral(", ")));
}

void printState(const Session& session, const State& state) {
    const auto& [fixed, status, sync, syncTold, addresses, modified] = state;
    Screen screen;
    screen.add("Server:",
               QStringLiteral("%1, %2").arg(session.identity(), session.service() == Service::Sync
                                                                    ? QStringLiteral("sync service")
                                                                    : QStringLiteral("older service")));
    screen.add("Model:", text(fixed.szModel));
    screen.add("Firmware:", text(fixed.szFirmwareVersion));
    screen.add("Recovering:", status.bRecovering);
    screen.add("User enabled:", status.bUserEnable);
    screen.add("Home:", !status.bHomeFolderEnable     ? QStringLiteral("switched off")
                        : status.bHomeFolderAvailable ? QStringLiteral("available")
                                                      : QStringLiteral("not available"));
    screen.add("Recycle bin:", status.bRecycleBinEnable);
    screen.add("Versioning:",
               !status.bVersioningEnable
                   ? QStringLiteral("no")
                   : QStringLiteral("%1, for sync: %2")
                         .arg(text(status.szVersioningVersion), status.bNuboVersioningEnable ? "yes" : "no"));
    screen.add("Databases:", QStringLiteral("devices %1, log %2, shares %3")
                                 .arg(status.bDeviceDBExist ? "yes" : "no", status.bLogDBExist ? "yes" : "no",
                                      status.bShareDBExist ? "yes" : "no"));
    if (syncTold) {
        screen.add("Sync enabled:", sync.bFunctionEnable);
        screen.add("Team folders:", sync.bTeamFolderIsExist);
        screen.add("Cluster:", sync.nClusterStatus == 1 ? QStringLiteral("node %1").arg(text(sync.szSlaveID))
                               : sync.bClusterSupport
                                   ? QStringLiteral("supported, status %1").arg(sync.nClusterStatus)
                                   : QStringLiteral("no"));
    }
    screen.add("Last change:", localTime(modified));
    screen.add("Local address:", joinedAddress(addresses.szLocalIP, addresses.nPort, addresses.nSslPort));
    screen.add("All local addresses:", text(addresses.szLocalIPList));
    screen.add("Host address:", text(addresses.szHostIP));
    screen.add("External address:",
               joinedAddress(addresses.szExternalIP, addresses.nExtPort, addresses.nExtSslPort));
    screen.add("Dynamic DNS:", text(addresses.szDdnsHostName));
    screen.add("Remote access:", text(addresses.szPeltnetHostName));
}

Json toJson(const Session& session, const State& state) {
    const auto& [fixed, status, sync, syncTold, addresses, modified] = state;
    Json json;
    json["server"] = utf8(session.connection().server);
    json["port"] = session.port();
    json["service"] = session.service() == Service::Sync ? "sync" : "older";
    json["model"] = utf8(text(fixed.szModel));
    json["firmware"] = utf8(text(fixed.szFirmwareVersion));
    json["queueLimit"] = fixed.llQueueLimit;
    json["messageQueueLimit"] = fixed.llMessageQueueLimit;
    json["recovering"] = status.bRecovering;
    json["userEnabled"] = status.bUserEnable;
    json["homeEnabled"] = status.bHomeFolderEnable;
    json["homeAvailable"] = status.bHomeFolderAvailable;
    json["recycleBin"] = status.bRecycleBinEnable;
    json["versioning"] = status.bVersioningEnable;
    json["syncVersioning"] = status.bNuboVersioningEnable;
    json["versioningVersion"] = utf8(text(status.szVersioningVersion));
    json["databases"] = Json{
        {"devices", status.bDeviceDBExist}, {"log", status.bLogDBExist}, {"shares", status.bShareDBExist}};
    json["sync"] =
        !syncTold ? Json(nullptr)
                  : Json{{"enabled", sync.bFunctionEnable},        {"home", sync.bHomeIsExist},
                         {"teamFolders", sync.bTeamFolderIsExist}, {"clusterSupport", sync.bClusterSupport},
                         {"clusterStatus", sync.nClusterStatus},   {"node", utf8(text(sync.szSlaveID))}};
    json["lastChange"] = modified;
    json["lastChanged"] = isoTime(modified);
    json["addresses"] = Json{{"local", utf8(text(addresses.szLocalIP))},
                             {"localList", utf8(text(addresses.szLocalIPList))},
                             {"host", utf8(text(addresses.szHostIP))},
                             {"external", utf8(text(addresses.szExternalIP))},
                             {"dynamicDns", utf8(text(addresses.szDdnsHostName))},
                             {"remoteAccess", utf8(text(addresses.szPeltnetHostName))},
                             {"port", addresses.nPort},
                             {"tlsPort", addresses.nSslPort},
                             {"externalPort", addresses.nExtPort},
                             {"externalTlsPort", addresses.nExtSslPort}};
    return json;
}

void status(const GlobalOptions& global, bool detail) {
    const Session session(resolveConnection(global, Needs::Login));
    const auto state = std::make_unique<State>();
    askState(session, detail, *state);
    if (global.json) return printJson(toJson(session, *state));
    printState(session, *state);
}

struct FolderOptions {
    bool detail = false;
    bool refresh = false;
};

QString privilegeText(int32_t privilege) {
    switch (privilege) {
        case 1:
            return QStringLiteral("read");
        case 2:
            return QStringLiteral("write");
        default:
            return privilege < 0 ? QStringLiteral("-") : QString::number(privilege);
    }
}

void printFolders(const std::vector<const _NAS_SYNCING_FOLDER_INFORMATION*>& folders) {
    Table table;
    table.addColumn(QStringLiteral("NAME"));
    table.addColumn(QStringLiteral("PATH"));
    table.addColumn(QStringLiteral("ACCESS"));
    table.addColumn(QStringLiteral("VOLUME"), Table::Align::Right);
    table.addColumn(QStringLiteral("USED"), Table::Align::Right);
    table.addColumn(QStringLiteral("FREE"), Table::Align::Right);
    table.addColumn(QStringLiteral("CAPACITY"), Table::Align::Right);
    table.addColumn(QStringLiteral("NODE"));
    for (const auto* folder : folders) {
        const QString node = text(folder->szSlaveID);
        const QString host = text(folder->szHostName);
        table.addRow({text(folder->szName), text(folder->szPath), privilegeText(folder->nPrivilege),
                      QString::number(folder->nVolumeID), sizeText(folder->llUsed), sizeText(folder->llFree),
                      sizeText(folder->llCapacity),
                      host.isEmpty() ? node : QStringLiteral("%1 (%2)").arg(node, host)});
    }
    table.print(stdout);
}

void folders(const GlobalOptions& global, const FolderOptions& options) {
    const QString what = QStringLiteral("folders");
    const Session session(resolveConnection(global, Needs::Login));
    RecordList<_NAS_SYNCING_FOLDER_INFORMATION> list;
    uint32_t word = 0;
    const uint32_t dwStatus =
        WFMTorviGetNASSyncinFolderList(session.context(), session.server(), session.port(), options.detail,
                                       options.refresh, cancelFlag(), &word, list.count(), list.list());
    if (interrupted()) throwCancelled(what);
    // -1 stands for a list that the server gave no status with.
    if (dwStatus != 0 || (word != 0 && static_cast<int32_t>(word) != -1))
        throw rawFailure(what, dwStatus, word);
    const auto records = list.records();
    if (global.json) {
        Json all = Json::array();
        for (const auto* folder : records) {
            all.push_back(Json{{"name", utf8(text(folder->szName))},
                               {"path", utf8(text(folder->szPath))},
                               {"privilege", folder->nPrivilege},
                               {"volume", folder->nVolumeID},
                               {"used", sizeJson(folder->llUsed)},
                               {"free", sizeJson(folder->llFree)},
                               {"capacity", sizeJson(folder->llCapacity)},
                               {"node", utf8(text(folder->szSlaveID))},
                               {"host", utf8(text(folder->szHostName))}});
        }
        return printJson(Json{{"count", records.size()}, {"folders", all}});
    }
    if (!records.empty()) printFolders(records);
}

void quota(const GlobalOptions& global, bool everyVolume) {
    const Session session(resolveConnection(global, Needs::Login));
    RecordList<USER_QUOTA_INFO> list;
    bool enabled = false;
    int64_t free = 0;
    int64_t total = 0;
    uint32_t word = 0;
    const uint32_t dwStatus = WebFileManGetQuotaInformation(
        session.context(), session.server(), session.port(), session.node(), everyVolume, nullptr, &enabled,
        &free, &total, list.count(), list.list(), &word);
    check(QStringLiteral("quota"), dwStatus, word);
    if (global.json) {
        Json all = Json::array();
        for (const auto* one : list.records()) {
            all.push_back(Json{{"volume", one->nVolumeID},
                               {"quota", sizeJson(one->llQuotaSize)},
                               {"used", sizeJson(one->llUsedSize)},
                               {"available", sizeJson(one->llAvailableSize)}});
        }
        return printJson(
            Json{{"enabled", enabled}, {"volumeFree", free}, {"volumeTotal", total}, {"quotas", all}});
    }
    printLine(QStringLiteral("Volume: %1 free of %2").arg(humanSize(free), humanSize(total)));
    if (!enabled) return printLine(QStringLiteral("No quota"));
    Table table;
    table.addColumn(QStringLiteral("VOLUME"));
    for (const char* title : {"QUOTA", "USED", "AVAILABLE"})
        table.addColumn(QLatin1String(title), Table::Align::Right);
    for (const auto* one : list.records()) {
        table.addRow({QString::number(one->nVolumeID), sizeText(one->llQuotaSize), sizeText(one->llUsedSize),
                      sizeText(one->llAvailableSize)});
    }
    table.print(stdout);
}

void home(const GlobalOptions& global, const std::string& given) {
    const Session session(resolveConnection(global, Needs::Login));
    const QString user = given.empty() ? session.connection().user : QString::fromStdString(given);
    const QString what = QStringLiteral("home of %1").arg(user);
    std::vector<wchar_t> path(4096);
    const uint32_t dwStatus =
        WFMGetUserHomePath(session.context(), session.server(), session.port(), wide(user).c_str(),
                           static_cast<uint32_t>(path.size()), session.node(), nullptr, path.data());
    if (interrupted()) throwCancelled(what);
    if (dwStatus != 0) throw statusFailure(what, dwStatus);
    if (path.front() == L'\0')
        throw Failure(Exit::NotFound, QStringLiteral("%1: the server tells of none").arg(what))
            .withNumbers(0, std::nullopt);
    if (global.json) return printJson(Json{{"user", utf8(user)}, {"home", utf8(text(path.data()))}});
    printLine(text(path.data()));
}

/// The server tells the length first.
QString vetoText(const Session& session) {
    std::vector<wchar_t> names;
    uint32_t length = 0;
    for (;;) {
        // It takes one character more than it says.
        names.assign(length + 1, L'\0');
        const uint32_t asked = length;
        const uint32_t dwStatus = WFMTorviGetVetoFiles(session.context(), session.server(), session.port(),
                                                       session.node(), nullptr, &length, names.data());
        if (interrupted()) throwCancelled(QStringLiteral("veto"));
        if (dwStatus != 0) throw statusFailure(QStringLiteral("veto"), dwStatus);
        if (length <= asked) return text(names.data());
    }
}

void veto(const GlobalOptions& global) {
    const Session session(resolveConnection(global, Needs::Login));
    const QString text = vetoText(session);
    // The server writes them with a "/" around each.
    const QStringList names = text.split(QRegularExpression(QStringLiteral("[/\n]")), Qt::SkipEmptyParts);
    if (global.json) {
        Json all = Json::array();
        for (const QString& name : names) all.push_back(utf8(name));
        return printJson(Json{{"text", utf8(text)}, {"names", all}});
    }
    for (const QString& name : names) printLine(name);
}

}  // namespace

void addStateCommands(const Commands& commands) {
    const GlobalOptions& global = commands.global;
    Action& action = commands.action;

    CLI::App* statusCommand =
        commands.app.add_subcommand("status", "Tell what is in order on the server, and its addresses");
    auto detail = std::make_shared<bool>(false);
    statusCommand->add_flag("--detail", *detail, "Have the sync service look closely");
    statusCommand->callback(
        [&global, &action, detail] { action = [&global, detail] { status(global, *detail); }; });

    CLI::App* foldersCommand = commands.app.add_subcommand("folders", "List the folders that can be synced");
    auto options = std::make_shared<FolderOptions>();
    foldersCommand->add_flag("--detail", options->detail, "Ask for details, such as sizes");
    foldersCommand->add_flag("--refresh", options->refresh, "Have the server look anew");
    foldersCommand->callback(
        [&global, &action, options] { action = [&global, options] { folders(global, *options); }; });

    CLI::App* quotaCommand = commands.app.add_subcommand("quota", "Tell how much room the user has");
    auto all = std::make_shared<bool>(false);
    quotaCommand->add_flag("--all", *all, "On all volumes");
    quotaCommand->callback([&global, &action, all] { action = [&global, all] { quota(global, *all); }; });

    CLI::App* homeCommand = commands.app.add_subcommand("home", "Tell where a home lies on the server");
    auto user = std::make_shared<std::string>();
    homeCommand->add_option("user", *user, "Whose; one's own if not given")->type_name("");
    homeCommand->callback([&global, &action, user] { action = [&global, user] { home(global, *user); }; });

    CLI::App* vetoCommand = commands.app.add_subcommand("veto", "List the names that are never synced");
    vetoCommand->callback([&global, &action] { action = [&global] { veto(global); }; });
}

}  // namespace torvi
