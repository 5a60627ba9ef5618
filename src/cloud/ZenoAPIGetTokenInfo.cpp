#include "cloud/ZenoGetTokenInfoJson.h"
#include "cloud/tokencall.h"

using namespace Lattice;

uint32_t ZenoAPIGetTokenInfo(const wchar_t* server, const wchar_t* agentName, const wchar_t* accessToken,
                             const wchar_t* appVersion, const wchar_t* clientID, const wchar_t* /*tokenInfo*/,
                             bool secure, uint32_t proxyMode, const wchar_t* proxyHost,
                             const wchar_t* proxyUser, const wchar_t* proxyPassword, void* /*reserved*/,
                             _CLOUD_TOKEN_INFORMATION* token) {
    // One line for whatever fails.
    static constexpr auto rules = CloudRules("[WFM] ZenoAPIGetTokenInfo")
                                      .withReason("{call} FAIL(httpStatusCode={http})")
                                      .withSummary("");
    CloudCall call(rules, {server, agentName, appVersion, clientID, secure, proxyMode, proxyHost, proxyUser,
                           proxyPassword});
    if (!call.accepts(accessToken, token)) return call.refuse();
    *token = {};

    call.getAt(L"/oauth/tokeninfo?access_token=%ls", accessToken);
    call.addTokenHeaders(accessToken);
    CZenoGetTokenInfoJson reply;
    if (!AskForToken(call, reply, *token)) return call.end();
    call.debugLine("[WFM] ZenoAPIGetTokenInfo: AccessToken(%ls), Msg(%ls)", accessToken,
                   token->error_description);
    return call.end();
}
