#include "directory.h"

#include <algorithm>
#include <stdexcept>

#include "nas/random.h"

namespace cloud {

namespace {

Device fromRegistration(const nlohmann::json& json) {
    Device device;
    json.at("device_id").get_to(device.id);
    json.at("user").get_to(device.user);
    json.at("device_name").get_to(device.name);
    json.at("description").get_to(device.description);
    json.at("model").get_to(device.model);
    json.at("firmware").get_to(device.firmware);
    json.at("mac_address").get_to(device.macAddress);
    json.at("host_name").get_to(device.hostName);
    json.at("address").get_to(device.address);
    json.at("http_port").get_to(device.httpPort);
    json.at("tls_port").get_to(device.tlsPort);
    json.at("external_address").get_to(device.externalAddress);
    json.at("external_http_port").get_to(device.externalHttpPort);
    json.at("external_tls_port").get_to(device.externalTlsPort);
    json.at("ddns_name").get_to(device.ddnsName);
    json.at("remote_access").get_to(device.remoteAccess);
    json.at("local_users").get_to(device.localUsers);
    if (device.id.empty() || device.name.empty()) {
        throw std::invalid_argument("a device has an id and a name");
    }
    return device;
}

nlohmann::json toRegistration(const Device& device) {
    return {{"device_id", device.id},
            {"user", device.user},
            {"device_name", device.name},
            {"description", device.description},
            {"model", device.model},
            {"firmware", device.firmware},
            {"mac_address", device.macAddress},
            {"host_name", device.hostName},
            {"address", device.address},
            {"http_port", device.httpPort},
            {"tls_port", device.tlsPort},
            {"external_address", device.externalAddress},
            {"external_http_port", device.externalHttpPort},
            {"external_tls_port", device.externalTlsPort},
            {"ddns_name", device.ddnsName},
            {"remote_access", device.remoteAccess},
            {"local_users", device.localUsers}};
}

}  // namespace

std::string gatewayOf(const Device& device) {
    return device.address.substr(0, device.address.rfind('.')) + ".1";
}

const Device& Directory::add(const nlohmann::json& registration) {
    Device device = fromRegistration(registration);
    const Device* known = find(device.id);
    if (known && known->user == device.user) {
        device.token = known->token;
        device.accessCode = known->accessCode;
        device.linkId = known->linkId;
        device.order = known->order;
    } else {
        device.token = nas::randomHex(16);
        device.accessCode = nas::randomHex(4);
        device.linkId = "link-" + nas::randomHex(6);
        device.order = ++lastOrder_;
    }
    return devices_[device.id] = device;
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

nlohmann::json Directory::toJson() const {
    nlohmann::json all = nlohmann::json::array();
    for (const auto& [id, device] : devices_) {
        nlohmann::json entry = toRegistration(device);
        entry["token"] = device.token;
        entry["access_code"] = device.accessCode;
        entry["link_id"] = device.linkId;
        entry["order"] = device.order;
        all.push_back(entry);
    }
    return all;
}

void Directory::load(const nlohmann::json& json) {
    for (const nlohmann::json& entry : json) {
        Device device = fromRegistration(entry);
        entry.at("token").get_to(device.token);
        entry.at("access_code").get_to(device.accessCode);
        entry.at("link_id").get_to(device.linkId);
        entry.at("order").get_to(device.order);
        lastOrder_ = std::max(lastOrder_, device.order);
        devices_[device.id] = device;
    }
}

}  // namespace cloud
