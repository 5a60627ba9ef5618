#include "files/RouteTo.h"
#include "sharing/WebFileManCreateLinkXml.h"
#include "sharing/linkform.h"
#include "sharing/linkplace.h"

using namespace Lattice;

uint32_t WFMCreateShareLink(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                            const wchar_t* slaveID, uint32_t downloadType, uint32_t durationType,
                            uint32_t networkType, const wchar_t* hostname, uint64_t fileTotal,
                            const wchar_t* path, const wchar_t* accessCode, const wchar_t* mailPassword,
                            const wchar_t* datetime, bool secureLink, const wchar_t* expireTime,
                            const wchar_t* addressee, const wchar_t* mailDate, const wchar_t* subject,
                            const wchar_t* content, void* /*reserved*/, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFMShare] WFMCreateShareLink").withEndpoint(kLinkPlace);
    Call call(rules, context, server, port);
    const LinkTypes types{downloadType, durationType, networkType};
    if (!call.accepts(hostname, path, expireTime, addressee, mailDate, resultWord) || !types.inRange())
        return call.refuse();
    call.begin(resultWord);
    const SplitPath given = SplitAtLastSlash(path);
    if (given.parent.empty() || given.name.empty()) {
        call.failNotUnderstood();
        return call.end();
    }

    const bool mails = IsGiven(subject) && IsGiven(content);
    const RemotePath file = RouteTo(call, slaveID, given.parent, given.name);
    call.post(L"func=share_file&sid=%ls", call.sid());
    call.field("download_type", TypeText(gDownloadLinkTypes, downloadType));
    if (mails) {
        call.field("addressee", addressee);
        call.field("subject", subject);
        call.field("content", content);
    }
    AddDuration(call, durationType, datetime);
    call.field("link_url", "");
    call.field("file_name", file.name);
    call.field("file_total", std::to_wstring(fileTotal));
    AddAccess(call, accessCode);
    call.field("hostname", hostname);
    call.field("ssl", TrueOrFalse(secureLink));
    call.field("include_access_code", TrueOrFalse(IsGiven(accessCode)));
    if (mails && IsGiven(mailPassword)) call.field("mail_content_pwd", mailPassword);
    call.field("path", file.parent);
    call.field("network_type", TypeText(gNetworkTypes, networkType));
    call.field("mail_content_date", mailDate);
    call.field("expire_time", expireTime);
    CWebFileManCreateLinkXml reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(reply.GetStatus(), "[WFMShare] WFMCreateShareLink: Get error code(%d)",
                           reply.GetStatus());
    return call.answer(0);
}
