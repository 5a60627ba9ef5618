#include "WebFileManShareAPI.h"
#include "config/AuthConfigPasswordJson.h"
#include "core/callframe.h"
#include "session/password.h"

using namespace Lattice;

uint32_t WFMAuthConfigPassword(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                               const wchar_t* password, void* /*reserved*/, uint32_t* resultWord,
                               uint32_t* authResult) {
    static constexpr auto rules = CallRules("[WFMShare] WFMAuthConfigPassword").withOutcomes(kShareOutcomes);
    Call call(rules, context, server, port);
    if (!call.accepts(password, resultWord, authResult)) return call.refuse();
    call.begin(resultWord);
    *authResult = static_cast<uint32_t>(-1);

    // The server takes "+", "/" and "=" as they are.
    call.get(L"func=nubo_auth_config_password&sid=%ls&password=%ls", call.sid(),
             FromQString(EncodedPassword(password)));
    CAuthConfigPasswordJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(reply.GetStatus(), "[WFMShare] WFMAuthConfigPassword: get error status(%d)",
                           reply.GetStatus());
    *authResult = static_cast<uint32_t>(reply.authResult);
    return call.answer(0);
}
