#include "WebFileManShareAPI.h"
#include "core/ShareJson.h"
#include "core/callframe.h"

using namespace Lattice;

uint32_t WebFileManSetRecycleBin(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                 uint32_t value, void* /*reserved*/, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFMShare] WebFileManSetRecycleBin");
    Call call(rules, context, server, port);
    if (!call.accepts(resultWord)) return call.refuse();
    call.begin(resultWord);

    call.get(L"func=nubo_set_recycle_bin&recycle_bin=%d&sid=%ls", value, call.sid());
    CShareJson reply;
    if (!call.ask(reply)) return call.end();

    if (!reply.GetSuccess())
        return call.answer(ERROR_ACCESS_DENIED, "[WFMShare] WebFileManSetRecycleBin: ERROR_ACCESS_DENIED");
    return call.answer(0);
}
