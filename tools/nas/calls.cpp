#include "calls.h"

namespace nas {

const std::vector<Call>& allCalls() {
    static const std::vector<Call> calls = [] {
        std::vector<Call> all;
        addSessionCalls(all);
        addListCalls(all);
        addStatCalls(all);
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

}  // namespace nas
