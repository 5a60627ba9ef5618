#include "core/callframe.h"
#include "state/GetLastModifiedTimeJson.h"

using namespace Lattice;

uint32_t WFMGetTorviLastModifiedTime(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                     void* /*reserved*/, int64_t* time, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFMShare] WFMGetTorviLastModifiedTime");
    Call call(rules, context, server, port);
    if (!call.accepts(time, resultWord)) return call.refuse();
    call.begin(resultWord);
    *time = 0;

    call.get(L"func=nubo_get_last_modify_time&sid=%ls", call.sid());
    CGetLastModifiedTimeJson reply;
    if (!call.ask(reply)) return call.end();

    long long modified = 0;
    if (reply.GetStatus() != 0 || !reply.GetLastModifiedTime(&modified))
        return call.answer(reply.GetStatus() != 0 ? reply.GetStatus() : -1,
                           "[WFMShare] WFMGetTorviLastModifiedTime: get error status = %d",
                           reply.GetStatus());
    *time = modified;
    return call.answer(0);
}
