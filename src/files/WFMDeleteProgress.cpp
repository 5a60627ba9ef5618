#include "core/GetResultJson.h"
#include "core/callframe.h"

using namespace Lattice;

uint32_t WFMDeleteProgress(void* context, const wchar_t* server, unsigned int port, const wchar_t* slaveID,
                           int pid, bool* /*cancel*/) {
    static constexpr auto rules = CallRules("[WFM] WFMDeleteProgress").withTimeout(30000);
    Call call(rules, static_cast<_WFM_AUTH_CONTEXT*>(context), server, port);
    if (!call.accepts() || pid <= 0) return call.refuse();

    call.route(slaveID);
    call.get(L"func=daemon_list&sid=%ls&subfunc=delete&pid=%d", call.sid(), pid);
    CWebFileManGetResultJson reply;
    if (!call.ask(reply)) return call.end();
    if (reply.GetStatus() != 0) call.line("[WFM] WFMDeleteProgress: failed status(%d)", reply.GetStatus());
    return call.end();
}
