#pragma once

#include <nlohmann/json.hpp>
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

}  // namespace nas
