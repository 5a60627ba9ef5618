#include <WebFileManShareAPI.h>

#include <QStringList>
#include <iterator>
#include <memory>
#include <optional>
#include <set>

#include "commands.h"
#include "failure.h"
#include "output.h"
#include "session.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

struct SettingOptions {
    std::string name;
    std::string value;
};

/// A value of a setting that has a word.
struct SettingValue {
    const char* word;
    uint32_t number;
};

uint32_t askRecycleBin(const Session& session, uint32_t& value) {
    bool enabled = false;
    const uint32_t dwStatus =
        WebFileManGetRecycleBin(session.context(), session.server(), session.port(), nullptr, &enabled);
    value = enabled ? 1 : 0;
    return dwStatus;
}

uint32_t setRecycleBin(const Session& session, uint32_t value, uint32_t& word) {
    return WebFileManSetRecycleBin(session.context(), session.server(), session.port(), value, nullptr,
                                   &word);
}

uint32_t askPolicy(const Session& session, uint32_t& value) {
    return WebFileManGetPolicy(session.context(), session.server(), session.port(), nullptr, &value);
}

uint32_t setPolicy(const Session& session, uint32_t value, uint32_t& word) {
    return WebFileManSetPolicy(session.context(), session.server(), session.port(), value, nullptr, &word);
}

constexpr SettingValue kSwitch[] = {{"off", 0}, {"on", 1}};
constexpr SettingValue kPolicies[] = {{"ask", 0}, {"accept", 1}, {"refuse", 2}};

/// What a user can set of the sharing service.
struct Setting {
    const char* name;
    const char* key;  ///< in JSON
    const char* label;
    const SettingValue* values;
    size_t valueCount;
    uint32_t (*ask)(const Session&, uint32_t& value);
    uint32_t (*set)(const Session&, uint32_t value, uint32_t& word);
};

constexpr Setting kSettings[] = {
    {"recycle-bin", "recycleBin", "What is deleted waits in the trash", kSwitch, std::size(kSwitch),
     askRecycleBin, setRecycleBin},
    {"policy", "policy", "What others share with this user", kPolicies, std::size(kPolicies), askPolicy,
     setPolicy},
};

const Setting* findSetting(const std::string& name) {
    for (const Setting& setting : kSettings) {
        if (setting.name == name) return &setting;
    }
    return nullptr;
}

/// Its word, or the server's number where there is none.
QString valueText(const Setting& setting, uint32_t value) {
    for (size_t i = 0; i < setting.valueCount; ++i) {
        if (setting.values[i].number == value) return QLatin1String(setting.values[i].word);
    }
    return QString::number(value);
}

uint32_t parseValue(const Setting& setting, const std::string& text) {
    QStringList words;
    for (size_t i = 0; i < setting.valueCount; ++i) {
        if (setting.values[i].word == text) return setting.values[i].number;
        words << QLatin1String(setting.values[i].word);
    }
    bool number = false;
    const uint32_t value = QString::fromStdString(text).toUInt(&number);
    if (!number) {
        throw Failure(Exit::Usage, QStringLiteral("settings: %1 is %2 or the server's own number")
                                       .arg(QLatin1String(setting.name), words.join(QStringLiteral(", "))));
    }
    return value;
}

uint32_t ask(const Session& session, const Setting& setting) {
    const QString what = QStringLiteral("settings: %1").arg(QLatin1String(setting.name));
    uint32_t value = 0;
    const uint32_t dwStatus = setting.ask(session, value);
    if (interrupted()) throwCancelled(what);
    if (dwStatus != 0) throw statusFailure(what, dwStatus);
    return value;
}

void set(const Session& session, const Setting& setting, uint32_t value) {
    const QString what =
        QStringLiteral("settings: %1 %2").arg(QLatin1String(setting.name), valueText(setting, value));
    uint32_t word = 0;
    const uint32_t dwStatus = setting.set(session, value, word);
    check(what, dwStatus, word);
}

void settings(const GlobalOptions& global, const SettingOptions& options) {
    const Setting* chosen = findSetting(options.name);
    const std::optional<uint32_t> value =
        options.value.empty() ? std::nullopt : std::optional(parseValue(*chosen, options.value));
    std::vector<std::pair<const Setting*, uint32_t>> told;
    {
        const Session session(resolveConnection(global, Needs::Login));
        if (value) set(session, *chosen, *value);
        for (const Setting& setting : kSettings) {
            if (chosen == nullptr || chosen == &setting) told.emplace_back(&setting, ask(session, setting));
        }
    }
    if (global.json) {
        Json json;
        for (const auto& [setting, number] : told) {
            json[setting->key] = Json{{"value", utf8(valueText(*setting, number))}, {"number", number}};
        }
        return printJson(json);
    }
    if (global.quiet && value) return;
    Table table;
    for (const char* title : {"SETTING", "VALUE", "WHAT IT IS"}) table.addColumn(QLatin1String(title));
    for (const auto& [setting, number] : told) {
        table.addRow(
            {QLatin1String(setting->name), valueText(*setting, number), QLatin1String(setting->label)});
    }
    table.print(stdout);
}

}  // namespace

void addSettingsCommand(const Commands& commands) {
    CLI::App* command =
        commands.app.add_subcommand("settings", "Show or set what the server shares and keeps for this user");
    auto options = std::make_shared<SettingOptions>();
    std::set<std::string> names;
    for (const Setting& setting : kSettings) names.insert(setting.name);
    command->add_option("name", options->name, "recycle-bin or policy; both if not given")
        ->check(CLI::IsMember(names).description(""))
        ->type_name("");
    command
        ->add_option("value", options->value,
                     "What it becomes. recycle-bin: on, off; policy: ask, accept, refuse; or a number of the "
                     "server's own")
        ->type_name("");
    runs(commands, command, options, settings);
}

}  // namespace torvi
