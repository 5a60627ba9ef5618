#include <WebFileManShareAPI.h>

#include <algorithm>
#include <memory>
#include <set>

#include "devicecommands.h"
#include "deviceitems.h"
#include "devices.h"
#include "failure.h"
#include "output.h"
#include "password.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

struct GetOptions {
    std::vector<std::string> items;
    DeviceChoice device;
    bool asTemplate = false;
    bool own = false;
    bool check = false;
    bool secrets = false;
};

struct SetOptions {
    std::vector<std::string> values;
    DeviceChoice device;
    bool asTemplate = false;
    bool atOnce = false;
    std::optional<std::string> mailPasswordFile;
    std::optional<std::string> passwordFile;
};

struct ResetOptions {
    DeviceChoice device;
    bool dryRun = false;
};

/// Items that a call has allocated.
class ReceivedItems {
public:
    ReceivedItems() = default;
    ~ReceivedItems() {
        for (uint32_t i = 0; i < m_list.dwCount; ++i) {
            delete[] m_list.lppItems[i]->pszValue;
            delete m_list.lppItems[i];
        }
        delete[] m_list.lppItems;
    }
    ReceivedItems(const ReceivedItems&) = delete;
    ReceivedItems& operator=(const ReceivedItems&) = delete;

    WFM_TORVI_DEVICE_CONFIG_LIST* list() { return &m_list; }
    std::vector<DeviceValue> values() const {
        std::vector<DeviceValue> values;
        for (uint32_t i = 0; i < m_list.dwCount; ++i) {
            const auto& item = *m_list.lppItems[i];
            if (const DeviceItem* known = findDeviceItem(item.dwFlag))
                values.push_back({known, QString::fromWCharArray(item.pszValue)});
        }
        return values;
    }

private:
    WFM_TORVI_DEVICE_CONFIG_LIST m_list = {};
};

/// Items in the form in which a call takes them.
class SentItems {
public:
    SentItems(const std::vector<DeviceValue>& values, bool atOnce)
        : m_texts(values.size()), m_items(values.size()) {
        for (size_t i = 0; i < values.size(); ++i) {
            m_texts[i] = wide(values[i].value);
            m_items[i] = {values[i].item->flag, m_texts[i].data(), atOnce ? 1 : 0};
            m_pointers.push_back(&m_items[i]);
        }
        m_list = {static_cast<uint32_t>(m_pointers.size()), m_pointers.data()};
    }
    SentItems(const SentItems&) = delete;
    SentItems& operator=(const SentItems&) = delete;

    const WFM_TORVI_DEVICE_CONFIG_LIST* list() const { return &m_list; }

private:
    std::vector<std::wstring> m_texts;
    std::vector<WFM_TORVI_GET_DEVICE_CONFIG_ITEM_INFO> m_items;
    std::vector<WFM_TORVI_GET_DEVICE_CONFIG_ITEM_INFO*> m_pointers;
    WFM_TORVI_DEVICE_CONFIG_LIST m_list = {};
};

std::vector<DeviceValue> deviceValues(const Session& session, const QString& what, const QString& uid,
                                      const GetOptions& options) {
    constexpr int32_t kInEffect = 0;
    constexpr int32_t kTemplate = 1;
    constexpr int32_t kOwn = 3;
    constexpr int32_t kNothingSaved = -4;
    ReceivedItems items;
    uint32_t word = 0;
    const uint32_t dwStatus =
        WFMGetDeviceConfigInfo(session.context(), session.server(), session.port(), wide(uid).c_str(),
                               options.asTemplate ? kTemplate
                               : options.own      ? kOwn
                                                  : kInEffect,
                               options.check, nullptr, &word, items.list());
    if (options.check && dwStatus == 0 && static_cast<int32_t>(word) == kNothingSaved) {
        throw Failure(Exit::NotFound, QStringLiteral("%1: nothing is saved for %2").arg(what, uid))
            .withNumbers(dwStatus, kNothingSaved);
    }
    check(what, dwStatus, word);
    return items.values();
}

/// Those of these names, or all.
std::vector<DeviceValue> filtered(const std::vector<DeviceValue>& values,
                                  const std::vector<std::string>& names) {
    if (names.empty()) return values;
    std::vector<DeviceValue> wanted;
    for (const DeviceValue& value : values) {
        if (std::find(names.begin(), names.end(), value.item->name) != names.end()) wanted.push_back(value);
    }
    return wanted;
}

void printValues(const GlobalOptions& global, const std::vector<DeviceValue>& values, bool secrets) {
    if (values.empty()) {
        if (!global.quiet) printLine(QStringLiteral("Nothing is set"));
        return;
    }
    Table table;
    table.addColumn(QStringLiteral("ITEM"));
    table.addColumn(QStringLiteral("VALUE"));
    for (const DeviceValue& value : values)
        table.addRow({QLatin1String(value.item->name), value.text(secrets)});
    table.print(stdout);
}

Json toJson(const ChosenDevice& device, const std::vector<DeviceValue>& values, bool secrets) {
    Json items = Json::object();
    for (const DeviceValue& value : values) items[value.item->name] = value.json(secrets);
    return Json{{"device", utf8(device.uid)}, {"count", values.size()}, {"items", items}};
}

void get(const GlobalOptions& global, const GetOptions& options) {
    const QString what = QStringLiteral("device config get");
    ChosenDevice device;
    std::vector<DeviceValue> values;
    {
        const Session session(resolveConnection(global, Needs::Login));
        device = chooseDevice(session, what, options.device);
        values = filtered(deviceValues(session, what, device.uid, options), options.items);
    }
    if (global.json) return printJson(toJson(device, values, options.secrets));
    printValues(global, values, options.secrets);
}

/// The configuration password, if it is given.
QString givenPassword(const SetOptions& options) {
    const QString what = QStringLiteral("configuration password");
    if (options.passwordFile) return readSecretFile(QString::fromStdString(*options.passwordFile), what);
    return QString::fromUtf8(qgetenv("TORVI_CONFIG_PASSWORD"));
}

/// Puts in the values that no argument may have.
void findSecrets(const QString& what, const SetOptions& options, std::vector<DeviceValue>& values) {
    const QString name = QStringLiteral("mail password");
    bool wanted = false;
    for (DeviceValue& value : values) {
        if (!value.item->secret) continue;
        wanted = true;
        if (options.mailPasswordFile) {
            value.value = readSecretFile(QString::fromStdString(*options.mailPasswordFile), name);
        } else if (hasTerminal()) {
            value.value = askOnTerminal(QStringLiteral("Password of the mail account: "), name, Echo::Off);
        } else {
            throw Failure(
                Exit::Usage,
                QStringLiteral("%1: no mail password: give --mail-password-file, or run on a terminal")
                    .arg(what));
        }
    }
    if (options.mailPasswordFile && !wanted)
        throw Failure(Exit::Usage,
                      QStringLiteral("%1: --mail-password-file goes with mail-password").arg(what));
}

void testPassword(const Session& session, const QString& what, const QString& password) {
    constexpr uint32_t kRight = 1;
    uint32_t word = 0;
    uint32_t result = 0;
    const uint32_t dwStatus = WFMAuthConfigPassword(session.context(), session.server(), session.port(),
                                                    wide(password).c_str(), nullptr, &word, &result);
    check(what, dwStatus, word);
    if (result != kRight)
        throw Failure(Exit::NotAuthenticated,
                      QStringLiteral("%1: the configuration password is wrong").arg(what));
}

/// The server's own status.
uint32_t save(const Session& session, const QString& what, const SetOptions& options,
              const ChosenDevice& device, const std::vector<DeviceValue>& values, const QString& password) {
    const SentItems items(values, options.atOnce);
    uint32_t status = 0;
    const uint32_t dwStatus = WFMSetDeviceConfigInfo(
        session.context(), session.server(), session.port(), nullptr, wide(device.user).c_str(),
        wide(device.uid).c_str(), wide(password).c_str(), options.asTemplate ? 1 : 0, items.list(), &status);
    if (interrupted()) throwCancelled(what);
    if (dwStatus != 0) throw rawFailure(what, dwStatus, status);
    return status;
}

/// Whether the configuration password opens what the user may not set.
bool passwordHelps(const Session& session, const QString& what) {
    const WFM_TORVI_CONFIG_ACL_INFO acl = configAcl(session, what);
    return acl.dwManagerMode != 0 && acl.dwUseManagerPassword != 0;
}

/// With the password that was given; where none was and the server wants one, with one that is asked for.
void saveWithPassword(const Session& session, const QString& what, const SetOptions& options,
                      const ChosenDevice& device, const std::vector<DeviceValue>& values) {
    QString password = givenPassword(options);
    if (!password.isEmpty()) testPassword(session, what, password);
    uint32_t status = save(session, what, options, device, values, password);
    if (status == 0) return;
    const Failure refused = rawFailure(what, 0, status);
    if (!password.isEmpty() || refused.exit() != Exit::Denied || !passwordHelps(session, what)) throw refused;
    if (!hasTerminal())
        throw refused.withAdvice(QStringLiteral("give the configuration password: --config-password-file"));
    password =
        askOnTerminal(QStringLiteral("Configuration password of %1: ").arg(session.connection().address()),
                      QStringLiteral("configuration password"), Echo::Off);
    testPassword(session, what, password);
    status = save(session, what, options, device, values, password);
    if (status != 0) throw rawFailure(what, 0, status);
}

void set(const GlobalOptions& global, const SetOptions& options) {
    const QString what = QStringLiteral("device config set");
    std::vector<DeviceValue> values = parseDeviceValues(what, options.values);
    findSecrets(what, options, values);
    ChosenDevice device;
    {
        const Session session(resolveConnection(global, Needs::Login));
        device = chooseDevice(session, what, options.device);
        requirePlain(what, device.user);
        saveWithPassword(session, what, options, device, values);
    }
    if (global.json) return printJson(toJson(device, values, false));
    if (!global.quiet) printValues(global, values, false);
}

void reset(const GlobalOptions& global, const ResetOptions& options) {
    const QString what = QStringLiteral("device config reset");
    ChosenDevice device;
    {
        const Session session(resolveConnection(global, Needs::Login));
        device = chooseDevice(session, what, options.device);
        uint32_t status = 0;
        const uint32_t dwStatus =
            options.dryRun ? 0
                           : WebFileManResetDeviceConfig(session.context(), session.server(), session.port(),
                                                         wide(device.user).c_str(), wide(device.uid).c_str(),
                                                         nullptr, &status);
        if (interrupted()) throwCancelled(what);
        if (dwStatus != 0 || status != 0) throw rawFailure(what, dwStatus, status);
    }
    if (global.json) {
        return printJson(
            Json{{"user", utf8(device.user)}, {"device", utf8(device.uid)}, {"reset", !options.dryRun}});
    }
    if (global.quiet && !options.dryRun) return;
    printLine(QStringLiteral("%1 the configuration of device %2 of %3")
                  .arg(options.dryRun ? QStringLiteral("would reset") : QStringLiteral("reset"), device.uid,
                       device.user));
}

void addConfigGetCommand(const Commands& commands) {
    CLI::App* command = commands.app.add_subcommand("get", "Show what the server keeps for a device");
    auto options = std::make_shared<GetOptions>();
    std::set<std::string> names;
    for (const QString& name : deviceItemNames()) names.insert(utf8(name));
    command->add_option("items", options->items, "Only these; all if none is given")
        ->check(CLI::IsMember(names).description(""))
        ->type_name("ITEM");
    options->device.addTo(*command);
    auto* asTemplate = command->add_flag("--template", options->asTemplate, "What the user's template says");
    command->add_flag("--own", options->own, "Without what comes from the template")->excludes(asTemplate);
    command->add_flag("--check", options->check, "It is a failure, 5, if nothing was saved for it");
    command->add_flag("--secrets", options->secrets, "The mail password, too");
    runs(commands, command, options, get);
}

void addConfigSetCommand(const Commands& commands) {
    CLI::App* command = commands.app.add_subcommand("set", "Set what the server keeps for a device");
    auto options = std::make_shared<SetOptions>();
    command
        ->add_option("values", options->values,
                     "What becomes what, as in mail-port=25. file-filter may stand several times, with one "
                     "pattern each; mail-password stands alone")
        ->type_name("ITEM=VALUE")
        ->required();
    options->device.addForOthersTo(*command);
    command->add_flag("--template", options->asTemplate, "Set it in the user's template, too");
    command->add_flag("--at-once", options->atOnce, "Tell the device to act on it without delay");
    command
        ->add_option("--mail-password-file", options->mailPasswordFile,
                     "Read the mail password from the file's first line; - is stdin")
        ->type_name("FILE");
    command
        ->add_option("--config-password-file", options->passwordFile,
                     "Read the password that opens what one may not set from the file's first line")
        ->type_name("FILE");
    runs(commands, command, options, set);
}

void addConfigResetCommand(const Commands& commands) {
    CLI::App* command = commands.app.add_subcommand("reset", "Take back all that was set for a device");
    auto options = std::make_shared<ResetOptions>();
    options->device.addForOthersTo(*command);
    command->add_flag("--dry-run", options->dryRun, "Only tell of which device");
    runs(commands, command, options, reset);
}

}  // namespace

void addDeviceCommand(const Commands& commands) {
    CLI::App* device = commands.app.add_subcommand("device", "What the server keeps for the user's devices");
    device->require_subcommand(1);
    CLI::App* config = device->add_subcommand("config", "Show and set how devices are configured");
    config->require_subcommand(1);
    const Commands own{*config, commands.global, commands.action};
    addConfigGetCommand(own);
    addConfigSetCommand(own);
    addDeviceNewsCommands(own);
    addConfigResetCommand(own);
}

}  // namespace torvi
