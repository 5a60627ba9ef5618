#include "control.h"

#include <stdexcept>

#include "nas/common_control.h"
#include "service.h"

namespace cloud {

namespace {

nlohmann::json stateOf(Service& service) {
    nlohmann::json users = nlohmann::json::array();
    for (const auto& [name, user] : service.accounts().users()) {
        nlohmann::json devices = nlohmann::json::array();
        for (const Device* device : service.directory().ofUser(name)) {
            devices.push_back(device->id);
        }
        users.push_back({{"name", name}, {"suspended", user.suspended}, {"devices", devices}});
    }
    return {{"users", users}, {"time", service.now()}};
}

std::string textIn(const std::string& body, const std::string& key) {
    return nlohmann::json::parse(body).at(key);
}

void suspend(Service& service, const std::string& name, bool suspended) {
    User* user = service.accounts().findUser(name);
    if (!user) {
        throw std::invalid_argument("no user \"" + name + "\"");
    }
    user->suspended = suspended;
}

}  // namespace

nlohmann::json runControl(Service& service, const std::string& what, const std::string& body, int& http) {
    if (auto reply = nas::runCommonControl(service.faults(), service.ledger(), what, body)) {
        return *reply;
    }
    if (what == "POST /control/grants") {
        return {{"refresh_token",
                 service.accounts().grant(textIn(body, "user"), service.options().lifetimes, service.now())}};
    }
    if (what == "POST /control/tokens/expire") {
        service.accounts().endAccessTokens();
        return nlohmann::json::object();
    }
    if (what == "POST /control/users/suspend") {
        suspend(service, textIn(body, "user"), true);
        return nlohmann::json::object();
    }
    if (what == "POST /control/users/restore") {
        suspend(service, textIn(body, "user"), false);
        return nlohmann::json::object();
    }
    if (what == "DELETE /control/devices") {
        service.directory().remove(textIn(body, "device_id"));
        return nlohmann::json::object();
    }
    if (what == "GET /control/state") {
        return stateOf(service);
    }
    http = 404;
    return {{"error", "no such control request"}};
}

}  // namespace cloud
