#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace nas {

// A NAS as it tells of itself to its cloud.
struct DeviceEntry {
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
};

void to_json(nlohmann::json& json, const DeviceEntry& entry);
// Throws what the JSON reader throws, and std::invalid_argument for what is no port.
void from_json(const nlohmann::json& json, DeviceEntry& entry);

}  // namespace nas
