#include "session/AuthLoginResultXml.h"
#include "session/logincall.h"
#include "session/logintimeout.h"
#include "session/password.h"

using namespace Lattice;

uint32_t WFMLoginStep2(const wchar_t* server, uint32_t port, const wchar_t* user, const wchar_t* password,
                       bool isAnswer, const wchar_t* code, bool secure, const wchar_t* agentName,
                       uint32_t serverNameCapacity, uint64_t /*reserved1*/, uint64_t /*reserved2*/,
                       const uint32_t* timeoutMs, wchar_t* serverName, bool* isAdmin, uint32_t* resultWord,
                       _WFM_AUTH_CONTEXT** context, void* reserved3) {
    static constexpr auto rules = LoginRules("[WFM] WFMLoginStep2");
    // Neither proxy nor forwarded-for go with this call.
    Call call(rules, Connection{server, port, secure, agentName});
    if (!call.accepts(user, password, context, isAdmin, Given{serverName}, serverNameCapacity, resultWord,
                      code, reserved3))
        return call.refuse();
    *isAdmin = false;
    call.begin(resultWord);

    // The code goes out raw, and that must stay.
    call.setTimeout(LoginTimeout(timeoutMs));
    call.postAt(isAnswer ? L"/cgi-bin/authLogin.cgi?security_answer=%ls&serviceKey=1&remme=%d"
                         : L"/cgi-bin/authLogin.cgi?security_code=%ls&serviceKey=1&remme=%d",
                code, 1);
    call.field("user", user);
    call.field("pwd", EncodedPassword(password).constData());

    AuthLoginResultXml reply;
    const int networkError = call.send();
    if (call.worker().http_status != kHttpOk) {
        call.failByHttp(networkError);
    } else if (call.understands(reply)) {
        call.setResult(reply.GetAuthStatus());
        if (reply.GetAuthStatus() != 0)
            call.setResult(reply.IsMaxTryFailed() ? kSecondStepNoTriesLeft : kSecondStepUnknown);
    }
    // The session keeps neither agent nor proxy.
    return FinishLogin(call, {reply.GetSid(), reply.GetServerName(), reply.GetIsAdmin() != 0},
                       Connection{server, port, secure}, {serverName, serverNameCapacity, isAdmin, context});
}
