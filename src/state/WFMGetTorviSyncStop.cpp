#include "state/syncsignal.h"

using namespace Lattice;

uint32_t WFMGetTorviSyncStop(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                             uint32_t number, void* /*reserved*/, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFMShare] WFMGetTorviSyncStop");
    Call call(rules, context, server, port);
    if (!call.accepts(resultWord)) return call.refuse();
    call.begin(resultWord);

    call.get(L"func=nubo_sync_done&sid=%ls&number=%d", call.sid(), number);
    CShareJson reply;
    if (!call.ask(reply)) return call.end();
    return AnswerSignal(call, reply);
}
