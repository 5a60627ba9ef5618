#include "WebFileManShareAPI.h"
#include "core/ShareJson.h"
#include "core/callframe.h"
#include "sharing/sharepath.h"

using namespace Lattice;

uint32_t WebFileManMoveShareFolder(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                   const wchar_t* source, const wchar_t* destination, uint32_t number,
                                   void* reserved, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFMShare] WebFileManMoveShareFolder");
    Call call(rules, context, server, port);
    if (!call.accepts(source, destination, resultWord)) return call.refuse();
    call.begin(resultWord);

    const auto from = SplitSharePath(source);
    const auto to = SplitSharePath(destination);
    if (!from || !to) return call.answer(ERROR_ACCESS_DENIED);
    if (from->parent == to->parent && from->name == to->name)
        return call.answer(ERROR_INVALID_PARAMETER,
                           "[WFMShare] WebFileManMoveShareFolder: ERROR_INVALID_PARAMETER");

    call.post(L"func=move&sid=%ls", call.sid());
    call.field("source_file", from->name);
    call.field("source_total", "1");
    call.field("source_path", from->parent);
    call.field("dest_path", to->parent);
    call.field("mode", "1");
    call.field("sn", call.sid());
    CShareJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() == WFM_PERMISSION_DENY)
        return call.answer(ERROR_ACCESS_DENIED, "[WFMShare] WebFileManMoveShareFolder: ERROR_ACCESS_DENIED");
    if (reply.GetStatus() != 0)
        return call.answer(-1, "[WFMShare] WebFileManMoveShareFolder: ERROR_UNKNOWN(%d)", reply.GetStatus());
    call.setResult(0);
    if (from->name == to->name) return call.end();

    // The move kept the name; the new one is given where it lies now.
    call.release();
    const std::wstring moved = to->parent + L"/" + from->name;
    const std::wstring renamed = to->parent + L"/" + to->name;
    call.setStatus(WebFileManRenameShareFolder(context, server, port, moved.c_str(), renamed.c_str(), number,
                                               reserved, resultWord));
    if (call.status() != 0 || call.result() != 0)
        call.line("[WFMShare] WebFileManMoveShareFolder: WebFileManRenameShareFolder failed(%d)(%d)",
                  static_cast<int>(call.status()), static_cast<int>(call.result()));
    return call.end();
}
