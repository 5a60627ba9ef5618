#include "WebFileManShareAPI.h"
#include "core/callframe.h"
#include "files/MapTeamFolderPath.h"
#include "sharing/ShareLinkItemListJson.h"

using namespace Lattice;

namespace {

constexpr Endpoint kPublicPlace{L"/%lsshare.cgi", L"/share.cgi"};

}  // namespace

uint32_t WFMGetShareLinkItemList(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                 const wchar_t* path, const wchar_t* slaveID, void* /*reserved*/,
                                 const wchar_t* ssid, uint32_t* total, uint32_t* count,
                                 _WFM_SHARE_LINK_ITEM_INFO** list) {
    static constexpr auto rules = CallRules("[WFMShare] WFMGetShareLinkItemList").withEndpoint(kPublicPlace);
    Call call(rules, context, server, port);
    if (!call.accepts(ssid, total, count, list)) return call.refuse();
    const uint32_t capacity = *count;
    *total = *count = 0;

    // The path tells the node only; the request is the link's public one, without the session.
    call.route(slaveID, SlaveOfTeamFolder(*context, TextOf(path)));
    call.get(L"func=get_list&ssid=%ls", Encoded(ssid));
    CShareLinkItemListJson reply;
    reply.room = capacity;
    if (!call.ask(reply)) return call.end();

    *total = reply.total;
    if (reply.number > capacity) {
        call.failAs(WFM_PARSE_XML_BUFFER_NOT_ENOUGH, "WFM_PARSE_XML_BUFFER_NOT_ENOUGH");
        return call.end();
    }
    for (const _WFM_SHARE_LINK_ITEM_INFO& item : reply.items)
        if (item.szFileName[0] != L'\0') *list[(*count)++] = item;
    return call.end();
}
