#include "cloud/cloudcall.h"

using namespace Lattice;

uint32_t ZenoAPIAPPSignOut(const wchar_t* server, const wchar_t* accessToken, const wchar_t* agentName,
                           const wchar_t* appVersion, const wchar_t* clientID, bool secure,
                           uint32_t proxyMode, const wchar_t* proxyHost, const wchar_t* proxyUser,
                           const wchar_t* proxyPassword) {
    static constexpr auto rules =
        CloudRules("[WFM] ZenoAPIAPPSignOut").withSummary("{call} failed dwStatus({status})");
    CloudCall call(rules, {server, agentName, appVersion, clientID, secure, proxyMode, proxyHost, proxyUser,
                           proxyPassword});
    if (!call.accepts(accessToken)) return call.refuse();

    call.postAt(L"/oauth/signout");
    call.addTokenHeaders(accessToken);
    call.field("access_token", accessToken);
    if (!call.exchange()) return call.end();
    call.debugLine("[WFM] ZenoAPIAPPSignOut: AccessToken(%ls)", accessToken);
    return call.end();
}
