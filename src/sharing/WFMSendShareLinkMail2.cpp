#include "sharing/WebFileManCreateLinkXml.h"
#include "sharing/linkform.h"
#include "sharing/linkplace.h"

using namespace Lattice;

uint32_t WFMSendShareLinkMail2(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                               const wchar_t* slaveID, void* /*reserved*/, uint32_t includeAccessCode,
                               uint32_t downloadType, uint32_t networkType, const wchar_t* addressee,
                               const wchar_t* subject, const wchar_t* content, const wchar_t* ssids,
                               const wchar_t* mailPassword, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFMShare] WFMSendShareLinkMail2").withEndpoint(kLinkPlace);
    Call call(rules, context, server, port);
    const LinkTypes types{downloadType, 1, networkType};
    if (!call.accepts(addressee, subject, content, ssids, resultWord) || !types.inRange())
        return call.refuse();
    call.begin(resultWord);

    const std::vector<std::wstring> items = LinkItems(ssids);
    call.route(slaveID);
    call.post(L"func=share_file&sid=%ls", call.sid());
    call.field("download_type", TypeText(gDownloadLinkTypes, downloadType));
    call.field("addressee", addressee);
    call.field("subject", subject);
    call.field("content", content);
    for (const std::wstring& ssid : items) call.field("ssids", ssid);
    call.field("file_total", static_cast<int64_t>(items.size()));
    call.field("network_type", TypeText(gNetworkTypes, networkType));
    call.field("include_access_code", TrueOrFalse(includeAccessCode != 0));
    call.field("access_enabled", TrueOrFalse(includeAccessCode != 0));
    if (includeAccessCode != 0) call.field("mail_content_pwd", TextOf(mailPassword));
    CWebFileManCreateLinkXml reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(reply.GetStatus(), "[WFMShare] WFMSendShareLinkMail2: Get error code(%d)",
                           reply.GetStatus());
    return call.answer(0);
}
