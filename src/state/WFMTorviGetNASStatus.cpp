#include "core/callframe.h"
#include "state/GetNASStatusJson.h"

using namespace Lattice;

uint32_t WFMTorviGetNASStatus(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                              const wchar_t* slaveID, bool checkDetail, bool* /*cancel*/,
                              uint32_t* resultWord, _NAS_STATUS_INFORMATION* information) {
    static constexpr auto rules = CallRules("[WFM] WFMTorviGetNASStatus");
    Call call(rules, context, server, port);
    if (!call.accepts(resultWord, information)) return call.refuse();
    call.begin(resultWord);
    *information = {};

    call.route(slaveID);
    if (call.usesSyncService())
        call.get(L"func=nubo_get_nas_status&sid=%ls&check_detail=%d", call.sid(), checkDetail ? 1 : 0);
    else
        call.get(L"func=nubo_get_nas_status&sid=%ls", call.sid());
    CGetNASStatusJson reply;
    if (!call.ask(reply)) return call.end();

    // The other function's name in this line must stay.
    if (reply.GetStatus() != 0)
        return call.answer(reply.GetStatus(), "[WFM] WFMTorviGetNASStaticInfo: Get error status=%d",
                           reply.GetStatus());
    *information = reply.GetInformation();
    return call.answer(0);
}
