#include "session/SendEmergencyMailResultXml.h"
#include "session/logincall.h"
#include "session/logintimeout.h"
#include "session/password.h"

using namespace Lattice;

uint32_t WFM2SVSendEmail(const wchar_t* server, uint32_t port, const wchar_t* user, const wchar_t* password,
                         bool secure) {
    static constexpr auto rules = LoginRules("[WFM] WFM2SVSendEmail").withTimeout(kLoginTimeoutMs);
    Call call(rules, Connection{server, port, secure});
    if (!call.accepts(user, password)) return call.refuse();

    // The doubled "&" must stay.
    call.postAt(L"/cgi-bin/authLogin.cgi?send_mail=1&&serviceKey=1");
    call.field("user", user);
    call.field("pwd", EncodedPassword(password).constData());
    if (!call.exchange()) return call.end();

    // A mail that the server refused isn't reported.
    CSendEmergencyMailResultXml reply;
    call.parse(reply);
    return call.end();
}
