#include "calls.h"

#include "relay.h"

namespace nas {

const std::vector<Call>& allCalls() {
    static const std::vector<Call> calls = [] {
        std::vector<Call> all;
        addSessionCalls(all);
        addAuthCalls(all);
        addActivateCalls(all);
        addIdentityCalls(all);
        addListCalls(all);
        addStatCalls(all);
        addStateCalls(all);
        addLogCalls(all);
        addQuotaCalls(all);
        addFileCalls(all);
        addJobCalls(all);
        addUploadCalls(all);
        addChunkCalls(all);
        addBatchCalls(all);
        addVersionCalls(all);
        addDownloadCalls(all);
        addShareCalls(all);
        addTeamCalls(all);
        addMemberCalls(all);
        addUserCalls(all);
        addSettingCalls(all);
        addConfigCalls(all);
        addFolderLinkCalls(all);
        addLinkCalls(all);
        addLinkPageCalls(all);
        return all;
    }();
    return calls;
}

namespace {

std::string nameOf(const Shape& query) {
    return query[0].substr(query[0].find('=') + 1);
}

}  // namespace

void addGet(std::vector<Call>& calls, unsigned endpoints, std::vector<Shape> shapes, Serve serve,
            Refused refusal) {
    const std::string name = nameOf(shapes[0]);
    calls.push_back({name, endpoints, "GET", BodyKind::None, true, std::move(shapes), serve, refusal});
}

void addForm(std::vector<Call>& calls, unsigned endpoints, Shape query, Serve serve, Refused refusal) {
    const std::string name = nameOf(query);
    calls.push_back({name, endpoints, "POST", BodyKind::Form, true, {std::move(query)}, serve, refusal});
}

void understood(nlohmann::json& reply) {
    reply["success"] = "true";
}

void notSuccess(nlohmann::json& reply) {
    if (reply["status"] == 0) {
        reply["status"] = -1;
    }
}

void notDone(nlohmann::json& reply) {
    notSuccess(reply);
    reply["success"] = "false";
}

Answer doneWithZero(const std::string& note) {
    return {{{"status", 0}, {"success", "true"}}, false, note};
}

void requireNoPrefix(const Request& request) {
    if (request.http.target.rfind("/cgi-bin/", 0) != 0) {
        throw Refusal("this call takes no slave prefix", 404);
    }
}

bool overTls(const httplib::Request& http) {
    return http.remote_addr == kTlsSource;
}

}  // namespace nas
