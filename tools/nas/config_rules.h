#pragma once

#include <optional>
#include <string>

#include "config_items.h"

namespace nas {

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
