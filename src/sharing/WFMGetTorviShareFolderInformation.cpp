#include "WebFileManShareAPI.h"
#include "core/callframe.h"
#include "sharing/GetTorviShareFileInfoJson.h"
#include "sharing/receivedfolder.h"

using namespace Lattice;

namespace {

/// The sync service wants what follows the team area.
std::wstring PathFor(const Call& call, const wchar_t* path) {
    static constexpr wchar_t kArea[] = L"/.Torvi/";
    const std::wstring text = path;
    const size_t area = call.usesSyncService() ? text.find(kArea) : std::wstring::npos;
    return area == std::wstring::npos ? text : text.substr(area + std::size(kArea) - 1);
}

}  // namespace

uint32_t WFMGetTorviShareFolderInformation(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                           void* /*reserved1*/, const wchar_t* path, void* /*reserved2*/,
                                           uint32_t* resultWord, uint32_t* statusWord,
                                           _WFM_TORVI_SHARE_FOLDER_INFORMATION* information) {
    static constexpr auto rules = CallRules("[WFMShare] WFMGetTorviShareFolderInformation");
    Call call(rules, context, server, port);
    if (!call.accepts(path, resultWord, statusWord, information)) return call.refuse();
    call.begin(resultWord);
    *statusWord = static_cast<uint32_t>(-1);
    *information = {};
    if (IsInReceivedFolder(*context, path)) {
        call.line("[WFMShare] WFMGetTorviShareFolderInformation: Is recevier side team folder(%ls)", path);
        return call.leave(WFM_PARSE_XML_INVALID_PARAMETER);
    }

    call.get(call.usesSyncService() ? L"func=nubo_team_folder_get_info&sid=%ls&path=%ls"
                                    : L"func=nubo_get_share_info&sid=%ls&file=%ls",
             call.sid(), Encoded(PathFor(call, path)));
    CGetTorviShareFileInfoJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(reply.GetStatus(),
                           "[WFMShare] WFMGetTorviShareFolderInformation: (%ls) invalid status (%d)", path,
                           reply.GetStatus());
    *statusWord = reply.GetFolderStatus();
    if (reply.GetFolderStatus() != ERROR_INVALID_DATA) {
        information->nEventID = reply.eventID;
        information->bFileExists = reply.fileExists;
        information->nShareIDStatus = reply.shareIDStatus;
        information->nEventStatus = reply.eventStatus;
        information->nNuboType = reply.nuboType;
        CopyText(information->szShareID, reply.shareID);
        CopyText(information->szNasID, reply.nasID);
    }
    return call.answer(0);
}
