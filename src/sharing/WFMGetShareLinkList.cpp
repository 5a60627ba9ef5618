#include <algorithm>
#include <iterator>

#include "WebFileManShareAPI.h"
#include "core/callframe.h"
#include "sharing/ShareLinkListJson.h"
#include "sharing/linkplace.h"

using namespace Lattice;

namespace {

/// The reserved text stays the caller's.
void Fill(_WFM_SHARE_LINK_INFO& place, _WFM_SHARE_LINK_INFO link) {
    std::copy(std::begin(place.szReserved), std::end(place.szReserved), link.szReserved);
    place = link;
}

}  // namespace

uint32_t WFMGetShareLinkList(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                             const wchar_t* slaveID, int32_t limit, void* /*reserved*/, int32_t* start,
                             uint32_t* count, _WFM_SHARE_LINK_INFO** list) {
    static constexpr auto rules = CallRules("[WFMShare] WFMGetShareLinkList").withEndpoint(kLinkPlace);
    Call call(rules, context, server, port);
    if (!call.accepts(start, count, list) || limit < 1 || *start < 0) return call.refuse();
    const uint32_t capacity = *count;
    *count = 0;

    call.route(slaveID);
    call.get(L"func=get_share_list&sid=%ls&dir=ASC&limit=%d&sort=filename&start=%d", call.sid(), limit,
             *start);
    CShareLinkListJson reply;
    reply.room = capacity;
    if (!call.ask(reply)) return call.end();

    *start = reply.total;
    if (reply.number > capacity) {
        call.failAs(WFM_PARSE_XML_BUFFER_NOT_ENOUGH, "WFM_PARSE_XML_BUFFER_NOT_ENOUGH");
        return call.end();
    }
    // A null entry is passed over; its link goes to the next.
    uint32_t entry = 0;
    for (const _WFM_SHARE_LINK_INFO& link : reply.links) {
        if (link.szFileName[0] == L'\0') continue;
        while (entry < capacity && list[entry] == nullptr) ++entry;
        if (entry == capacity) break;
        Fill(*list[entry++], link);
        ++*count;
    }
    return call.end();
}
