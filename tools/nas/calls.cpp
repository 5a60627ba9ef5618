#include "calls.h"

namespace nas {

const std::vector<Call>& allCalls() {
    static const std::vector<Call> calls = [] {
        std::vector<Call> all;
        addSessionCalls(all);
        addListCalls(all);
        addStatCalls(all);
        addUploadCalls(all);
        addDownloadCalls(all);
        return all;
    }();
    return calls;
}

}  // namespace nas
