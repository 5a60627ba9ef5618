#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "config_rules.h"

namespace nas {

// A client installation of one user. It has a name and an address once it logged in.
struct Device {
    std::string name;
    std::string ip;
    ConfigItems items;
    int64_t changed = 0;  // when its items last did
    int64_t order = 0;    // later ones have a larger one
};

// What happened to a device's configuration; the number is the "event_type" of the wire.
enum class ConfigEvent { Saved = 1, SavedAsTemplate = 2, Reset = 3 };

// What an administrator did to the configuration of somebody's device.
struct ConfigNotice {
    int64_t id = 0;
    std::string user;
    std::string device;
    bool atOnce = false;  // the device is to act on it without delay
    ConfigEvent event = ConfigEvent::Saved;
    bool fetched = false;  // the device asked for its configuration since
    int64_t time = 0;
    std::string modifier;
    std::string value;  // the names of the items
};

// What a save asks for.
struct ConfigSave {
    ConfigItems items;
    bool asTemplate = false;
    bool atOnce = false;
};

// All devices with what they are configured to, and the rules about it. A plain value.
struct DeviceBook {
    struct OfUser {
        std::map<std::string, Device> devices;  // by their uid
        ConfigItems templateItems;
    };

    std::map<std::string, OfUser> users;
    std::vector<ConfigNotice> notices;
    int64_t lastNotice = 0;
    int64_t lastDevice = 0;
    ConfigItems acl = firstConfigAcl();
    std::string password;  // empty: there is none

    const Device* find(const std::string& user, const std::string& uid) const;
    const ConfigItems& templateOf(const std::string& user) const;
    // The template's items, each replaced by the device's own.
    ConfigItems inEffect(const std::string& user, const std::string& uid) const;
    bool waiting(const std::string& user, const std::string& uid) const;

    void follow(const ConfigRules& rules);
    // Makes the device if it isn't known and there is room for it.
    void meet(const std::string& user, const std::string& uid, const std::string& name,
              const std::string& ip);
    // Makes the device if it isn't known; StatusError(Denied) if there is no room for it. Devices of others
    // get a notice.
    void save(const std::string& user, const std::string& uid, const ConfigSave& save,
              const std::string& modifier);
    // The device, which is known, has no items of its own any more.
    void reset(const std::string& user, const std::string& uid, const std::string& modifier);
    // The device was told what happened up to that notice.
    void fetched(const std::string& user, const std::string& uid, int64_t notice);

private:
    // Null if there is no room for a device that isn't known.
    Device* take(const std::string& user, const std::string& uid);
    void notify(ConfigNotice notice);
};

void to_json(nlohmann::json& json, const DeviceBook& book);
void from_json(const nlohmann::json& json, DeviceBook& book);

}  // namespace nas
