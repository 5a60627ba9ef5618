#include "calls.h"

namespace nas {

namespace {

const char* const kNotTold = "---";
const char* const kVersioningVersion = "1.0";

int flag(bool value) {
    return value ? 1 : 0;
}

nlohmann::json identityFor(Service& service, const User* user) {
    const Options& options = service.options();
    const Identity& identity = options.identity;
    return {{"is_booting", flag(service.booting())},
            {"is_recovering", flag(identity.recovering)},
            {"is_migrating", flag(identity.migrating)},
            {"nubo_cgi", flag(options.sync)},
            {"fcgi", flag(options.sync && options.fcgi)},
            {"user_type", flag(user && user->admin)},
            {"UID", identity.uid},
            {"SUID", identity.suid},
            {"MAC0", identity.mac},
            {"Torvi_version", identity.syncVersion},
            {"versioning_version", options.versioning ? kVersioningVersion : kNotTold}};
}

// Asked before any login, so it says nothing that needs one.
Answer identity(Service& service, Request& request, httplib::Response&) {
    requireNoPrefix(request);
    const std::string& name = field(request.query, "user");
    if (name.empty()) {
        throw Refusal("query key \"user\" is empty");
    }
    return {identityFor(service, service.options().users.find(name))};
}

Answer ownIdentity(Service& service, Request& request, httplib::Response&) {
    requireNoPrefix(request);
    const User& user = service.authenticate(request, field(request.query, "sid"));
    nlohmann::json reply = identityFor(service, &user);
    reply["status"] = number(Status::Ok);
    return {reply};
}

bool maySync(const Options& options, const User& user) {
    return options.identity.withoutSync.count(user.name) == 0;
}

Answer capabilities(Service& service, Request& request, httplib::Response&) {
    const User& user = service.authenticate(request, field(request.query, "sid"));
    const Options& options = service.options();
    const bool cluster = !options.slaveId.empty() || options.clusterStatus != 0;
    nlohmann::json reply = {{"status", number(Status::Ok)},
                            {"nubo_function_enable", flag(options.identity.syncEnabled)},
                            {"nubo_user_enable", flag(maySync(options, user))},
                            {"home_is_exist", flag(service.tree().homeExists(user))},
                            {"team_folder_is_exist", flag(service.shares().read()->hasTeamFolder(user.name))},
                            {"nubo_cluster_support", flag(cluster)}};
    if (cluster) {
        reply["nubo_cluster_status"] = options.clusterStatus;
        reply["nubo_cluster_slave_id"] = options.slaveId;
    }
    return {reply};
}

Answer staticInformation(Service& service, Request& request, httplib::Response&) {
    service.authenticate(request, field(request.query, "sid"));
    const Identity& identity = service.options().identity;
    return {{{"status", number(Status::Ok)},
             {"model", identity.model},
             {"fw_version", identity.firmware},
             {"queue_num_limit", identity.queueLimit},
             {"msg_queue_num_limit", identity.messageQueueLimit}}};
}

Answer nasStatus(Service& service, Request& request, httplib::Response&) {
    const User& user = service.authenticate(request, field(request.query, "sid"));
    const Options& options = service.options();
    const bool databases = !options.identity.recovering;
    nlohmann::json reply = {{"status", number(Status::Ok)},
                            {"home_folder_enable", 1},
                            {"recycle_bin_enable", service.shares().read()->settingsOf(user.name).recycleBin},
                            {"device_db_exist", flag(databases)},
                            {"log_db_exist", flag(databases)},
                            {"share_db_exist", flag(databases)},
                            {"user_enable", flag(maySync(options, user))},
                            {"versioning_enable", flag(options.versioning)},
                            {"nubo_versioning_enable", flag(options.versioning)},
                            {"is_recovering", flag(options.identity.recovering)},
                            {"versioning_version", options.versioning ? kVersioningVersion : kNotTold}};
    if (hasField(request.query, "check_detail")) {
        const int64_t detail = numberField(request.query, "check_detail");
        if (detail != 0 && detail != 1) {
            throw Refusal("query key \"check_detail\" is out of its range");
        }
        // Looking after the home on the disk is what the detail costs.
        if (detail == 1) {
            reply["home_folder_available"] = flag(service.tree().homeExists(user));
        }
    }
    return {reply};
}

Answer addresses(Service& service, Request& request, httplib::Response&) {
    requireNoPrefix(request);
    service.authenticate(request, field(request.query, "sid"));
    const Options& options = service.options();
    const Identity& identity = options.identity;
    return {{{"status", number(Status::Ok)},
             {"peltnet_hn", identity.peltnetName},
             {"ddns_hn", identity.ddnsName},
             {"external_ip", identity.externalAddress},
             {"local_ip", options.address},
             {"host_ip", options.address},
             {"local_ip_list", options.address},
             {"port", service.httpPort()},
             {"sslPort", service.tlsPort()},
             {"extPort", identity.externalPort},
             {"extSslPort", identity.externalTlsPort}}};
}

}  // namespace

void addIdentityCalls(std::vector<Call>& calls) {
    const auto add = [&](unsigned endpoints, const std::string& name, const Shape& shape, auto serve) {
        calls.push_back({name, endpoints, "GET", BodyKind::None, true, {shape}, serve, {}});
    };
    const auto addFunc = [&](unsigned endpoints, const std::string& func, auto serve, Shape more = {}) {
        more.insert(more.begin(), {"func=" + func, "sid"});
        add(endpoints, func, more, serve);
    };
    add(on(Endpoint::SyncPrepare) | on(Endpoint::ManagerPrepare), "identity", {"user"}, identity);
    addFunc(kBothCgis, "nubo_get_nas_uid", ownIdentity);
    addFunc(kBothCgis, "nubo_get_nubo_info", capabilities);
    addFunc(kBothCgis, "nubo_get_static_information", staticInformation);
    addFunc(on(Endpoint::SyncCgi), "nubo_get_nas_status", nasStatus, {"check_detail"});
    addFunc(on(Endpoint::ManagerCgi), "nubo_get_nas_status", nasStatus);
    addFunc(kBothCgis, "get_domain_ip_list", addresses);
}

}  // namespace nas
