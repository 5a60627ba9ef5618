#include <algorithm>

#include "files/RouteTo.h"
#include "sharing/WebFileManGetLinkXml.h"
#include "sharing/linkform.h"
#include "sharing/linkplace.h"

using namespace Lattice;

namespace {

constexpr char kSubject[] = "To Share with You!";
constexpr char kContent[] = "I've shared the following file(s) with you using VEXA Rapido WFM:";

/// The line of a proxy that refuses has no colon, and that must stay.
constexpr HttpOutcomes kOutcomes{
    {{kProxyRefused.httpStatus, kProxyRefused.dwStatus, kProxyRefused.word, "{call} {word}"},
     kServiceUnavailable},
    2};

}  // namespace

uint32_t WFMGetShareLink(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                         const wchar_t* slaveID, uint32_t downloadType, uint32_t durationType,
                         uint32_t networkType, const wchar_t* hostname, const wchar_t* addressee,
                         const wchar_t* path, const wchar_t* accessCode, const wchar_t* datetime,
                         const wchar_t* expireTime, bool secureLink, void* /*reserved*/,
                         uint32_t* linkCapacity, wchar_t* link, wchar_t* expireTimeOut,
                         uint32_t* resultWord) {
    static constexpr auto rules =
        CallRules("[WFMShare] WFMGetShareLink").withEndpoint(kLinkPlace).withOutcomes(kOutcomes);
    Call call(rules, context, server, port);
    const LinkTypes types{downloadType, durationType, networkType};
    if (!call.accepts(hostname, path, linkCapacity, Given{expireTimeOut}, resultWord) || !types.inRange())
        return call.refuse();
    call.begin(resultWord);
    const SplitPath given = SplitAtLastSlash(path);
    if (given.parent.empty() || given.name.empty()) {
        call.failNotUnderstood();
        return call.end();
    }

    const RemotePath file = RouteTo(call, slaveID, given.parent, given.name);
    call.post(L"func=get_share_link&sid=%ls", call.sid());
    call.field("download_type", TypeText(gDownloadLinkTypes, downloadType));
    if (IsGiven(addressee)) {
        call.field("addressee", addressee);
        call.field("subject", kSubject);
        call.field("content", kContent);
    }
    AddDuration(call, durationType, datetime);
    call.field("file_total", "1");
    AddAccess(call, accessCode);
    call.field("hostname", hostname);
    call.field("ssl", TrueOrFalse(secureLink));
    call.field("include_access_code", TrueOrFalse(IsGiven(accessCode)));
    call.field("file_name", file.name);
    call.field("path", file.parent);
    call.field("network_type", TypeText(gNetworkTypes, networkType));
    call.field("expire_time", TextOf(expireTime));
    CWebFileManGetLinkXml reply;
    if (!call.ask(reply)) return call.end();

    call.setResult(reply.GetStatus());
    if (reply.GetStatus() != 0)
        return call.answer(reply.GetStatus(), "[WFMShare] WFMGetShareLink: Get error code(%d)",
                           reply.GetStatus());
    std::copy_n(reply.expireTime.c_str(), reply.expireTime.size() + 1, expireTimeOut);
    if (link == nullptr) return call.end();
    if (reply.linkURL.size() > *linkCapacity) {
        *linkCapacity = static_cast<uint32_t>(reply.linkURL.size() + 1);
        call.failAs(WFM_PARSE_XML_INSUFFICIENT_BUFFER, "WFM_PARSE_XML_INSUFFICIENT_BUFFER");
        return call.end();
    }
    // One as long as the capacity has no terminator, and that must stay.
    std::copy_n(reply.linkURL.c_str(), std::min<size_t>(reply.linkURL.size() + 1, *linkCapacity), link);
    return call.end();
}
