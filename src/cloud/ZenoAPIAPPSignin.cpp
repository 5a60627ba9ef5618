#include "cloud/ZenoAPIAPPSigninJson.h"
#include "cloud/tokencall.h"

using namespace Lattice;

uint32_t ZenoAPIAPPSignin(const wchar_t* server, const wchar_t* agentName, const wchar_t* appVersion,
                          const wchar_t* clientID, const wchar_t* clientSecret, bool secure,
                          uint32_t proxyMode, const wchar_t* proxyHost, const wchar_t* proxyUser,
                          const wchar_t* proxyPassword, void* /*reserved*/, _CLOUD_TOKEN_INFORMATION* token) {
    static constexpr auto rules = CloudRules("[WFM] ZenoAPIAPPSignin").withNotUnderstood(kWithoutColon);
    CloudCall call(rules, {server, agentName, appVersion, clientID, secure, proxyMode, proxyHost, proxyUser,
                           proxyPassword});
    if (!call.accepts(clientSecret, token)) return call.refuse();
    *token = {};

    call.postAt(L"/oauth/token");
    call.addAppHeaders();
    call.field("grant_type", "client_credentials");
    call.field("client_id", clientID);
    call.field("client_secret", clientSecret);
    CZenoAPIAPPSigninJson reply;
    if (!AskForToken(call, reply, *token)) return call.end();
    call.debugLine("[WFM] ZenoAPIAPPSignin: AccessToken(%ls), Msg(%ls)", token->access_token,
                   token->error_description);
    return call.end();
}
