#include "calls.h"
#include "login.h"

namespace nas {

const User* checkPassword(Service& service, Request& request, const Fields& form) {
    std::string password = decodeBase64(field(form, "pwd"), "form key \"pwd\"");
    request.userName = field(form, "user");
    return service.options().users.check(request.userName, password);
}

namespace {

const User& checkLogin(Service& service, Request& request, const Fields& form) {
    const User* user = checkPassword(service, request, form);
    if (!user) {
        throw StatusError(Status::NotAuthenticated, "wrong user or password");
    }
    return *user;
}

const Shape kDeviceForm = {
    "user", "pwd", "nubo_user=1", "nubo_computer", "uid", "nubo_device_type", "Torvi_client_version"};

void requireText(const Fields& form, const char* key) {
    if (field(form, key).empty()) {
        throw Refusal(std::string("form key \"") + key + "\" is empty");
    }
}

void checkDevice(const Fields& form) {
    requireText(form, "nubo_computer");
    requireText(form, "uid");
    if (numberField(form, "nubo_device_type") < 0) {
        throw Refusal("form key \"nubo_device_type\" is negative");
    }
}

// The relay hides where a client is. One on this machine may tell whom it acts for.
std::string addressOf(const Request& request) {
    const std::string told = request.http.get_header_value("X-Forwarded-For");
    return told.empty() ? "127.0.0.1" : told;
}

void meetDevice(Service& service, const Request& request, const User& user, const Fields& form) {
    const std::string& uid = field(form, "uid");
    const std::string& name = field(form, "nubo_computer");
    const std::string ip = addressOf(request);
    const auto book = service.devices().read();
    const Device* known = book->find(user.name, uid);
    if (!known || known->name != name || known->ip != ip) {
        service.devices().change([&](DeviceBook& later) { later.meet(user.name, uid, name, ip); });
    }
}

nlohmann::json welcome(Service& service, const Request& request, const User& user, const Fields& form) {
    std::string device;
    if (hasField(form, "nubo_computer")) {
        device = field(form, "nubo_computer");
        meetDevice(service, request, user, form);
    }
    return {{"status", number(Status::Ok)},
            {"sid", service.sessions().open(user.name, device)},
            {"admingroup", user.admin ? "1" : "0"},
            {"servername", service.options().serverName}};
}

Answer syncLogin(Service& service, Request& request, httplib::Response&) {
    Fields form = readForm(request);
    requireShape(form, {kDeviceForm}, "form");
    requireText(form, "user");
    checkDevice(form);
    requireText(form, "Torvi_client_version");
    const User& user = checkLogin(service, request, form);
    if (user.second.wanted()) {
        // Only the file manager's login can say so.
        throw StatusError(Status::NotAuthenticated, "the account wants a second step");
    }
    const Options& options = service.options();
    nlohmann::json reply = {{"status", number(Status::Ok)}, {"nubo_cluster_status", options.clusterStatus}};
    // A node that isn't part of its cluster yet tells where it is, but opens no session.
    if (options.inCluster()) {
        reply.update(welcome(service, request, user, form));
    }
    if (!options.slaveId.empty()) {
        reply["nubo_slave_id"] = options.slaveId;
    }
    reply["peltnet_dn"] = options.identity.peltnetName;
    reply["ddns_dn"] = options.identity.ddnsName;
    reply["ext_ip"] = options.identity.externalAddress;
    reply["local_ip"] = options.address;
    reply["local_ip_list"] = options.address;
    reply["port"] = service.httpPort();
    reply["sslPort"] = service.tlsPort();
    reply["extPort"] = options.identity.externalPort;
    reply["extSslPort"] = options.identity.externalTlsPort;
    return {reply};
}

Answer secondStepWanted(Service& service, const User& user) {
    return {{{"status", number(Status::NotAuthenticated)},
             {"need_2sv", 1},
             {"lost_phone", static_cast<int>(user.second.step)},
             {"emergency_try_count", service.secondSteps().count(user)},
             {"emergency_try_limit", service.secondSteps().limit()}},
            false,
            "the account wants a second step"};
}

Answer managerLogin(Service& service, Request& request, httplib::Response&) {
    Fields form = readForm(request);
    requireShape(form, {kDeviceForm, {"user", "pwd"}}, "form");
    if (form.size() > 2) {
        checkDevice(form);
    }
    requireText(form, "user");
    const User& user = checkLogin(service, request, form);
    return user.second.wanted() ? secondStepWanted(service, user)
                                : Answer{welcome(service, request, user, form)};
}

Answer logout(Service& service, Request& request, httplib::Response&) {
    const std::string& sid = field(request.query, "sid");
    service.authenticate(request, sid);
    service.sessions().close(sid);
    return {{{"status", number(Status::Ok)}, {"success", "true"}}};
}

Answer version(Service& service, Request&, httplib::Response&) {
    return {{{"version", service.options().version}, {"build", service.options().build}}};
}

void logoutRefused(nlohmann::json& reply) {
    reply["success"] = "false";
}

}  // namespace

void addSessionCalls(std::vector<Call>& calls) {
    calls.push_back({"login", on(Endpoint::SyncLogin), "POST", BodyKind::Form, true, {{}}, syncLogin, {}});
    calls.push_back(
        {"login", on(Endpoint::SyncFcgi), "POST", BodyKind::Form, true, {{"func=login"}}, syncLogin, {}});
    calls.push_back(
        {"login", on(Endpoint::ManagerLogin), "POST", BodyKind::Form, true, {{}}, managerLogin, {}});
    calls.push_back({"logout",
                     on(Endpoint::SyncLogout) | on(Endpoint::ManagerLogout),
                     "GET",
                     BodyKind::None,
                     true,
                     {{"sid", "logout=1"}},
                     logout,
                     logoutRefused});
    calls.push_back({"logout",
                     on(Endpoint::SyncFcgi),
                     "GET",
                     BodyKind::None,
                     true,
                     {{"func=logout", "sid", "logout=1"}},
                     logout,
                     logoutRefused});
    calls.push_back({"version", on(Endpoint::ManagerCgi), "GET", BodyKind::None, true, {{}}, version, {}});
}

}  // namespace nas
