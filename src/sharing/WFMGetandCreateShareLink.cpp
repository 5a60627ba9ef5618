#include <algorithm>

#include "files/GetShareFilePath.h"
#include "files/MapTeamFolderPath.h"
#include "sharing/GetandCreateLinkJson.h"
#include "sharing/linkform.h"
#include "sharing/linkplace.h"

using namespace Lattice;

namespace {

constexpr uint32_t kLeastTimeoutMs = 60000;

/// What is shared: the leaves, the folder that they lie in, and the node that holds it.
struct Selection {
    std::vector<std::wstring> items;
    std::wstring path;
    std::wstring slaveID;
};

/// Items are whole paths in one folder, that of the first.
Selection SelectionOf(_WFM_AUTH_CONTEXT& context, const wchar_t* fileList, bool newShare) {
    Selection selection;
    for (const std::wstring& item : FileItems(fileList)) {
        const SplitPath split = SplitAtLastSlash(item);
        if (selection.items.empty()) selection.path = split.parent;
        selection.items.push_back(split.name);
    }
    bool mapped = false;
    GetShareFilePath(&context, selection.path, selection.items, mapped, selection.slaveID);
    if (!newShare && !selection.path.empty()) {
        const RemotePath place = MapTeamFolderPath(context, selection.path);
        if (place.mapped) {
            selection.path = place.parent;
            selection.slaveID = place.slaveID;
        }
    }
    return selection;
}

}  // namespace

uint32_t WFMGetandCreateShareLink(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                  const wchar_t* slaveID, uint32_t timeoutMs, const wchar_t* hostname,
                                  void* /*reserved*/, const wchar_t* fileList, const wchar_t* accessCode,
                                  const wchar_t* expireTime, const wchar_t* datetime, const wchar_t* linkName,
                                  bool secureLink, uint32_t durationType, bool newShare,
                                  _WFM_SHARE_LINK_RESULT* information) {
    static constexpr auto rules = CallRules("[WFMShare] WFMGetandCreateShareLink").withEndpoint(kLinkPlace);
    Call call(rules, context, server, port);
    if (!call.accepts(information) || (!newShare && !(IsGiven(hostname) && IsGiven(fileList))))
        return call.refuse();
    *information = {};
    information->nResult = -1;

    const Selection selection = SelectionOf(*context, fileList, newShare);
    if (!newShare && selection.path.empty()) return call.refuse();
    const std::wstring own = context->szSlaveID;
    const std::wstring node = !selection.slaveID.empty() ? selection.slaveID : TextOf(slaveID);
    const bool onOtherNode = !SlavePrefix(own, node).empty();
    CopyText(information->szSlaveID, node.empty() ? own : node);

    call.setTimeout(std::max(timeoutMs, kLeastTimeoutMs));
    call.route(slaveID, selection.slaveID);
    call.post(L"func=get_share_link&sid=%ls", call.sid());
    AddDuration(call, durationType, datetime);
    call.field("access_code", TextOf(accessCode));
    if (!IsGiven(hostname)) {
        if (!selection.items.empty()) call.field("ht", "11");
    } else if (onOtherNode) {
        call.field("ht", "10");
        call.field("hostname", format(L"%ls:%d/%ls", hostname, static_cast<int>(port), node.c_str()));
    } else {
        call.field("hostname", hostname);
    }
    call.field("ssl", TrueOrFalse(secureLink));
    for (const std::wstring& item : selection.items) call.field("file_name", item);
    if (!newShare)
        call.field("path", selection.path);
    else if (IsGiven(linkName))
        call.field("link_name", linkName);
    call.field("new_share", newShare ? "1" : "0");
    call.field("expire_time", TextOf(expireTime));
    call.field("c", "1");
    call.field("file_total", static_cast<int64_t>(selection.items.size()));
    CGetandCreateLinkJson reply;
    if (!call.ask(reply)) return call.end();

    information->nResult = reply.GetStatus();
    if (reply.GetStatus() != 0) {
        call.line("[WFMShare] WFMGetandCreateShareLink: Get error code(%d)", reply.GetStatus());
        return call.end();
    }
    information->nMultiple = reply.multiple ? 1 : 0;
    CopyTextCut(information->szLinkURL, reply.linkURL);
    CopyTextCut(information->szLinkName, reply.linkName);
    CopyTextCut(information->szExpireTime, reply.expireTime);
    CopyText(information->szSsid, reply.ssid);
    return call.end();
}
