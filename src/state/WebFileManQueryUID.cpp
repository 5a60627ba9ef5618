#include "WebFileManShareAPI.h"
#include "core/callframe.h"
#include "state/ShareGetUIDJson.h"
#include "state/uidrecord.h"

using namespace Lattice;

uint32_t WebFileManQueryUID(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                            void* /*reserved*/, _NAS_USER_UID_INFORMATION* information) {
    static constexpr auto rules = CallRules("[WFM] WebFileManQueryUID");
    Call call(rules, context, server, port);
    if (!call.accepts(information)) return call.refuse();
    *information = {};

    call.get(L"func=nubo_get_nas_uid&sid=%ls", call.sid());
    CShareGetUIDJson reply;
    if (!call.ask(reply)) return call.end();
    *information = IdentityRecord(reply);
    return call.end();
}
