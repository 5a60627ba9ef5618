#include "WebFileManShareAPI.h"
#include "sharing/optionalkey.h"
#include "sharing/sharejob.h"

using namespace Lattice;

uint32_t WebFileManUnshare(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                           const wchar_t* nasID, const wchar_t* shareID, uint32_t capacity,
                           void* /*reserved*/, wchar_t* pid, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFMShare] WebFileManUnshare");
    static constexpr ShareJobLines lines{"[WFMShare] WebFileManUnshare: Invalid ProcessID",
                                         "[WFMShare] WebFileManUnshare: ERROR_INSUFFICIENT_BUFFER"};
    Call call(rules, context, server, port);
    if (!call.accepts(shareID, capacity, Given{pid}, resultWord)) return call.refuse();
    call.begin(resultWord);

    // The older service, too, takes a share's id here; it knows of one NAS only.
    if (call.usesSyncService())
        call.get(L"func=nubo_team_folder_unshare_ex&sid=%ls&share_id=%ls%ls", call.sid(), Encoded(shareID),
                 OfNas(nasID));
    else
        call.get(L"func=nubo_unshare&sid=%ls&share_id=%ls", call.sid(), Encoded(shareID));
    CShareToJson reply;
    if (!call.ask(reply)) return call.end();
    return AnswerJob(call, reply, lines, pid, capacity);
}
