#include "WebFileManShareAPI.h"
#include "core/callframe.h"
#include "files/ShareGetProgressJson.h"

using namespace Lattice;

uint32_t WebFileManQueryProgress(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                 const wchar_t* slaveID, const wchar_t* pid, void* /*reserved*/,
                                 uint32_t* percent, uint32_t* errorCode, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFMShare] WebFileManQueryProgress");
    Call call(rules, context, server, port);
    if (!call.accepts(pid, percent, errorCode, resultWord)) return call.refuse();
    call.begin(resultWord);
    *errorCode = static_cast<uint32_t>(-1);
    *percent = 0;

    call.route(slaveID);
    call.get(L"func=nubo_get_progress&sid=%ls&pid=%ls", call.sid(), pid);
    CShareGetProgressJson reply;
    if (!call.ask(reply)) return call.end();

    *errorCode = static_cast<uint32_t>(reply.GetErrorCode());
    if (!reply.GetResult() || reply.GetErrorCode() != 0)
        call.line("[WFMShare] WebFileManQueryProgress: Failed Status(%d) ErrorCode(%d)", reply.GetStatus(),
                  reply.GetErrorCode());
    else
        *percent = static_cast<uint32_t>(reply.GetPercent());
    return call.answer(reply.GetResult() ? 0 : -1);
}
