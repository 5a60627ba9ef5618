#include "control.h"

#include <functional>
#include <stdexcept>

#include "nas/common_control.h"
#include "service.h"

namespace cloud {

namespace {

nlohmann::json stateOf(Service& service) {
    const auto state = service.book().read();
    nlohmann::json users = nlohmann::json::array();
    for (const auto& [name, user] : service.accounts().users()) {
        nlohmann::json devices = nlohmann::json::array();
        for (const Device* device : state->directory.ofUser(name)) {
            devices.push_back(device->id);
        }
        const bool suspended = state->suspended.count(name) > 0;
        users.push_back({{"name", name}, {"suspended", suspended}, {"devices", devices}});
    }
    return {{"users", users}, {"time", service.now()}};
}

std::string textIn(const std::string& body, const std::string& key) {
    return nlohmann::json::parse(body).at(key);
}

std::string userIn(Service& service, const std::string& body) {
    std::string name = textIn(body, "user");
    if (!service.accounts().findUser(name)) {
        throw std::invalid_argument("no user \"" + name + "\"");
    }
    return name;
}

nlohmann::json change(Service& service, const std::function<void(State&)>& act) {
    service.book().change(act);
    return nlohmann::json::object();
}

nlohmann::json grantTo(Service& service, const std::string& user) {
    std::string token;
    service.book().change(
        [&](State& state) { token = state.tokens.grant(user, service.options().lifetimes, service.now()); });
    return {{"refresh_token", token}};
}

}  // namespace

nlohmann::json runControl(Service& service, const std::string& what, const std::string& body, int& http) {
    if (auto reply = nas::runCommonControl(service.faults(), service.ledger(), what, body)) {
        return *reply;
    }
    if (what == "POST /control/grants") {
        return grantTo(service, userIn(service, body));
    }
    if (what == "POST /control/tokens/expire") {
        return change(service, [](State& state) { state.tokens.endAccessTokens(); });
    }
    if (what == "POST /control/users/suspend") {
        return change(service, [&](State& state) { state.suspended.insert(userIn(service, body)); });
    }
    if (what == "POST /control/users/restore") {
        return change(service, [&](State& state) { state.suspended.erase(userIn(service, body)); });
    }
    if (what == "DELETE /control/devices") {
        return change(service, [&](State& state) { state.directory.remove(textIn(body, "device_id")); });
    }
    if (what == "GET /control/state") {
        return stateOf(service);
    }
    http = 404;
    return {{"error", "no such control request"}};
}

}  // namespace cloud
