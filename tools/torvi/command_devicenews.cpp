#include <memory>

#include "devicecommands.h"
#include "devices.h"
#include "output.h"
#include "recordlist.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

struct ListOptions {
    std::string user;
    Window window;
};

struct NotifyOptions {
    std::string user;
    std::string device;
    Window window;
};

/// A rule of what the user may set.
struct Rule {
    const char* name;
    uint32_t WFM_TORVI_CONFIG_ACL_INFO::*value;
    const char* label;
};

constexpr Rule kRules[] = {
    {"managed", &WFM_TORVI_CONFIG_ACL_INFO::dwManagerMode, "An administrator decides what one may set"},
    {"password", &WFM_TORVI_CONFIG_ACL_INFO::dwUseManagerPassword, "A password opens what one may not set"},
    {"client", &WFM_TORVI_CONFIG_ACL_INFO::dwClientSetConfig, "Clients may set anything at all"},
    {"smart-sync", &WFM_TORVI_CONFIG_ACL_INFO::dwSmartSync, "One may set smart-sync"},
    {"conflict-policy", &WFM_TORVI_CONFIG_ACL_INFO::dwConflictPolicy, "One may set conflict-policy"},
    {"file-filter", &WFM_TORVI_CONFIG_ACL_INFO::dwBlackFileFilter, "One may set file-filter"},
    {"mail", &WFM_TORVI_CONFIG_ACL_INFO::dwMails, "One may set all that begins with mail-"},
};

/// The changes that a call has allocated.
class ReceivedChanges {
public:
    ReceivedChanges() = default;
    ~ReceivedChanges() {
        for (uint32_t i = 0; i < m_list.dwCount; ++i) delete m_list.lppItems[i];
        delete[] m_list.lppItems;
    }
    ReceivedChanges(const ReceivedChanges&) = delete;
    ReceivedChanges& operator=(const ReceivedChanges&) = delete;

    WFM_TORVI_CONFIG_NOTIFY_LIST* list() { return &m_list; }
    std::vector<const WFM_TORVI_CONFIG_NOTIFY_ITEM_INFO*> changes() const {
        if (m_list.lppItems == nullptr) return {};
        return {m_list.lppItems, m_list.lppItems + m_list.dwCount};
    }

private:
    WFM_TORVI_CONFIG_NOTIFY_LIST m_list = {};
};

void list(const GlobalOptions& global, const ListOptions& options) {
    const QString what = QStringLiteral("device config list");
    QString user;
    Devices devices;
    {
        const Session session(resolveConnection(global, Needs::Login));
        user = chosenUser(session, options.user);
        devices = deviceList(session, what, user, options.window);
    }
    if (global.json) {
        Json all = Json::array();
        for (const Device& device : devices.devices) {
            all.push_back(Json{{"name", utf8(device.name)},
                               {"uid", utf8(device.uid)},
                               {"ip", utf8(device.ip)},
                               {"mtime", device.modified},
                               {"modified", isoTime(device.modified)}});
        }
        return printJson(Json{{"user", utf8(user)},
                              {"total", devices.total},
                              {"count", devices.devices.size()},
                              {"devices", all}});
    }
    if (devices.devices.empty()) {
        if (!global.quiet) printLine(QStringLiteral("There are none"));
        return;
    }
    Table table;
    for (const char* title : {"NAME", "UID", "ADDRESS", "CHANGED"}) table.addColumn(QLatin1String(title));
    for (const Device& device : devices.devices)
        table.addRow({device.name, device.uid, device.ip, localTime(device.modified)});
    table.print(stdout);
}

void acl(const GlobalOptions& global) {
    WFM_TORVI_CONFIG_ACL_INFO rules = {};
    {
        const Session session(resolveConnection(global, Needs::Login));
        rules = configAcl(session, QStringLiteral("device config acl"));
    }
    if (global.json) {
        Json json;
        for (const Rule& rule : kRules) json[rule.name] = rules.*rule.value != 0;
        return printJson(json);
    }
    Table table;
    for (const char* title : {"RULE", "HOLDS", "WHAT IT IS"}) table.addColumn(QLatin1String(title));
    for (const Rule& rule : kRules) {
        table.addRow({QLatin1String(rule.name),
                      rules.*rule.value != 0 ? QStringLiteral("yes") : QStringLiteral("no"),
                      QLatin1String(rule.label)});
    }
    table.print(stdout);
}

Json toJson(const WFM_TORVI_CONFIG_NOTIFY_ITEM_INFO& change) {
    return Json{{"id", change.nEventID},
                {"user", utf8(text(change.szUser))},
                {"device", utf8(text(change.szDeviceUID))},
                {"action", utf8(text(change.szAction))},
                {"type", utf8(text(change.szType))},
                {"status", utf8(text(change.szStatus))},
                {"time", utf8(text(change.szTime))},
                {"modifier", utf8(text(change.szModifier))},
                {"value", utf8(text(change.szValue))}};
}

/// As seconds if it is that, else as the server writes it.
QString timeText(const QString& time) {
    bool number = false;
    const int64_t seconds = time.toLongLong(&number);
    return number ? localTime(seconds) : time;
}

void printChanges(const ReceivedChanges& received) {
    Table table;
    for (const char* title : {"ID", "TIME", "USER", "DEVICE", "BY", "TYPE", "STATUS", "WHAT"})
        table.addColumn(QLatin1String(title));
    for (const auto* change : received.changes()) {
        table.addRow({QString::number(change->nEventID), timeText(text(change->szTime)), text(change->szUser),
                      text(change->szDeviceUID), text(change->szModifier), text(change->szType),
                      text(change->szStatus), text(change->szValue)});
    }
    table.print(stdout);
}

/// How far a request goes that is to bring all of it.
uint32_t upperEnd(const Window& window) {
    constexpr uint32_t kAll = 1000000000;
    return window.offset + (window.limit > 0 ? window.limit : kAll);
}

void notify(const GlobalOptions& global, const NotifyOptions& options) {
    const QString what = QStringLiteral("device config notify");
    ReceivedChanges received;
    {
        const Session session(resolveConnection(global, Needs::Login));
        const QString user = QString::fromStdString(options.user);
        requirePlain(what, user);
        const QString device = options.device.empty()
                                   ? QString()
                                   : chooseDevice(session, what, {options.user, options.device}).uid;
        uint32_t word = 0;
        const uint32_t dwStatus = WFMGetConfigNotifyInfo(
            session.context(), session.server(), session.port(), wide(user).c_str(), wide(device).c_str(),
            options.window.offset, upperEnd(options.window), nullptr, &word, received.list());
        check(what, dwStatus, word);
    }
    if (global.json) {
        Json all = Json::array();
        for (const auto* change : received.changes()) all.push_back(toJson(*change));
        return printJson(Json{{"offset", options.window.offset}, {"count", all.size()}, {"changes", all}});
    }
    if (!received.changes().empty()) return printChanges(received);
    if (!global.quiet) printLine(QStringLiteral("There are none"));
}

}  // namespace

WFM_TORVI_CONFIG_ACL_INFO configAcl(const Session& session, const QString& what) {
    WFM_TORVI_CONFIG_ACL_INFO acl = {};
    uint32_t word = 0;
    const uint32_t dwStatus =
        WFMGetConfigACL(session.context(), session.server(), session.port(), nullptr, &word, &acl);
    check(what, dwStatus, word);
    return acl;
}

void addDeviceNewsCommands(const Commands& commands) {
    CLI::App* listCommand = commands.app.add_subcommand("list", "List the devices that there are");
    auto which = std::make_shared<ListOptions>();
    listCommand->add_option("--of", which->user, "Whose; one's own if not given")->type_name("NAME");
    which->window.addTo(*listCommand);
    which->window.addPagesTo(*listCommand, "Devices");
    runs(commands, listCommand, which, list);

    CLI::App* aclCommand = commands.app.add_subcommand("acl", "Show what one may set");
    aclCommand->callback(
        [&global = commands.global, &action = commands.action] { action = [&global] { acl(global); }; });

    CLI::App* notifyCommand =
        commands.app.add_subcommand("notify", "List what others have changed on devices");
    auto options = std::make_shared<NotifyOptions>();
    notifyCommand->add_option("--of", options->user, "Only on devices of this user")->type_name("NAME");
    notifyCommand->add_option("--device", options->device, "Only on this device, by its name or its uid")
        ->type_name("DEVICE");
    options->window.addTo(*notifyCommand);
    runs(commands, notifyCommand, options, notify);
}

}  // namespace torvi
