#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "nas/device_entry.h"

namespace cloud {

// A NAS as it registered itself, and what the cloud gave it.
struct Device : nas::DeviceEntry {
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
    // A known id takes its place again. Throws std::invalid_argument for what can't be listed.
    const Device& add(const nas::DeviceEntry& entry);
    void remove(const std::string& id) { devices_.erase(id); }

    const Device* find(const std::string& id) const;
    // In the order in which they registered first.
    std::vector<const Device*> ofUser(const std::string& user) const;

private:
    friend void to_json(nlohmann::json& json, const Directory& directory);
    friend void from_json(const nlohmann::json& json, Directory& directory);

    std::map<std::string, Device> devices_;
    int64_t lastOrder_ = 0;
};

void to_json(nlohmann::json& json, const Directory& directory);
void from_json(const nlohmann::json& json, Directory& directory);

}  // namespace cloud
