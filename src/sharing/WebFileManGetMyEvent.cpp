#include "WebFileManShareAPI.h"
#include "core/callframe.h"
#include "sharing/ShareGetEventJson.h"

using namespace Lattice;

uint32_t WebFileManGetMyEvent(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                              uint32_t eventType, uint32_t lower, uint32_t upper, void* /*reserved*/,
                              uint32_t* resultWord, uint32_t* total, uint32_t* count,
                              _WFM_TORVI_EVENT_INFORMATION** list) {
    // No colon before FAIL, and that must stay.
    static constexpr auto rules =
        CallRules("[WFMShare] WebFileManGetMyEvent").withFailedLine("{call} {word}");
    Call call(rules, context, server, port);
    if (!call.accepts(total, count, list, resultWord) || call.usesSyncService()) return call.refuse();
    call.begin(resultWord);
    const uint32_t capacity = *count;
    *total = *count = 0;

    call.get(L"func=nubo_get_my_event&sid=%ls&event_type=%d&lower=%d&upper=%d", call.sid(), eventType, lower,
             upper);
    CShareGetEventJson reply;
    reply.room = capacity;
    if (!call.ask(reply)) return call.end();

    call.setResult(reply.GetStatus());
    if (reply.GetStatus() != 0) return call.end();
    *total = reply.total;
    // Those that are dropped below count, too.
    if (reply.number > capacity)
        return call.fail(WFM_PARSE_XML_BUFFER_NOT_ENOUGH,
                         "[WFMShare] WebFileManGetMyEvent: WFM_PARSE_XML_BUFFER_NOT_ENOUGH");
    for (const _WFM_TORVI_EVENT_INFORMATION& event : reply.events) {
        // A null place isn't stepped over: no later event gets past it.
        if (event.szFile[0] == L'\0' || list[*count] == nullptr) continue;
        *list[(*count)++] = event;
    }
    return call.end();
}
