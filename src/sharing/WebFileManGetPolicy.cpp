#include "WebFileManShareAPI.h"
#include "core/callframe.h"
#include "sharing/ShareGetPolicyJson.h"

using namespace Lattice;

uint32_t WebFileManGetPolicy(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                             void* /*reserved*/, uint32_t* policy) {
    static constexpr auto rules = CallRules("[WFMShare] WebFileManGetPolicy");
    Call call(rules, context, server, port);
    if (!call.accepts(policy)) return call.refuse();
    *policy = 0;

    call.get(L"func=nubo_get_policy&sid=%ls", call.sid());
    CShareGetPolicyJson reply;
    if (!call.ask(reply)) return call.end();
    *policy = reply.GetPolicy();
    return call.end();
}
