#include <algorithm>

#include "session/SecurityQuestionResultXml.h"
#include "session/logincall.h"
#include "session/logintimeout.h"
#include "session/password.h"

using namespace Lattice;

uint32_t WFM2SVGetQuestion(const wchar_t* server, uint32_t port, const wchar_t* user, const wchar_t* password,
                           const wchar_t* language, bool secure, uint32_t capacity, wchar_t* question) {
    static constexpr auto rules = LoginRules("[WFM] WFM2SVGetQuestion").withTimeout(kLoginTimeoutMs);
    Call call(rules, Connection{server, port, secure});
    if (!call.accepts(user, password, language, capacity, Given{question})) return call.refuse();

    call.postAt(L"/cgi-bin/authLogin.cgi?get_question=1&serviceKey=1&q_lang=%ls", language);
    call.field("user", user);
    call.field("pwd", EncodedPassword(password).constData());

    CSecurityQuestionResultXml reply;
    const int networkError = call.send();
    if (call.worker().http_status != kHttpOk) {
        call.failByHttp(networkError);
    } else if (call.understands(reply)) {
        // A question as long as the capacity has no terminator, and that must stay.
        const std::wstring text = FromQString(reply.getQuestion());
        const size_t taken = std::min<size_t>(text.size() + 1, capacity);
        std::copy_n(text.c_str(), taken, question);
        std::fill(question + taken, question + capacity, L'\0');
    }
    return call.end();
}
