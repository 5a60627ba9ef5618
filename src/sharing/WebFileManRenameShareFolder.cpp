#include "WebFileManShareAPI.h"
#include "core/ShareJson.h"
#include "core/callframe.h"
#include "sharing/sharepath.h"

using namespace Lattice;

uint32_t WebFileManRenameShareFolder(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                     const wchar_t* source, const wchar_t* destination, uint32_t /*number*/,
                                     void* /*reserved*/, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFMShare] WebFileManRenameShareFolder");
    Call call(rules, context, server, port);
    if (!call.accepts(source, destination, resultWord)) return call.refuse();
    call.begin(resultWord);

    const auto from = SplitSharePath(source);
    const auto to = SplitSharePath(destination);
    if (!from || !to) return call.answer(ERROR_ACCESS_DENIED);
    if (from->parent != to->parent) return call.answer(ERROR_INVALID_PARAMETER);

    call.post(L"func=rename&sid=%ls", call.sid());
    call.field("path", from->parent);
    call.field("source_name", from->name);
    call.field("dest_name", to->name);
    call.field("sn", call.sid());
    CShareJson reply;
    if (!call.ask(reply)) return call.end();

    if (!reply.GetSuccess())
        return call.answer(ERROR_ACCESS_DENIED,
                           "[WFMShare] WebFileManRenameShareFolder: ERROR_ACCESS_DENIED");
    return call.answer(0);
}
