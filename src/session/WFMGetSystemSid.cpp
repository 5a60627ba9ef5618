#include "core/callframe.h"
#include "session/GetSystemJson.h"

using namespace Lattice;

uint32_t WFMGetSystemSid(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                         const wchar_t* /*slaveID*/, uint32_t* resultWord, uint32_t* capacity, wchar_t* sid) {
    static constexpr auto rules = CallRules("[WFMShare] WFMGetSystemSid").withOutcomes(kShareOutcomes);
    Call call(rules, context, server, port);
    if (!call.accepts(resultWord, capacity, Given{sid})) return call.refuse();
    call.begin(resultWord);

    // No node is named, not even to the sync service.
    call.get(L"func=nubo_get_system_sid&sid=%ls", call.sid());
    CGetSystemJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(reply.GetStatus(), "[WFMShare] WFMGetSystemSid: get error status(%d)",
                           reply.GetStatus());
    return call.answer(CopyText(sid, *capacity, reply.GetSid()) ? 0 : int64_t{WFM_INSUFFICIENT_BUFFER});
}
