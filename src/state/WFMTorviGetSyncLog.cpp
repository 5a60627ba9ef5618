#include "core/callframe.h"
#include "state/GetSyncLogJson.h"

using namespace Lattice;

uint32_t WFMTorviGetSyncLog(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                            const wchar_t* slaveID, uint32_t number, int64_t lower,
                            const wchar_t* syncingFolder, void* /*reserved*/, uint32_t* count,
                            _WFM_SYNC_LOG_INFORMATION** list, bool* isEnd, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFMShare] WFMTorviGetSyncLog");
    Call call(rules, context, server, port);
    if (!call.accepts(number, count, list, isEnd, resultWord) || *count == 0) return call.refuse();
    call.begin(resultWord);
    const uint32_t capacity = *count;
    *count = 0;
    *isEnd = false;

    // The node counts together with a folder only.
    if (IsGiven(syncingFolder)) {
        call.route(slaveID);
        call.get(L"func=nubo_get_sync_log&sid=%ls&lower=%ls&number=%d&syncing_folder=%ls", call.sid(),
                 std::to_wstring(lower), number, Encoded(syncingFolder));
    } else {
        call.get(L"func=nubo_get_sync_log&sid=%ls&lower=%ls&number=%d", call.sid(), std::to_wstring(lower),
                 number);
    }
    CGetTorviSyncLogJson reply(capacity);
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(reply.GetStatus(), "[WFMShare] WFMTorviGetSyncLog: error status = %d",
                           reply.GetStatus());
    *isEnd = reply.IsEnd();
    for (const _WFM_SYNC_LOG_INFORMATION& record : reply.records) {
        if (*count == capacity || list[*count] == nullptr)
            return call.answer(WFM_INSUFFICIENT_BUFFER,
                               "[WFMShare] WFMTorviGetSyncLog: WFM_INSUFFICIENT_BUFFER");
        *list[(*count)++] = record;
    }
    return call.answer(0);
}
