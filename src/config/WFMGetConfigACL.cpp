#include "WebFileManShareAPI.h"
#include "config/GetConfigACLInfoJson.h"
#include "core/callframe.h"

using namespace Lattice;

uint32_t WFMGetConfigACL(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port, void* /*reserved*/,
                         uint32_t* resultWord, WFM_TORVI_CONFIG_ACL_INFO* information) {
    static constexpr auto rules = CallRules("[WFMShare] WFMGetConfigACL").withOutcomes(kShareOutcomes);
    Call call(rules, context, server, port);
    if (!call.accepts(resultWord, information)) return call.refuse();
    call.begin(resultWord);
    *information = {};

    call.get(L"func=nubo_get_config_acl&sid=%ls", call.sid());
    CGetConfigACLInfoJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(reply.GetStatus(), "[WFMShare] WFMGetConfigACL: get error status(%d)",
                           reply.GetStatus());
    *information = reply.rights;
    return call.answer(0);
}
