#include "cloud/ZenoAPIGetPublicIPJson.h"
#include "cloud/cloudcall.h"

using namespace Lattice;

namespace {

constexpr size_t kAddressCapacity = 260;

}  // namespace

uint32_t ZenoAPIGetPublicIP(const wchar_t* server, const wchar_t* agentName, const wchar_t* appVersion,
                            const wchar_t* clientID, const wchar_t* accessToken, bool secure,
                            uint32_t proxyMode, const wchar_t* proxyHost, const wchar_t* proxyUser,
                            const wchar_t* proxyPassword, void* /*reserved*/, wchar_t* publicIP) {
    static constexpr auto rules = CloudRules("[WFM] ZenoAPIGetPublicIP");
    CloudCall call(rules, {server, agentName, appVersion, clientID, secure, proxyMode, proxyHost, proxyUser,
                           proxyPassword});
    if (!call.accepts(accessToken, Given{publicIP})) return call.refuse();
    *publicIP = L'\0';

    call.getAt(L"/v1.1/utility/geo/search");
    call.addTokenHeaders(accessToken);
    CZenoAPIGetPublicIPJson reply;
    if (!call.ask(reply)) return call.end();

    CopyTextCut(publicIP, kAddressCapacity, reply.publicIP);
    call.debugLine("[WFM] ZenoAPIGetPublicIP PublicIP(%ls)", publicIP);
    return call.end();
}
