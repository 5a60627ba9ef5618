#include "WebFileManShareAPI.h"
#include "core/callframe.h"
#include "core/handover.h"
#include "sharing/FindTorviShareInfoJson.h"

using namespace Lattice;

uint32_t WFMTorviFindShare(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                           const wchar_t* file, uint32_t lower, uint32_t upper, uint32_t* resultWord,
                           uint32_t* count, _WFM_TORVI_SHARE_INFORMATION*** list) {
    static constexpr auto rules =
        CallRules("[WFMShare] WFMTorviFindShare").withNotUnderstood("{call}: {word}(path={subject})");
    Call call(rules, context, server, port);
    if (!call.accepts(file, resultWord, count, list)) return call.refuse();
    call.begin(resultWord);
    call.about(file);

    call.get(L"func=nubo_find_share&sid=%ls&file=%ls&lower=%d&upper=%d", call.sid(), Encoded(file), lower,
             upper);
    CFindTorviShareInfoJson reply;
    reply.SetFilter(file);
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(reply.GetStatus(), "[WFMShare] WFMTorviFindShare: get error code(%d)",
                           reply.GetStatus());
    // Without shares both stay as they are.
    if (!reply.shares.empty()) {
        *list = HandOver(reply.shares);
        *count = static_cast<uint32_t>(reply.shares.size());
    }
    return call.answer(0);
}
