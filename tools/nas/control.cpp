#include "control.h"

#include "common_control.h"
#include "json_text.h"
#include "log.h"
#include "service.h"
#include "wire_text.h"

namespace nas {

namespace {

nlohmann::json stateOf(Service& service) {
    nlohmann::json users = nlohmann::json::array();
    for (const auto& [name, user] : service.options().users.all()) {
        users.push_back({{"name", name}, {"admin", user.admin}});
    }
    nlohmann::json teams = nlohmann::json::array();
    const auto book = service.shares().read();
    for (const Share& share : book->shares) {
        if (share.nas != service.shares().nas()) {
            continue;
        }
        nlohmann::json receivers = nlohmann::json::array();
        for (const Event& event : book->events) {
            if (event.share == share.id && event.part == Part::Accepted) {
                receivers.push_back({{"name", event.receiver}, {"read_only", event.readOnly}});
            }
        }
        teams.push_back({{"id", share.team},
                         {"share_id", share.id},
                         {"path", kTeamScheme + share.team + "/"},
                         {"owner", share.owner},
                         {"owner_path", share.path},
                         {"receivers", receivers}});
    }
    return {{"users", users},
            {"teams", teams},
            {"sessions", service.sessions().count()},
            {"partials", service.partials().count()},
            {"locks", service.locks().count()},
            {"jobs", service.jobs().count()},
            {"changes", service.changeLog().count()},
            {"last_change", service.changeLog().newest()},
            {"sync_runs", service.syncRuns().toJson()},
            {"slave_id", service.options().slaveId},
            {"http_port", service.httpPort()},
            {"tls_port", service.tlsPort()}};
}

nlohmann::json run(Service& service, const std::string& what, const std::string& body, int& http) {
    if (auto reply = runCommonControl(service.faults(), service.ledger(), what, body)) {
        return *reply;
    }
    if (what == "POST /control/sessions/expire") {
        service.sessions().expireAll();
        return nlohmann::json::object();
    }
    if (what == "POST /control/tries/forget") {
        service.secondSteps().forget();
        return nlohmann::json::object();
    }
    if (what == "POST /control/boot/end") {
        service.endBoot();
        return nlohmann::json::object();
    }
    if (what == "POST /control/config/acl") {
        const ConfigItem rule = nlohmann::json::parse(body);
        requireAclRule(rule);
        service.devices().change([&](DeviceBook& book) { book.follow({{rule}, {}}); });
        return nlohmann::json::object();
    }
    if (what == "POST /control/config/password") {
        const std::string password = nlohmann::json::parse(body).at("password");
        service.devices().change([&](DeviceBook& book) { book.follow({{}, password}); });
        return nlohmann::json::object();
    }
    if (what == "GET /control/state") {
        return stateOf(service);
    }
    http = 404;
    return {{"error", "no such control request"}};
}

}  // namespace

void serveControl(Service& service, const std::string& path, const httplib::Request& http,
                  httplib::Response& response, const httplib::ContentReader* body) {
    constexpr size_t kLongest = size_t{1024} * 1024;
    std::string text;
    bool hasBody = body && http.has_header("Content-Length");
    bool whole = !hasBody || (*body)([&](const char* data, size_t length) {
        text.append(data, text.size() < kLongest ? length : 0);
        return true;
    });
    nlohmann::json reply;
    try {
        if (!whole || text.size() >= kLongest) {
            throw std::invalid_argument("body too long or broken off");
        }
        reply = run(service, http.method + " " + path, text, response.status);
    } catch (const std::exception& error) {
        response.status = 400;
        reply = {{"error", error.what()}};
    }
    if (response.status == -1) {
        response.status = 200;
    }
    response.set_content(dumped(reply), "application/json");
    logLine("control " + http.method + " " + path + " http=" + std::to_string(response.status));
}

}  // namespace nas
