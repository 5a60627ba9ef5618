#include "WebFileManShareAPI.h"
#include "core/ShareJson.h"
#include "core/callframe.h"

using namespace Lattice;

uint32_t WebFileManResetDeviceConfig(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                     const wchar_t* user, const wchar_t* deviceUID, void* /*reserved*/,
                                     uint32_t* resultWord) {
    static constexpr auto rules =
        CallRules("[WFMShare] WebFileManResetDeviceConfig").withOutcomes(kShareOutcomes);
    Call call(rules, context, server, port);
    if (!call.accepts(user, deviceUID, resultWord)) return call.refuse();
    call.begin(resultWord);

    call.get(L"func=nubo_reset_device_config&sid=%ls&user=%ls&device_uid=%ls&mode=1", call.sid(),
             Encoded(user), deviceUID);
    CShareJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(reply.GetStatus(), "[WFMShare] WebFileManResetDeviceConfig: get error status(%d)",
                           reply.GetStatus());
    return call.answer(0);
}
