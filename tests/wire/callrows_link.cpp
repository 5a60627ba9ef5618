#include "WebFileManShareAPI.h"
#include "callrows.h"

namespace {

uint32_t linkList(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    _WFM_SHARE_LINK_INFO record;
    _WFM_SHARE_LINK_INFO* list[] = {&record};
    int32_t start = 0;
    uint32_t count = 1;
    return withoutResultWord(
        WFMGetShareLinkList(context, server, port, L"", 20, nullptr, &start, &count, list), result);
}

uint32_t linkItemList(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    _WFM_SHARE_LINK_ITEM_INFO record;
    _WFM_SHARE_LINK_ITEM_INFO* list[] = {&record};
    uint32_t total = 0;
    uint32_t count = 1;
    return withoutResultWord(
        WFMGetShareLinkItemList(context, server, port, L"", L"", nullptr, L"ssid1", &total, &count, list),
        result);
}

uint32_t getLink(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    uint32_t capacity = 2048;
    wchar_t link[2048];
    wchar_t expireTime[256];
    return WFMGetShareLink(context, server, port, L"", 2, 1, 1, L"nas", L"", L"/home/a", L"", L"", L"", false,
                           nullptr, &capacity, link, expireTime, result);
}

uint32_t getAndCreateLink(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    _WFM_SHARE_LINK_RESULT information;
    information.nResult = static_cast<int32_t>(*result);
    const uint32_t status =
        WFMGetandCreateShareLink(context, server, port, L"", 1000, L"nas", nullptr, L"/home/a;", L"", L"",
                                 L"", L"", false, 1, false, &information);
    *result = static_cast<uint32_t>(information.nResult);
    return status;
}

uint32_t createLink(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WFMCreateShareLink(context, server, port, L"", 2, 1, 1, L"nas", 1, L"/home/a", L"", L"", L"",
                              false, L"1", L"a@b", L"1", L"", L"", nullptr, result);
}

uint32_t updateLink(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    uint32_t capacity = 260;
    wchar_t link[260];
    return WFMUpdateShareLink(context, server, port, L"", 2, 1, 1, 0, L"nas", L"", L"", false, false, false,
                              L"1", L"ssid1", L"", L"x", false, nullptr, &capacity, link, result);
}

uint32_t deleteLink(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WFMDeleteShareLink(context, server, port, L"", L"/home/a", L"", L"ssid1", nullptr, result);
}

uint32_t sendMail(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WFMSendShareLinkMail(context, server, port, L"", nullptr, 0, L"a@b", L"s", L"c", L"ssid1", L"",
                                result);
}

uint32_t sendMails(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WFMSendShareLinkMail2(context, server, port, L"", nullptr, 0, 2, 1, L"a@b", L"s", L"c", L"ssid1",
                                 L"", result);
}

/// Links are the web file manager's, whichever service the session speaks to.
CallRow linkRow(const std::string& name, decltype(CallRow::run) run) {
    CallRow row = spelledRow(name, std::move(run), "[WFMShare] " + name);
    row.oneService = true;
    return row;
}

}  // namespace

void addLinkRows(std::vector<CallRow>& rows) {
    rows.push_back(linkRow("WFMGetShareLinkList", linkList));

    CallRow row = linkRow("WFMGetShareLinkItemList", linkItemList);
    row.tooLarge = R"({"total":99999999999})";
    rows.push_back(row);

    row = linkRow("WFMGetShareLink", getLink);
    row.goodReply = R"({"success":"true","status":1})";
    row.proxyLine = "[WFMShare] WFMGetShareLink WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ";
    row.badReply = row.strangePage = row.redirect = {0, "[WFMShare] WFMGetShareLink: Get error code(-1)"};
    rows.push_back(row);

    rows.push_back(linkRow("WFMGetandCreateShareLink", getAndCreateLink));

    rows.push_back(linkRow("WFMCreateShareLink", createLink));

    row = linkRow("WFMUpdateShareLink", updateLink);
    row.timeoutMs = 120000;
    rows.push_back(row);

    row = linkRow("WFMDeleteShareLink", deleteLink);
    row.goodReply = R"({"status":0})";
    row.nonObjectIsUnderstood = true;
    rows.push_back(row);

    rows.push_back(linkRow("WFMSendShareLinkMail", sendMail));
    rows.push_back(linkRow("WFMSendShareLinkMail2", sendMails));
}
