#include "calls.h"

namespace nas {

namespace {

const User& checkLogin(Service& service, Request& request, const Fields& form) {
    std::string password = decodeBase64(field(form, "pwd"), "form key \"pwd\"");
    request.userName = field(form, "user");
    const User* user = service.options().users.check(request.userName, password);
    if (!user) {
        throw StatusError(Status::NotAuthenticated, "wrong user or password");
    }
    return *user;
}

const Shape kDeviceForm = {
    "user", "pwd", "nubo_user=1", "nubo_computer", "uid", "nubo_device_type", "Torvi_client_version"};

void checkDevice(const Fields& form) {
    for (const char* key : {"user", "nubo_computer", "uid", "Torvi_client_version"}) {
        if (field(form, key).empty()) {
            throw Refusal(std::string("form key \"") + key + "\" is empty");
        }
    }
    if (numberField(form, "nubo_device_type") < 0) {
        throw Refusal("form key \"nubo_device_type\" is negative");
    }
}

nlohmann::json welcome(Service& service, const User& user) {
    return {{"status", number(Status::Ok)},
            {"sid", service.sessions().open(user.name)},
            {"admingroup", user.admin ? "1" : "0"},
            {"servername", service.options().serverName}};
}

Answer syncLogin(Service& service, Request& request, httplib::Response&) {
    Fields form = readForm(request);
    requireShape(form, {kDeviceForm}, "form");
    checkDevice(form);
    const User& user = checkLogin(service, request, form);
    const Options& options = service.options();
    nlohmann::json reply = {{"status", number(Status::Ok)}, {"nubo_cluster_status", options.clusterStatus}};
    // A node that isn't part of its cluster yet tells where it is, but opens no session.
    if (options.clusterStatus == 0 || options.clusterStatus == 1) {
        reply.update(welcome(service, user));
    }
    if (!options.slaveId.empty()) {
        reply["nubo_slave_id"] = options.slaveId;
    }
    reply["peltnet_dn"] = "";
    reply["ddns_dn"] = "";
    reply["ext_ip"] = "";
    reply["local_ip"] = options.address;
    reply["local_ip_list"] = options.address;
    reply["port"] = service.httpPort();
    reply["sslPort"] = service.tlsPort();
    reply["extPort"] = 0;
    reply["extSslPort"] = 0;
    return {reply};
}

Answer managerLogin(Service& service, Request& request, httplib::Response&) {
    Fields form = readForm(request);
    requireShape(form, {kDeviceForm, {"user", "pwd"}}, "form");
    if (form.size() > 2) {
        checkDevice(form);
    }
    return {welcome(service, checkLogin(service, request, form))};
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
