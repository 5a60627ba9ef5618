#include "sharing/receiveraction.h"

using namespace Lattice;

uint32_t WebFileManDenyShare(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                             const wchar_t* nasID, const wchar_t* shareID, uint32_t eventID,
                             void* /*reserved*/, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFMShare] WebFileManDenyShare");
    Call call(rules, context, server, port);
    if (!call.accepts(resultWord) || (call.usesSyncService() && !IsGiven(shareID))) return call.refuse();
    call.begin(resultWord);

    if (call.usesSyncService())
        call.get(L"func=nubo_team_folder_deny_share&sid=%ls&share_id=%ls%ls", call.sid(), Encoded(shareID),
                 OfNas(nasID));
    else
        call.get(L"func=nubo_deny_share&sid=%ls&event_id=%d", call.sid(), eventID);
    CShareJson reply;
    if (!call.ask(reply)) return call.end();
    return AnswerAction(call, reply, "[WFMShare] WebFileManDenyShare: get error code = %d");
}
