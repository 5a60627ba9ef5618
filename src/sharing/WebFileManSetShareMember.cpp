#include "WebFileManShareAPI.h"
#include "sharing/sharejob.h"

using namespace Lattice;

uint32_t WebFileManSetShareMember(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                  const wchar_t* nasID, const wchar_t* shareID, uint32_t memberCount,
                                  const _WFM_SHARE_MEMBER_ACTION* const* members, uint32_t capacity,
                                  void* /*reserved*/, wchar_t* pid, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFMShare] WebFileManSetShareMember");
    static constexpr ShareJobLines lines{"[WFMShare] WebFileManSetShareMember: Invalid ProcessID",
                                         "[WFMShare] WebFileManSetShareMember: ERROR_INSUFFICIENT_BUFFER"};
    static constexpr Endpoint kEndpoint{L"/cgi-bin/torvi/torvisrv.cgi?func=nubo_team_folder_set_member",
                                        L"/cgi-bin/filemanager/utilRequest.cgi?func=nubo_set_share_member"};
    Call call(rules, context, server, port);
    if (!call.accepts(shareID, memberCount, members, capacity, Given{pid}, resultWord)) return call.refuse();
    call.begin(resultWord);

    call.use(kEndpoint);
    call.post();
    call.field("sid", call.sid());
    call.field("share_id", shareID);
    uint32_t told = 0;
    for (uint32_t i = 0; i < memberCount; ++i) {
        if (members[i] == nullptr) continue;
        const std::string index = std::to_string(told++);
        if (!call.usesSyncService()) call.field(("event_id" + index).c_str(), members[i]->dwEventID);
        // Encoded once more than a form's fields are; the server decodes names twice.
        call.field(("user" + index).c_str(), Encoded(members[i]->szName));
        call.field(("action" + index).c_str(), members[i]->dwAction);
    }
    call.field("user_number", told);
    if (IsGiven(nasID)) call.field("nas_id", nasID);
    CShareToJson reply;
    if (!call.ask(reply)) return call.end();
    return AnswerJob(call, reply, lines, pid, capacity);
}
