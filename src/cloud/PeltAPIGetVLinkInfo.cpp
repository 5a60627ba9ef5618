#include "cloud/PeltGetNASInfoJson.h"
#include "cloud/peltrules.h"

using namespace Lattice;

uint32_t PeltAPIGetVLinkInfo(const wchar_t* server, const wchar_t* deviceID, const wchar_t* agentName,
                             const wchar_t* appVersion, const wchar_t* appID, const wchar_t* appSecret,
                             bool secure, uint32_t proxyMode, const wchar_t* proxyHost,
                             const wchar_t* proxyUser, const wchar_t* proxyPassword, void* /*reserved*/,
                             _CLOUD_VLINK_INFORMATION* link) {
    static constexpr auto rules = PeltRules("[WFM] PeltAPIGetVLinkInfo");
    CloudCall call(rules, {server, agentName, appVersion, appID, secure, proxyMode, proxyHost, proxyUser,
                           proxyPassword});
    if (!call.accepts(deviceID, appSecret, link)) return call.refuse();
    *link = {};

    call.getAt(L"/v1/services/vlink/%ls", deviceID);
    call.addChecksumHeaders(appSecret);
    CPeltGetNASInfoJson reply;
    if (!call.ask(reply)) return call.end();

    link->nReplyCode = reply.GetCloudAPIResponseCode();
    link->nHttpCode = reply.GetHttpCode();
    CopyTextCut(link->szActionTime, reply.GetactTime());
    CopyTextCut(link->szVLinkID, reply.GetVLinkId());
    CopyTextCut(link->szWANIP, reply.GetWANIP());
    CopyTextCut(link->szLANIPs, reply.GetLANIPs());
    CopyTextCut(link->szGatewayIP, reply.GetGatewayIP());
    CopyTextCut(link->szMessage, reply.GetMessage());
    // "Getway" must stay.
    call.debugLine(
        "[WFM] PeltAPIGetVLinkInfo VLinkID(%ls), LANIPs(%ls), GetwayIP(%ls), WANIP(%ls), Msg(%ls), "
        "ResponseCode(%d)",
        link->szVLinkID, link->szLANIPs, link->szGatewayIP, link->szWANIP, link->szMessage, link->nReplyCode);
    return call.end();
}
