#include "deviceitems.h"

#include <WebFileManShareAPI.h>

#include <algorithm>

#include "failure.h"

namespace torvi {
namespace {

constexpr QChar kBetweenEntries = QLatin1Char('\t');

constexpr DeviceItem kItems[] = {
    {WFM_CONFIG_SMART_SYNC, "smart-sync", false, false},
    {WFM_CONFIG_CONFLICT_POLICY, "conflict-policy", false, false},
    {WFM_CONFIG_BLACK_FILE_FILTER, "file-filter", false, true},
    {WFM_CONFIG_MAIL_SEND_METHOD, "mail-method", false, false},
    {WFM_CONFIG_MAIL_SENDER_ADDRESS, "mail-address", false, false},
    {WFM_CONFIG_MAIL_SENDER_SMTP_AUTH, "mail-smtp-auth", false, false},
    {WFM_CONFIG_MAIL_SENDER_USERNAME, "mail-user", false, false},
    {WFM_CONFIG_MAIL_SENDER_PASSWORD, "mail-password", true, false},
    {WFM_CONFIG_MAIL_SERVER_NAME, "mail-server", false, false},
    {WFM_CONFIG_MAIL_SERVER_PORT, "mail-port", false, false},
    {WFM_CONFIG_MAIL_SERVER_SECURE, "mail-secure", false, false},
    {WFM_CONFIG_MAIL_SERVER_SECURITY_PROTOCOL, "mail-protocol", false, false},
    {WFM_CONFIG_OFFICIAL_VERSION, "official-version", false, false},
    {WFM_CONFIG_MANUAL_VERSION, "manual-version", false, false},
};

Failure wrong(const QString& what, const QString& why) {
    return Failure(Exit::Usage, QStringLiteral("%1: %2").arg(what, why));
}

/// The item that an argument names.
const DeviceItem& itemOf(const QString& what, const QString& name) {
    if (const DeviceItem* item = findDeviceItem(name)) return *item;
    throw wrong(what,
                QStringLiteral("%1 is none of %2").arg(name, deviceItemNames().join(QStringLiteral(", "))));
}

void add(const QString& what, std::vector<DeviceValue>& values, const DeviceItem& item,
         const QString& value) {
    const auto before = std::find_if(values.begin(), values.end(),
                                     [&item](const DeviceValue& other) { return other.item == &item; });
    if (before == values.end()) return values.push_back({&item, value});
    if (!item.list) throw wrong(what, QStringLiteral("%1 stands there twice").arg(QLatin1String(item.name)));
    before->value += kBetweenEntries + value;
}

}  // namespace

const DeviceItem* findDeviceItem(const QString& name) {
    for (const DeviceItem& item : kItems) {
        if (name == QLatin1String(item.name)) return &item;
    }
    return nullptr;
}

const DeviceItem* findDeviceItem(uint32_t flag) {
    for (const DeviceItem& item : kItems) {
        if (item.flag == flag) return &item;
    }
    return nullptr;
}

QStringList deviceItemNames() {
    QStringList names;
    for (const DeviceItem& item : kItems) names << QLatin1String(item.name);
    return names;
}

QStringList DeviceValue::entries() const {
    return value.split(kBetweenEntries, Qt::SkipEmptyParts);
}

QString DeviceValue::text(bool secrets) const {
    if (value.isEmpty()) return QStringLiteral("-");
    if (item->secret && !secrets) return QStringLiteral("(set)");
    return item->list ? entries().join(QStringLiteral(", ")) : value;
}

Json DeviceValue::json(bool secrets) const {
    if (item->secret && !secrets) return nullptr;
    if (!item->list) return utf8(value);
    Json all = Json::array();
    for (const QString& entry : entries()) all.push_back(utf8(entry));
    return all;
}

std::vector<DeviceValue> parseDeviceValues(const QString& what, const std::vector<std::string>& arguments) {
    std::vector<DeviceValue> values;
    for (const std::string& argument : arguments) {
        const QString text = QString::fromStdString(argument);
        const int equals = text.indexOf(QLatin1Char('='));
        const DeviceItem& item = itemOf(what, text.left(equals));
        if (item.secret != (equals < 0)) {
            throw wrong(what, (item.secret ? QStringLiteral(
                                                 "%1 stands without a value, which other users could see; it "
                                                 "is asked for, or read from a file")
                                           : QStringLiteral("%1 wants a value, as in %1=VALUE"))
                                  .arg(QLatin1String(item.name)));
        }
        add(what, values, item, item.secret ? QString() : text.mid(equals + 1));
    }
    return values;
}

}  // namespace torvi
