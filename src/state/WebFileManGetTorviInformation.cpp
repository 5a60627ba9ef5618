#include "WebFileManShareAPI.h"
#include "core/callframe.h"
#include "state/GetTorviInfoJson.h"

using namespace Lattice;

uint32_t WebFileManGetTorviInformation(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                       void* /*reserved*/, const wchar_t* slaveID, bool* result,
                                       _TORVI_INFORMATION* information) {
    static constexpr auto rules = CallRules("[WFM] WebFileManGetTorviInformation");
    Call call(rules, context, server, port);
    if (!call.accepts(result, information)) return call.refuse();
    *result = false;
    *information = {};

    call.route(slaveID);
    call.get(L"func=nubo_get_nubo_info&sid=%ls", call.sid());
    CGetTorviInfoJson reply;
    if (!call.ask(reply)) return call.end();

    *result = reply.GetResult();
    if (!reply.GetResult()) {
        call.line("[WFM] WebFileManGetTorviInformation: get error status(%d)", reply.GetStatus());
        return call.end();
    }
    // The user's own flag never reaches the record, and that must stay.
    information->bFunctionEnable = information->bUserEnable = reply.functionEnable;
    information->bHomeIsExist = reply.homeIsExist;
    information->bTeamFolderIsExist = reply.teamFolderIsExist;
    information->bClusterSupport = reply.clusterSupport;
    information->nClusterStatus = reply.clusterStatus;
    CopyText(information->szSlaveID, reply.slaveId);
    return call.end();
}
