#include "WebFileManShareAPI.h"
#include "sharing/GetShareMemberListJson.h"
#include "sharing/optionalkey.h"
#include "sharing/userlist.h"

using namespace Lattice;

namespace {

constexpr int kRefreshTimeoutMs = 120000;

constexpr wchar_t kOnSyncService[] =
    L"func=nubo_team_folder_get_member&sid=%ls&user_type=%d&share_id=%ls&lower=%d&upper=%d&all_user=%d&"
    L"refresh=%d&netbios=%ls&domain=%ls&filter=%ls%ls%ls";
constexpr wchar_t kOnFileManager[] =
    L"func=nubo_get_share_member&sid=%ls&user_type=%d&share_id=%ls&lower=%d&upper=%d&all_user=%d&refresh=%d&"
    L"netbios=%ls&domain=%ls&filter=%ls%ls%ls";

}  // namespace

uint32_t WebFileManGetShareMember(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                  const wchar_t* nasID, const wchar_t* shareID, uint32_t lower,
                                  uint32_t upper, uint32_t userType, const wchar_t* domain,
                                  const wchar_t* netbios, const wchar_t* filter, bool allUsers, bool refresh,
                                  bool onlyMembers, void* /*reserved*/, uint32_t* total, uint32_t* count,
                                  _WFM_SHARE_MEMBER_INFORMATION** list, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFMShare] WebFileManGetShareMember");
    Call call(rules, context, server, port);
    if (!call.accepts(shareID, total, count, list, resultWord) || lower >= upper) return call.refuse();
    call.begin(resultWord);
    const uint32_t capacity = *count;
    *total = *count = 0;
    if (userType != kLocalUsers && userType != kDirectoryUsers) return call.answer(ERROR_INVALID_PARAMETER);

    if (refresh) call.setTimeout(kRefreshTimeoutMs);
    const Directory directory = DirectoryOf(userType, netbios, domain);
    call.get(call.usesSyncService() ? kOnSyncService : kOnFileManager, call.sid(), userType, Encoded(shareID),
             lower, upper, int{allUsers}, int{refresh}, directory.netbios, directory.domain, Encoded(filter),
             onlyMembers ? L"&only_member=1" : L"", call.usesSyncService() ? OfNas(nasID) : std::wstring());
    CGetShareMemberListJson reply;
    if (!call.ask(reply)) return call.end();

    // The word doesn't fit a refusal, and must stay.
    if (reply.GetStatus() != 0)
        return call.answer(-1, "[WFMShare] WebFileManGetShareMember: ERROR_INSUFFICIENT_BUFFER");
    *total = reply.total;
    if (reply.members.size() > capacity)
        return call.answer(ERROR_INSUFFICIENT_BUFFER,
                           "[WFMShare] WebFileManGetShareMember: ERROR_INSUFFICIENT_BUFFER");
    for (size_t i = 0; i < reply.members.size(); ++i) {
        if (list[i] == nullptr) continue;
        const TorviShareMemberInfo& member = reply.members[i];
        CopyTextCut(list[i]->szName, member.name);
        list[i]->nShareMember = member.shareMember;
        list[i]->nEventStatus = member.eventStatus;
        list[i]->nEventID = member.eventID;
        list[i]->pszDescription = HandOverAnyText(member.description);
        list[i]->nTorviUser = member.torviUser;
        ++*count;
    }
    return call.answer(0);
}
