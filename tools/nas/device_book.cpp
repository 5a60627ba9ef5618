#include "device_book.h"

#include <algorithm>
#include <ctime>

#include "status.h"

namespace nas {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(Device, name, ip, items, changed, order)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(ConfigNotice, id, user, device, atOnce, event, fetched, time, modifier,
                                   value)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(DeviceBook::OfUser, devices, templateItems)

namespace {

constexpr size_t kMostNotices = 1000;
constexpr size_t kMostDevices = 1000;  // of one user

std::string namesOf(const ConfigItems& items) {
    std::string names;
    for (const ConfigItem& item : items) {
        names += (names.empty() ? "" : ";") + item.name();
    }
    return names;
}

// Room for one more: the first that came and has nothing of its own has to go. False if each has something.
bool makeRoom(std::map<std::string, Device>& devices) {
    if (devices.size() < kMostDevices) {
        return true;
    }
    auto oldest = devices.end();
    for (auto it = devices.begin(); it != devices.end(); ++it) {
        const bool older = oldest == devices.end() || it->second.order < oldest->second.order;
        oldest = it->second.items.empty() && older ? it : oldest;
    }
    if (oldest == devices.end()) {
        return false;
    }
    devices.erase(oldest);
    return true;
}

bool waits(const ConfigNotice& notice, const std::string& user, const std::string& uid) {
    return !notice.fetched && notice.user == user && notice.device == uid;
}

}  // namespace

void to_json(nlohmann::json& json, const DeviceBook& book) {
    json = {{"users", book.users},
            {"notices", book.notices},
            {"last_notice", book.lastNotice},
            {"last_device", book.lastDevice},
            {"acl", book.acl},
            {"password", book.password}};
}

void from_json(const nlohmann::json& json, DeviceBook& book) {
    json.at("users").get_to(book.users);
    json.at("notices").get_to(book.notices);
    json.at("last_notice").get_to(book.lastNotice);
    json.at("last_device").get_to(book.lastDevice);
    json.at("acl").get_to(book.acl);
    json.at("password").get_to(book.password);
}

const Device* DeviceBook::find(const std::string& user, const std::string& uid) const {
    const auto owner = users.find(user);
    if (owner == users.end()) {
        return nullptr;
    }
    const auto device = owner->second.devices.find(uid);
    return device == owner->second.devices.end() ? nullptr : &device->second;
}

const ConfigItems& DeviceBook::templateOf(const std::string& user) const {
    static const ConfigItems none;
    const auto owner = users.find(user);
    return owner == users.end() ? none : owner->second.templateItems;
}

ConfigItems DeviceBook::inEffect(const std::string& user, const std::string& uid) const {
    ConfigItems items = templateOf(user);
    if (const Device* device = find(user, uid)) {
        for (const ConfigItem& item : device->items) {
            putItem(items, item);
        }
    }
    return items;
}

bool DeviceBook::waiting(const std::string& user, const std::string& uid) const {
    return std::any_of(notices.begin(), notices.end(),
                       [&](const ConfigNotice& notice) { return waits(notice, user, uid); });
}

void DeviceBook::follow(const ConfigRules& rules) {
    for (const ConfigItem& rule : rules.acl) {
        putItem(acl, rule);
    }
    password = rules.password.value_or(password);
}

void DeviceBook::meet(const std::string& user, const std::string& uid, const std::string& name,
                      const std::string& ip) {
    if (Device* device = take(user, uid)) {
        device->name = name;
        device->ip = ip;
    }
}

void DeviceBook::save(const std::string& user, const std::string& uid, const ConfigSave& save,
                      const std::string& modifier) {
    Device* device = take(user, uid);
    if (!device) {
        throw StatusError(Status::Denied, user + " has too many devices");
    }
    for (const ConfigItem& item : save.items) {
        putItem(device->items, item);
        if (save.asTemplate) {
            putItem(users[user].templateItems, item);
        }
    }
    device->changed = std::time(nullptr);
    notify({0, user, uid, save.atOnce, save.asTemplate ? ConfigEvent::SavedAsTemplate : ConfigEvent::Saved,
            false, device->changed, modifier, namesOf(save.items)});
}

void DeviceBook::reset(const std::string& user, const std::string& uid, const std::string& modifier) {
    Device& device = users.at(user).devices.at(uid);
    device.items.clear();
    device.changed = std::time(nullptr);
    notify({0, user, uid, true, ConfigEvent::Reset, false, device.changed, modifier, ""});
}

void DeviceBook::fetched(const std::string& user, const std::string& uid, int64_t notice) {
    for (ConfigNotice& told : notices) {
        if (told.id <= notice && waits(told, user, uid)) {
            told.fetched = true;
        }
    }
}

Device* DeviceBook::take(const std::string& user, const std::string& uid) {
    auto& devices = users[user].devices;
    if (devices.count(uid) == 0) {
        if (!makeRoom(devices)) {
            return nullptr;
        }
        devices[uid].order = ++lastDevice;
    }
    return &devices[uid];
}

// What users do to their own devices is no news to them.
void DeviceBook::notify(ConfigNotice notice) {
    if (notice.modifier == notice.user) {
        return;
    }
    notice.id = ++lastNotice;
    notices.push_back(std::move(notice));
    if (notices.size() > kMostNotices) {
        notices.erase(notices.begin());
    }
}

}  // namespace nas
