#include "WebFileManShareAPI.h"
#include "core/callframe.h"
#include "core/handover.h"
#include "sharing/ShareGetTeamFolderJson.h"
#include "sharing/optionalkey.h"

using namespace Lattice;

namespace {

constexpr uint32_t kTeamFolderQuestion = 8;

/// Fills the whole width of a field; a text that long has no terminator, and that must stay.
template <size_t N>
void CopyWidth(wchar_t (&field)[N], const std::wstring& text) {
    text.copy(field, N);
    if (text.size() < N) field[text.size()] = L'\0';
}

void Fill(_WFM_TORVI_TEAM_FOLDER_INFORMATION& record, const _TORVI_TEAM_FOLDER_JSON_INFO& folder) {
    record.nType = folder.nType;
    record.nStatus = folder.nStatus;
    CopyWidth(record.szOwner, folder.strOwner);
    CopyWidth(record.szShareID, folder.strShareID);
    CopyWidth(record.szNasID, folder.strNasID);
    CopyWidth(record.szParentID, folder.strParentID);
    CopyWidth(record.szName, folder.strName);
    CopyWidth(record.szPath, folder.strPath);
    CopyWidth(record.szOriginalPath, folder.strOriginalPath);
    record.dwReceiverCount = static_cast<uint32_t>(folder.receivers.size());
    record.lppReceivers = HandOver(folder.receivers);
}

}  // namespace

uint32_t WebFileManNuboGetTeamFolder(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                     uint32_t eventType, const wchar_t* targetUser, const wchar_t* path,
                                     uint32_t lower, uint32_t upper, uint64_t /*reserved*/, uint32_t* total,
                                     uint32_t* count, _WFM_TORVI_TEAM_FOLDER_INFORMATION** list,
                                     uint32_t* resultWord) {
    // No colon before FAIL, and that must stay.
    static constexpr auto rules =
        CallRules("[WFMShare] WebFileManNuboGetTeamFolder").withFailedLine("{call} {word}");
    Call call(rules, context, server, port);
    if (!call.accepts(total, count, list, resultWord) || !call.usesSyncService()) return call.refuse();
    call.begin(resultWord);
    const uint32_t capacity = *count;
    *total = *count = 0;

    call.get(L"func=nubo_team_folder_get_list&sid=%ls&event_status=0&event_type=%d&lower=%d&upper=%d%ls",
             call.sid(), eventType, lower, upper,
             OptionalKey(L"&target_user=", targetUser) + OptionalKey(L"&path=", path));
    CShareGetTeamFolderJson reply;
    reply.room = capacity;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(reply.GetStatus(), "[WFMShare] WebFileManNuboGetTeamFolder: failed (statud=%d)",
                           reply.GetStatus());
    *total = reply.total;
    if (reply.total == 0 && context->nTeamFolderCount >= 1 && eventType == kTeamFolderQuestion)
        call.line("[WFMShare] WebFileManNuboGetTeamFolder: No shared team folder(ori-num=%d)",
                  context->nTeamFolderCount);
    // A longer list is cut without a word.
    for (size_t i = 0; i < reply.folders.size(); ++i) {
        if (list[i] == nullptr) continue;
        Fill(*list[i], reply.folders[i]);
        ++*count;
    }
    return call.answer(0);
}
