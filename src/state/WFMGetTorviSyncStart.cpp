#include "state/syncsignal.h"

using namespace Lattice;

uint32_t WFMGetTorviSyncStart(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                              void* /*reserved*/, uint32_t channel, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFMShare] WFMGetTorviSyncStart");
    Call call(rules, context, server, port);
    if (!call.accepts(resultWord)) return call.refuse();
    call.begin(resultWord);

    call.get(L"func=nubo_sync_start&channel=%d&sid=%ls", channel, call.sid());
    CShareJson reply;
    if (!call.ask(reply)) return call.end();
    return AnswerSignal(call, reply);
}
