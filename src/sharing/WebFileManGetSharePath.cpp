#include "WebFileManShareAPI.h"
#include "core/callframe.h"
#include "sharing/ShareGetPathJson.h"

using namespace Lattice;

uint32_t WebFileManGetSharePath(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                const wchar_t* shareID, uint32_t capacity, void* /*reserved*/, wchar_t* path,
                                uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFMShare] WebFileManGetSharePath");
    Call call(rules, context, server, port);
    if (!call.accepts(shareID, capacity, Given{path}, resultWord)) return call.refuse();
    call.begin(resultWord);

    call.get(L"func=nubo_get_share_path&sid=%ls&share_id=%ls", call.sid(), Encoded(shareID));
    CShareGetPathJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(reply.GetStatus(), "[WFMShare] WebFileManGetSharePath: Invalid Status (%ls) (%d)",
                           shareID, reply.GetStatus());
    if (reply.GetPath().empty())
        return call.answer(-1, "[WFMShare] WebFileManGetSharePath: Invalid SharePath");
    // Its sister calls say 122.
    if (!CopyText(path, capacity, reply.GetPath()))
        return call.answer(WFM_INSUFFICIENT_BUFFER,
                           "[WFMShare] WebFileManGetSharePath: ERROR_INSUFFICIENT_BUFFER");
    return call.answer(0);
}
