#include "config_rules.h"

#include <stdexcept>

#include "rule_text.h"

namespace nas {

namespace {

constexpr const char* kOn = "1";
constexpr const char* kOff = "0";

bool isOn(const ConfigItems& acl, const std::string& section, const std::string& key) {
    const ConfigItem* rule = findItem(acl, section, key);
    return !rule || rule->value != kOff;
}

}  // namespace

const ConfigItems& firstConfigAcl() {
    static const ConfigItems rules = {
        {"Admin", "manager mode", kOn},
        {"Admin", "use manager password", kOff},
        {"Admin", "client set config", kOn},
        {"Synchronize", "smart sync", kOn},
        {"Policy", "conflict Policy", kOn},
        {"Policy", "black file filter", kOn},
        {"Mails", "all", kOn},
    };
    return rules;
}

void requireAclRule(const ConfigItem& rule) {
    if (!findItem(firstConfigAcl(), rule.section, rule.key)) {
        throw std::invalid_argument("no rule " + rule.name());
    }
    if (rule.value != kOn && rule.value != kOff) {
        throw std::invalid_argument(rule.name() + " is 0 or 1, not " + rule.value);
    }
}

ConfigItem parseAclRule(const std::string& text) {
    const auto pieces = splitRule(text, 3);
    if (pieces.size() != 3) {
        throw std::invalid_argument("--config-acl wants section:key:0 or section:key:1, not " + text);
    }
    const ConfigItem rule = {pieces[0], pieces[1], pieces[2]};
    requireAclRule(rule);
    return rule;
}

bool isManaged(const ConfigItems& acl) {
    return isOn(acl, "Admin", "manager mode");
}

bool passwordOpens(const ConfigItems& acl) {
    return isOn(acl, "Admin", "use manager password");
}

bool isFree(const ConfigItems& acl, const ConfigItem& item) {
    return isOn(acl, "Admin", "client set config") &&
           isOn(acl, item.section, item.section == "Mails" ? "all" : item.key);
}

}  // namespace nas
