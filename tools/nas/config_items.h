#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace nas {

// A setting of a device, or a rule of what users may change, as the wire has it.
struct ConfigItem {
    std::string section;
    std::string key;
    std::string value;

    std::string name() const { return section + "/" + key; }
};
using ConfigItems = std::vector<ConfigItem>;

void to_json(nlohmann::json& json, const ConfigItem& item);
void from_json(const nlohmann::json& json, ConfigItem& item);

// The item of the same name; null if there is none.
const ConfigItem* findItem(const ConfigItems& items, const std::string& section, const std::string& key);
// In place of the item of the same name, or behind all.
void putItem(ConfigItems& items, const ConfigItem& item);

// Refuses an item that devices don't have, and a value that isn't in its form.
void requireDeviceItem(const ConfigItem& item, const std::string& what);

// What users may change, before anybody said otherwise.
const ConfigItems& firstConfigAcl();
// Throws std::invalid_argument for a rule that there is none of, or a value other than "0" and "1".
void requireAclRule(const ConfigItem& rule);
// "section:key:value".
ConfigItem parseAclRule(const std::string& text);

// What an administrator says of the configuration.
struct ConfigRules {
    ConfigItems acl;
    std::optional<std::string> password;  // empty for none
};

// Where the rest of the rules holds for users at all.
bool isManaged(const ConfigItems& acl);
// Whether the right password opens what users may not change.
bool passwordOpens(const ConfigItems& acl);
// Whether users may change an item by themselves.
bool isFree(const ConfigItems& acl, const ConfigItem& item);

}  // namespace nas
