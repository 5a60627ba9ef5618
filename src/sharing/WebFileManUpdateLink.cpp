#include "WebFileManShareAPI.h"
#include "core/ShareJson.h"
#include "core/callframe.h"
#include "sharing/linkplace.h"
#include "sharing/sharepath.h"

using namespace Lattice;

uint32_t WebFileManUpdateLink(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                              const wchar_t* slaveID, const wchar_t* source, const wchar_t* destination,
                              uint32_t /*number*/, void* /*reserved*/, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFMShare] WebFileManUpdateLink").withEndpoint(kLinkPlace);
    Call call(rules, context, server, port);
    if (!call.accepts(source, destination, resultWord)) return call.refuse();
    call.begin(resultWord);

    const auto from = SplitSharePath(source);
    const auto to = SplitSharePath(destination);
    if (!from || !to) return call.answer(ERROR_ACCESS_DENIED);

    call.route(slaveID);
    call.post(L"func=update_link&sid=%ls", call.sid());
    call.field("dest_path", to->parent);
    call.field("source_file", from->name);
    call.field("sn", call.sid());
    CShareJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() == WFM_PERMISSION_DENY)
        return call.answer(ERROR_ACCESS_DENIED, "[WFMShare] WebFileManUpdateLink: ERROR_ACCESS_DENIED");
    // The word is spelled so, and that must stay.
    if (reply.GetStatus() != 0)
        return call.answer(-1, "[WFMShare] WebFileManUpdateLink: ERROR_KNOWN(%d)", reply.GetStatus());
    return call.answer(0);
}
