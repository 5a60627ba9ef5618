#include "device_entry.h"

#include <cstdint>
#include <stdexcept>

namespace nas {

namespace {

constexpr int64_t kHighestPort = 65535;

// Each field with its key, for reading and writing.
template <typename Entry, typename Visit>
void visitFields(Entry& entry, Visit visit) {
    visit("user", entry.user);
    visit("device_id", entry.id);
    visit("device_name", entry.name);
    visit("description", entry.description);
    visit("model", entry.model);
    visit("firmware", entry.firmware);
    visit("mac_address", entry.macAddress);
    visit("host_name", entry.hostName);
    visit("address", entry.address);
    visit("http_port", entry.httpPort);
    visit("tls_port", entry.tlsPort);
    visit("external_address", entry.externalAddress);
    visit("external_http_port", entry.externalHttpPort);
    visit("external_tls_port", entry.externalTlsPort);
    visit("ddns_name", entry.ddnsName);
    visit("remote_access", entry.remoteAccess);
    visit("local_users", entry.localUsers);
}

template <typename Value>
void read(const nlohmann::json& json, const char* key, Value& value) {
    json.at(key).get_to(value);
}

// Every number is a port.
void read(const nlohmann::json& json, const char* key, int& port) {
    const nlohmann::json& number = json.at(key);
    const int64_t value = number.is_number_integer() ? number.get<int64_t>() : -1;
    if (value < 0 || value > kHighestPort) {
        throw std::invalid_argument(std::string(key) + " is no port");
    }
    port = static_cast<int>(value);
}

}  // namespace

void to_json(nlohmann::json& json, const DeviceEntry& entry) {
    json = nlohmann::json::object();
    visitFields(entry, [&](const char* key, const auto& value) { json[key] = value; });
}

void from_json(const nlohmann::json& json, DeviceEntry& entry) {
    visitFields(entry, [&](const char* key, auto& value) { read(json, key, value); });
}

}  // namespace nas
