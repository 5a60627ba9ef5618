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
        return all;
    }();
    return calls;
}

void understood(nlohmann::json& reply) {
    reply["success"] = "true";
}

void notSuccess(nlohmann::json& reply) {
    if (reply["status"] == 0) {
        reply["status"] = -1;
    }
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
