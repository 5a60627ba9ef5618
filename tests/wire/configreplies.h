#pragma once

#include <string>

#include "lines.h"
#include "replies.h"

// What the tests of the calls share that ask about device configuration.
namespace wire {

/// The server agrees by sending no status; -3 refuses, with `lines`; any other isn't understood. `also` looks
/// at what a call without success leaves.
template <class Args, class Also>
void expectConfigStatuses(const std::string& function, const std::vector<std::string>& lines, Also also) {
    const std::string name = kSharePrefix + function;
    const std::vector<std::string> notUnderstood = {name + ": WFM_PARSE_XML_FAIL",
                                                    name + "(127.0.0.1:{port}) failed dwStatus(14)"};
    // All that a call would take if the server agreed.
    const std::string rest =
        R"("total":1,"count":1,"auth_result":1,"device":[{"device_uid":"d-1"}],"event":[{"event_id":"1"}],)"
        R"("config":[{"section":"Synchronize","key":"smart sync","value":"1"}]})";
    std::vector<ReplyRow> rows;
    for (const char* refusal : {"-3", "\"-3\""})
        rows.push_back({R"({"status":)" + std::string(refusal) + "," + rest, 0, -4, lines});
    for (const char* other : {"1", "0", "-1", "-4", "3", "\"1\"", "null"})
        rows.push_back({R"({"status":)" + std::string(other) + "," + rest, 14, -1, notUnderstood});
    expectReplies<Args>(rows, also);
}

/// The line of a refusal.
inline std::vector<std::string> errorStatusLine(const std::string& function, int status = -4) {
    return {kSharePrefix + function + ": get error status(" + std::to_string(status) + ")"};
}

}  // namespace wire
