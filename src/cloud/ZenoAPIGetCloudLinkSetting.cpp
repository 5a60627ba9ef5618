#include "cloud/ZenoGetCloudLinkInfoJson.h"
#include "cloud/cloudcall.h"
#include "core/handover.h"

using namespace Lattice;

namespace {

void Take(const AddressList& addresses, wchar_t**& list, int32_t& count) {
    list = HandOverTexts(addresses.all());
    count = static_cast<int32_t>(addresses.all().size());
}

}  // namespace

uint32_t ZenoAPIGetCloudLinkSetting(const wchar_t* server, const wchar_t* agentName,
                                    const wchar_t* appVersion, const wchar_t* clientID,
                                    const wchar_t* accessToken, const wchar_t* deviceID, bool secure,
                                    uint32_t proxyMode, const wchar_t* proxyHost, const wchar_t* proxyUser,
                                    const wchar_t* proxyPassword, void* /*reserved*/,
                                    _CLOUD_LINK_INFORMATION* link) {
    static constexpr auto rules = CloudRules("[WFM] ZenoAPIGetCloudLinkSetting").withOutcomes(kWithNotFound);
    CloudCall call(rules, {server, agentName, appVersion, clientID, secure, proxyMode, proxyHost, proxyUser,
                           proxyPassword});
    if (!call.accepts(accessToken, deviceID, link)) return call.refuse();
    *link = {};

    call.getAt(L"/v1.1/device/%ls/network", deviceID);
    call.addTokenHeaders(accessToken);
    CZenoGetCloudLinkInfoJson reply;
    if (!call.ask(reply)) return call.end();

    link->nResultCode = reply.GetStatus();
    Take(reply.http.wan, link->lppWanIPs, link->nWanIPCount);
    Take(reply.http.lan, link->lppLanIPs, link->nLanIPCount);
    Take(reply.http.ddns, link->lppDdns, link->nDdnsCount);
    CopyTextCut(link->szCloudLinkID, reply.cloudLinkID);
    return call.end();
}
