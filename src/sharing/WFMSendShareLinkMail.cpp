#include "sharing/WebFileManCreateLinkXml.h"
#include "sharing/linkform.h"
#include "sharing/linkplace.h"

using namespace Lattice;

uint32_t WFMSendShareLinkMail(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                              const wchar_t* slaveID, void* /*reserved*/, uint32_t includeAccessCode,
                              const wchar_t* addressee, const wchar_t* subject, const wchar_t* content,
                              const wchar_t* ssid, const wchar_t* mailPassword, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFMShare] WFMSendShareLinkMail").withEndpoint(kLinkPlace);
    Call call(rules, context, server, port);
    if (!call.accepts(addressee, subject, content, ssid, resultWord)) return call.refuse();
    call.begin(resultWord);

    call.route(slaveID);
    call.post(L"func=send_share_mail&sid=%ls", call.sid());
    call.field("share_ssid", ssid);
    call.field("addressee", addressee);
    call.field("subject", subject);
    call.field("content", content);
    call.field("include_access_code", TrueOrFalse(includeAccessCode != 0));
    if (includeAccessCode != 0) call.field("mail_content_pwd", TextOf(mailPassword));
    CWebFileManCreateLinkXml reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(reply.GetStatus(), "[WFMShare] WFMSendShareLinkMail: Get error code(%d)",
                           reply.GetStatus());
    return call.answer(0);
}
