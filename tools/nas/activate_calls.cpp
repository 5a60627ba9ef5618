#include "calls.h"

namespace nas {

namespace {

void refused(nlohmann::json& reply) {
    reply["success"] = "false";
}

// Takes a session that another node, or another login, opened.
Answer activate(Service& service, Request& request, httplib::Response&) {
    const Options& options = service.options();
    if (options.redirectTls && !overTls(request.http)) {
        throw StatusError(Status::WantsTls, "a token came without TLS");
    }
    if (!options.inCluster()) {
        throw StatusError(Status::NotMade, "this node isn't ready");
    }
    const User& user = service.authenticate(request, field(request.query, "token"));
    return {{{"status", number(Status::Ok)},
             {"success", "true"},
             {"admingroup", user.admin ? "1" : "0"},
             {"servername", options.serverName}}};
}

Answer systemSid(Service& service, Request& request, httplib::Response&) {
    requireNoPrefix(request);
    const User& user = service.authenticate(request, field(request.query, "sid"));
    if (!user.admin) {
        throw StatusError(Status::Denied, "only administrators get the system's session");
    }
    return {{{"status", number(Status::Ok)}, {"sid", service.sessions().ofSystem(user.name)}}};
}

}  // namespace

void addActivateCalls(std::vector<Call>& calls) {
    calls.push_back({"activate",
                     on(Endpoint::SyncPrepare),
                     "GET",
                     BodyKind::None,
                     true,
                     {{"func=activate", "token"}},
                     activate,
                     refused});
    calls.push_back({"nubo_get_system_sid",
                     kBothCgis,
                     "GET",
                     BodyKind::None,
                     true,
                     {{"func=nubo_get_system_sid", "sid"}},
                     systemSid,
                     {}});
}

}  // namespace nas
