#include "WebFileManShareAPI.h"
#include "core/callframe.h"
#include "sharing/GetRecycleBinJson.h"

using namespace Lattice;

uint32_t WebFileManGetRecycleBin(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                 void* /*reserved*/, bool* enabled) {
    static constexpr auto rules = CallRules("[WFMShare] WebFileManGetRecycleBin");
    Call call(rules, context, server, port);
    if (!call.accepts(enabled)) return call.refuse();
    *enabled = false;

    call.get(L"func=nubo_get_recycle_bin_status&sid=%ls", call.sid());
    CGetRecycleBinJson reply;
    if (!call.ask(reply)) return call.end();
    *enabled = reply.GetEnabled();
    return call.end();
}
