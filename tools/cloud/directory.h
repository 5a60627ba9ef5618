#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace cloud {

// A NAS as it registered itself, and what the cloud gave it.
struct Device {
    std::string id;
    std::string user;
    std::string name;
    std::string description;
    std::string model;
    std::string firmware;
    std::string macAddress;
    std::string hostName;
    std::string address;
    int httpPort = 0;  // 0: not served
    int tlsPort = 0;
    std::string externalAddress;
    int externalHttpPort = 0;
    int externalTlsPort = 0;
    std::string ddnsName;
    bool remoteAccess = true;
    std::vector<std::string> localUsers;
    std::string token;
    std::string accessCode;
    std::string linkId;
    int64_t order = 0;  // of registering
};

// The way out of the device's own network: the first address of it.
std::string gatewayOf(const Device& device);

// The devices of all users.
class Directory {
public:
    // From the words of a registration; a known id takes its place again. Throws what the JSON reader throws.
    const Device& add(const nlohmann::json& registration);
    void remove(const std::string& id) { devices_.erase(id); }

    const Device* find(const std::string& id) const;
    // In the order in which they registered first.
    std::vector<const Device*> ofUser(const std::string& user) const;

    nlohmann::json toJson() const;
    void load(const nlohmann::json& json);

private:
    std::map<std::string, Device> devices_;
    int64_t lastOrder_ = 0;
};

}  // namespace cloud
