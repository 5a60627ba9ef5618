#include "session/WebFileManLogin.h"
#include "session/logincall.h"
#include "session/logintimeout.h"
#include "session/password.h"

using namespace Lattice;

namespace {

/// A refused login, or one that wants a second step.
int64_t RefusalOf(const Call& call, const CWebFileManLogin& reply) {
    const int form = reply.IsNeed2StepVerification();
    if (form <= 0) {
        call.line("[WFM] WFMLogin: AuthStatus(%d)", reply.GetAuthResult());
        return reply.GetAuthResult();
    }
    if (reply.IsMaxTryFailed()) return kSecondStepNoTriesLeft;
    switch (form) {
        case 1:
            return kSecondStepCode;
        case 2:
            return kSecondStepSecondForm;
        case 3:
            return kSecondStepThirdForm;
        default:
            return kSecondStepUnknown;
    }
}

}  // namespace

uint32_t WFMLogin(const wchar_t* server, uint32_t port, const wchar_t* user, const wchar_t* password,
                  bool secure, const wchar_t* computerName, const wchar_t* uid, const wchar_t* agentName,
                  uint32_t deviceType, uint32_t serverNameCapacity, uint32_t proxyMode,
                  const wchar_t* proxyHost, const wchar_t* proxyUser, const wchar_t* proxyPassword,
                  const wchar_t* forwardedFor, const wchar_t* clientVersion, uint64_t /*reserved*/,
                  const uint32_t* timeoutMs, wchar_t* serverName, bool* isAdmin, uint32_t* resultWord,
                  _WFM_AUTH_CONTEXT** context) {
    static constexpr auto rules = LoginRules("[WFM] WFMLogin");
    Connection connection{server,    port,      secure,        agentName,   proxyMode,
                          proxyHost, proxyUser, proxyPassword, forwardedFor};
    Call call(rules, connection);
    if (!call.accepts(user, Given{password}, context, isAdmin, Given{serverName}, serverNameCapacity,
                      resultWord))
        return call.refuse();
    *isAdmin = false;
    call.begin(resultWord);

    call.setTimeout(LoginTimeout(timeoutMs));
    call.postAt(L"/cgi-bin/filemanager/wfm2Login.cgi");
    call.field("user", user);
    call.field("pwd", EncodedPassword(password).constData());
    if (IsGiven(computerName) && IsGiven(uid)) {
        call.field("nubo_user", "1");
        call.field("nubo_computer", computerName);
        call.field("uid", uid);
        call.field("nubo_device_type", deviceType);
        call.field("Torvi_client_version", TextOf(clientVersion));
    }

    // The HTTP status decides, not the network error.
    CWebFileManLogin reply;
    const int networkError = call.send();
    if (call.worker().http_status != kHttpOk) {
        call.failByHttp(networkError);
    } else if (call.understands(reply)) {
        call.setResult(reply.GetAuthResult());
        if (reply.GetAuthResult() != 0) call.setResult(RefusalOf(call, reply));
    }
    connection.forwardedFor = nullptr;  // it isn't kept
    return FinishLogin(call, {reply.GetSid(), reply.GetServerName(), reply.GetIsAdmin()}, connection,
                       {serverName, serverNameCapacity, isAdmin, context});
}
