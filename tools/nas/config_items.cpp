#include "config_items.h"

#include <algorithm>

#include "status.h"
#include "wire_text.h"

namespace nas {

namespace {

struct DeviceItem {
    const char* section;
    const char* key;
};

const DeviceItem kDeviceItems[] = {
    {"Synchronize", "smart sync"},  {"Policy", "conflict Policy"}, {"Policy", "black file filter"},
    {"Mails", "send method"},       {"Mails", "sender address"},   {"Mails", "sender smtp auth"},
    {"Mails", "sender username"},   {"Mails", "sender password"},  {"Mails", "server name"},
    {"Mails", "server port"},       {"Mails", "server secure"},    {"Mails", "server security protocol"},
    {"Config", "official version"}, {"Config", "manual version"},
};

void requireBase64Text(const std::string& value, const std::string& what) {
    if (!validUtf8(decodeBase64(value, what))) {
        throw Refusal(what + " is not UTF-8 behind its base64");
    }
}

}  // namespace

void to_json(nlohmann::json& json, const ConfigItem& item) {
    json = {{"section", item.section}, {"key", item.key}, {"value", item.value}};
}

void from_json(const nlohmann::json& json, ConfigItem& item) {
    json.at("section").get_to(item.section);
    json.at("key").get_to(item.key);
    json.at("value").get_to(item.value);
}

const ConfigItem* findItem(const ConfigItems& items, const std::string& section, const std::string& key) {
    const auto it = std::find_if(items.begin(), items.end(), [&](const ConfigItem& item) {
        return item.section == section && item.key == key;
    });
    return it == items.end() ? nullptr : &*it;
}

void putItem(ConfigItems& items, const ConfigItem& item) {
    for (ConfigItem& old : items) {
        if (old.name() == item.name()) {
            old = item;
            return;
        }
    }
    items.push_back(item);
}

void requireDeviceItem(const ConfigItem& item, const std::string& what) {
    const bool known = std::any_of(std::begin(kDeviceItems), std::end(kDeviceItems), [&](const auto& row) {
        return item.section == row.section && item.key == row.key;
    });
    if (!known) {
        throw Refusal(what + " is that of " + item.name() + ", which devices don't have");
    }
    // Its entries are joined by tabs, which travel as "\t".
    if (item.key == "black file filter" && item.value.find('\t') != std::string::npos) {
        throw Refusal(what + " holds a tab");
    }
    if (item.key == "sender password") {
        requireBase64Text(item.value, what);
    }
}

}  // namespace nas
