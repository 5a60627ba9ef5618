#include "failure.h"

#include <cstdio>

#include "output.h"
#include "status.h"

namespace torvi {

void reportFailure(const Failure& failure, bool json) {
    std::fprintf(stderr, "torvi: %s\n", utf8(printable(failure.message())).c_str());
    if (!json) return;
    Json error;
    error["message"] = utf8(failure.message());
    error["exit"] = static_cast<int>(failure.exit());
    if (const auto status = failure.dwStatus()) {
        error["dwStatus"] = *status;
        error["dwStatusName"] = dwStatusName(*status);
    }
    if (const auto word = failure.resultWord()) {
        error["result"] = *word;
        error["resultName"] = resultName(*word);
    }
    printJson(Json{{"error", error}});
}

}  // namespace torvi
