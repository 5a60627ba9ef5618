#include <algorithm>

#include "sharing/receiveraction.h"

using namespace Lattice;

uint32_t WebFileManAcceptShare(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                               const wchar_t* nasID, const wchar_t* displayName, uint32_t eventID,
                               const wchar_t* shareID, void* /*reserved*/, wchar_t* file,
                               uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFMShare] WebFileManAcceptShare");
    Call call(rules, context, server, port);
    if (!call.accepts(Given{file}, resultWord) ||
        (call.usesSyncService() && !(IsGiven(displayName) && IsGiven(shareID))))
        return call.refuse();
    call.begin(resultWord);

    if (call.usesSyncService())
        call.get(L"func=nubo_team_folder_accept_share&sid=%ls&display_name=%ls&share_id=%ls%ls", call.sid(),
                 Encoded(displayName), Encoded(shareID), OfNas(nasID));
    else
        call.get(L"func=nubo_accept_share&sid=%ls&event_id=%d", call.sid(), eventID);
    CShareJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(TranslateWFMErrorCode(reply.GetStatus()),
                           "[WFMShare] WebFileManAcceptShare: Get error code(%d)", reply.GetStatus());
    // Without a capacity; the text has 2047 characters at most.
    std::copy_n(reply.GetFile().c_str(), reply.GetFile().size() + 1, file);
    return call.answer(0);
}
