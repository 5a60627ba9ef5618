#include "sharing/receiveraction.h"

using namespace Lattice;

uint32_t WebFileManRemoveEvent(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                               uint32_t eventID, void* /*reserved*/, uint32_t* resultWord) {
    // The word for a reply that isn't understood must stay.
    static constexpr auto rules = CallRules("[WFMShare] WebFileManRemoveEvent")
                                      .withNotUnderstood("{call}: WFM_PARSE_XML_INVALID_PARAMETER");
    Call call(rules, context, server, port);
    // The sync service has no events.
    if (!call.accepts(resultWord) || call.usesSyncService()) return call.refuse();
    call.begin(resultWord);

    call.get(L"func=nubo_remove_event&sid=%ls&event_id=%d", call.sid(), eventID);
    CShareJson reply;
    if (!call.ask(reply)) return call.end();
    return AnswerAction(call, reply, "[WFMShare] WebFileManRemoveEvent: Get error code(%d)");
}
