#include "core/callframe.h"
#include "state/GetNASStaticInfoJson.h"

using namespace Lattice;

uint32_t WFMTorviGetNASStaticInfo(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                  const wchar_t* slaveID, void* /*reserved*/,
                                  _NAS_STATIC_INFORMATION* information, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFM] WFMTorviGetNASStaticInfo");
    Call call(rules, context, server, port);
    if (!call.accepts(information, resultWord)) return call.refuse();
    call.begin(resultWord);
    *information = {};

    call.route(slaveID);
    call.get(L"func=nubo_get_static_information&sid=%ls", call.sid());
    CTorviGetNASStaticInfoJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(reply.GetStatus(), "[WFM] WFMTorviGetNASStaticInfo: Get error status=%d",
                           reply.GetStatus());
    CopyText(information->szModel, reply.model);
    CopyText(information->szFirmwareVersion, reply.firmwareVersion);
    information->llQueueLimit = reply.queueLimit;
    information->llMessageQueueLimit = reply.messageQueueLimit;
    return call.answer(0);
}
