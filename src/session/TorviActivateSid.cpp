#include "core/GetResultJson.h"
#include "session/activation.h"

using namespace Lattice;

uint32_t TorviActivateSid(const wchar_t* server, uint32_t port, _WFM_AUTH_CONTEXT* context,
                          const wchar_t* slaveID, uint32_t* resultWord) {
    static constexpr auto rules = ActivationRules("[WFM] TorviActivateSid");
    Call call(rules, context, server, port);
    if (!call.accepts(resultWord) || !IsGiven(static_cast<const wchar_t*>(context->szSlaveID)))
        return call.refuse(ERROR_INVALID_PARAMETER);
    call.begin(resultWord);

    call.route(slaveID);
    call.getAt(L"/%lscgi-bin/torvi/torvisrvPrepare.cgi?func=activate&token=%ls", call.slavePrefix(),
               call.sid());
    CWebFileManGetResultJson reply;
    if (!call.ask(reply)) return call.end();

    call.setResult(ActivationResultOf(reply.GetStatus()));
    if (reply.GetStatus() != 0)
        call.line("[WFM] TorviActivateSid: Status failed(%d)(%d)", reply.GetStatus(),
                  static_cast<int>(call.result()));
    return call.end();
}
