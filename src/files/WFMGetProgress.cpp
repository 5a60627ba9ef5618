#include <QThread>

#include "core/callframe.h"
#include "files/GetMoveStatusJson.h"

using namespace Lattice;

namespace {

constexpr unsigned long kBetweenRoundsMs = 200;
constexpr int kUnknownRetries = 3;
constexpr int kDone = 100;
constexpr int kUnknown = -1;

}  // namespace

uint32_t WFMGetProgress(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                        const wchar_t* slaveID, const wchar_t* name, int32_t pid, bool* cancel,
                        uint32_t* resultWord) {
    // The other function's name in the line of a reply that isn't understood must stay.
    static constexpr auto rules = CallRules("[WFM] WFMGetProgress")
                                      .withNotUnderstood("[WFM] WFMGetSid: {word}")
                                      .withTimeout(30000)
                                      .withoutSidCheck();
    Call call(rules, context, server, port);
    if (!call.accepts(name, resultWord)) return call.refuse();
    call.begin(resultWord);

    call.route(slaveID);
    for (int retries = kUnknownRetries; !IsSet(cancel);) {
        call.get(L"func=get_move_status&sid=%ls&pid=%d", call.sid(), pid);
        CGetMoveStatusJson reply;
        if (!call.ask(reply)) return call.end();
        if (reply.GetStatus() != 0)
            return call.answer(reply.GetStatus() == WFM_FILE_NO_EXIST ? int64_t{ERROR_PATH_NOT_FOUND} : -1,
                               "[WFM] WFMGetProgress: GetStatus failed(%ls)(%d)", name, reply.GetStatus());
        if (reply.GetPercent() == kDone) return call.answer(0);
        if (reply.GetPercent() == kUnknown) {
            // The server may not have registered the job yet.
            call.line("[WFM] WFMGetProgress: ERROR_PATH_NOT_FOUND(%ls)(%d)", name, retries);
            call.setResult(ERROR_PATH_NOT_FOUND);
            if (retries < 1) return call.leave(0);
            --retries;
        }
        QThread::msleep(kBetweenRoundsMs);
    }
    return call.leave(WFM_PARSE_XML_FAIL);  // cancelled
}
