#include "directory.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <algorithm>
#include <stdexcept>

#include "nas/random.h"

namespace cloud {

namespace {

constexpr size_t kMostDevices = 1000;

void requireAddress(const std::string& what, const std::string& text) {
    in_addr address{};
    if (::inet_pton(AF_INET, text.c_str(), &address) != 1 || address.s_addr == htonl(INADDR_ANY)) {
        throw std::invalid_argument(what + " \"" + text + "\" is no IPv4 address of a device");
    }
}

void requireListable(const nas::DeviceEntry& entry) {
    if (entry.id.empty() || entry.name.empty()) {
        throw std::invalid_argument("a device has an id and a name");
    }
    requireAddress("address", entry.address);
    if (!entry.externalAddress.empty()) {
        requireAddress("external_address", entry.externalAddress);
    }
}

}  // namespace

std::string gatewayOf(const Device& device) {
    return device.address.substr(0, device.address.rfind('.')) + ".1";
}

const Device& Directory::add(const nas::DeviceEntry& entry) {
    requireListable(entry);
    const auto known = devices_.find(entry.id);
    if (known == devices_.end()) {
        if (devices_.size() >= kMostDevices) {
            throw std::invalid_argument("there is no room for more devices");
        }
        return devices_[entry.id] = {entry, nas::randomHex(16), nas::randomHex(4),
                                     "link-" + nas::randomHex(6), ++lastOrder_};
    }
    if (known->second.user != entry.user) {
        throw std::invalid_argument("the device id \"" + entry.id + "\" is another user's");
    }
    static_cast<nas::DeviceEntry&>(known->second) = entry;
    return known->second;
}

const Device* Directory::find(const std::string& id) const {
    const auto it = devices_.find(id);
    return it == devices_.end() ? nullptr : &it->second;
}

std::vector<const Device*> Directory::ofUser(const std::string& user) const {
    std::vector<const Device*> found;
    for (const auto& [id, device] : devices_) {
        if (device.user == user) {
            found.push_back(&device);
        }
    }
    std::sort(found.begin(), found.end(),
              [](const Device* a, const Device* b) { return a->order < b->order; });
    return found;
}

void to_json(nlohmann::json& json, const Device& device) {
    json = static_cast<const nas::DeviceEntry&>(device);
    json["token"] = device.token;
    json["access_code"] = device.accessCode;
    json["link_id"] = device.linkId;
    json["order"] = device.order;
}

void from_json(const nlohmann::json& json, Device& device) {
    json.get_to(static_cast<nas::DeviceEntry&>(device));
    json.at("token").get_to(device.token);
    json.at("access_code").get_to(device.accessCode);
    json.at("link_id").get_to(device.linkId);
    json.at("order").get_to(device.order);
}

void to_json(nlohmann::json& json, const Directory& directory) {
    json = {{"last_order", directory.lastOrder_}, {"list", directory.devices_}};
}

void from_json(const nlohmann::json& json, Directory& directory) {
    json.at("last_order").get_to(directory.lastOrder_);
    json.at("list").get_to(directory.devices_);
}

}  // namespace cloud
