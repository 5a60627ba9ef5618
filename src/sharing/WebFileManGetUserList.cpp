#include "WebFileManShareAPI.h"
#include "sharing/ShareGetUserListJson.h"
#include "sharing/userlist.h"

using namespace Lattice;

uint32_t WebFileManGetUserList(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                               uint32_t userType, const wchar_t* domain, const wchar_t* netbios,
                               const wchar_t* filter, uint32_t lower, uint32_t upper, bool allUsers,
                               bool refresh, void* /*reserved*/, uint32_t* resultWord, uint32_t* total,
                               uint32_t* count, _WFM_USER_INFORMATION** list) {
    static constexpr auto rules = CallRules("[WFMShare] WebFileManGetUserList");
    Call call(rules, context, server, port);
    if (!call.accepts(resultWord, count, list, total)) return call.refuse();
    call.begin(resultWord);
    const uint32_t capacity = *count;
    *total = *count = 0;
    if (userType != kLocalUsers && userType != kDirectoryUsers) return call.answer(ERROR_INVALID_PARAMETER);

    const Directory directory = DirectoryOf(userType, netbios, domain);
    call.get(
        L"func=nubo_get_user_list&sid=%ls&user_type=%d&all_user=%d&refresh=%d&lower=%d&upper=%d&netbios=%ls&"
        L"domain=%ls&filter=%ls",
        call.sid(), userType, int{allUsers}, int{refresh}, lower, upper, directory.netbios, directory.domain,
        Encoded(filter));
    CShareGetUserListJson reply;
    if (!call.ask(reply)) return call.end();

    // The status isn't looked at, and that must stay.
    *total = reply.total;
    if (reply.users.size() > capacity)
        return call.answer(ERROR_INSUFFICIENT_BUFFER,
                           "[WFMShare] WebFileManGetUserList: ERROR_INSUFFICIENT_BUFFER");
    for (size_t i = 0; i < reply.users.size(); ++i) {
        if (list[i] == nullptr) continue;
        CopyTextCut(list[i]->szName, reply.users[i].name);
        CopyTextCut(list[i]->szPolicy, reply.users[i].policy);
        list[i]->pszDescription = HandOverText(reply.users[i].description);
        list[i]->nTorviUser = reply.users[i].torviUser;
        ++*count;
    }
    return call.answer(0);
}
