#include "lib_link.h"

#include <stdexcept>

#include "support/process.h"

namespace e2e {

namespace {

LinkRow rowOf(const _WFM_SHARE_LINK_INFO& record) {
    LinkRow row;
    row.ssid = record.szSsid;
    row.file = utf8(record.szFileName);
    row.url = utf8(record.szDownloadLink);
    row.creator = utf8(record.szCreator);
    row.name = utf8(record.szLinkName);
    row.isFolder = record.bIsFolder;
    row.isMultiple = record.bMultiple;
    return row;
}

}  // namespace

Numbers getLink(const Client& client, const LinkWish& wish, LinkText& link, const std::wstring& addressee) {
    std::vector<wchar_t> url(2048, L'\0'), expires(256, L'\0');
    link.capacity = wish.capacity;
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMGetShareLink(client.context(), kServer, client.port(), wish.node.c_str(), wish.download,
                               wish.duration, wish.network, wish.host.c_str(), addressee.c_str(),
                               wish.path.c_str(), wish.code.c_str(), wish.datetime.c_str(),
                               wish.period.c_str(), wish.secure, nullptr, &link.capacity, url.data(),
                               expires.data(), result);
    });
    link.url = utf8(url.data());
    link.expires = utf8(expires.data());
    return numbers;
}

Numbers createLink(const Client& client, const LinkWish& wish, const LinkMail& mail) {
    return numbersOf([&](std::uint32_t* result) {
        return WFMCreateShareLink(client.context(), kServer, client.port(), wish.node.c_str(), wish.download,
                                  wish.duration, wish.network, wish.host.c_str(), 1, wish.path.c_str(),
                                  wish.code.c_str(), mail.code.c_str(), wish.datetime.c_str(), wish.secure,
                                  wish.period.c_str(), mail.addressee.c_str(), L"2026/05/04",
                                  mail.subject.c_str(), mail.content.c_str(), nullptr, result);
    });
}

Numbers selectLink(const Client& client, const Selection& selection, _WFM_SHARE_LINK_RESULT& link) {
    const LinkWish& wish = selection.wish;
    const std::uint32_t status = WFMGetandCreateShareLink(
        client.context(), kServer, client.port(), wish.node.c_str(), 0, wish.host.c_str(), nullptr,
        selection.files.c_str(), wish.code.c_str(), wish.period.c_str(), wish.datetime.c_str(),
        selection.name.c_str(), wish.secure, wish.duration, selection.isNew, &link);
    return {status, link.nResult};
}

Numbers changeLink(const Client& client, const LinkChange& change, LinkText& link) {
    const LinkWish& wish = change.wish;
    std::vector<wchar_t> url(2048, L'\0');
    link.capacity = wish.capacity;
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMUpdateShareLink(
            client.context(), kServer, client.port(), wish.node.c_str(), wish.download, wish.duration,
            wish.network, change.hostPort, wish.host.c_str(), wish.code.c_str(), wish.datetime.c_str(),
            wish.secure, false, change.hostForm, wish.period.c_str(), change.ssids.c_str(),
            change.name.c_str(), L"-", change.nameOnly, nullptr, &link.capacity, url.data(), result);
    });
    link.url = utf8(url.data());
    return numbers;
}

Numbers deleteLink(const Client& client, const std::wstring& path, const std::wstring& url,
                   const std::wstring& ssids, const std::wstring& node) {
    return numbersOf([&](std::uint32_t* result) {
        return WFMDeleteShareLink(client.context(), kServer, client.port(), node.c_str(), path.c_str(),
                                  url.c_str(), ssids.c_str(), nullptr, result);
    });
}

std::uint32_t ask(const Client& client, Links& question) {
    OwnRecords<_WFM_SHARE_LINK_INFO> records(question.capacity);
    std::uint32_t count = question.capacity;
    const std::uint32_t status =
        WFMGetShareLinkList(client.context(), kServer, client.port(), question.node.c_str(), question.limit,
                            nullptr, &question.start, &count, records.list());
    question.rows.clear();
    for (std::uint32_t i = 0; status == 0 && i < count; ++i) question.rows.push_back(rowOf(records[i]));
    return status;
}

std::wstring onlyLink(const Client& client, const std::wstring& node) {
    Links links;
    links.node = node;
    EXPECT_EQ(ask(client, links), 0u);
    EXPECT_EQ(links.rows.size(), 1u);
    return links.rows.empty() ? std::wstring() : links.rows[0].ssid;
}

std::uint32_t ask(const Client& client, LinkItems& question) {
    OwnRecords<_WFM_SHARE_LINK_ITEM_INFO> records(question.capacity);
    question.count = question.capacity;
    const std::uint32_t status = WFMGetShareLinkItemList(
        client.context(), kServer, client.port(), question.path.c_str(), question.node.c_str(), nullptr,
        question.ssid.c_str(), &question.total, &question.count, records.list());
    question.names.clear();
    for (std::uint32_t i = 0; status == 0 && i < question.count; ++i)
        question.names.push_back(utf8(records[i].szFileName) + (records[i].bIsFolder ? "/" : ""));
    return status;
}

Numbers mailLink(const Client& client, const std::wstring& ssid, const LinkMail& mail,
                 const std::wstring& node) {
    return numbersOf([&](std::uint32_t* result) {
        return WFMSendShareLinkMail(client.context(), kServer, client.port(), node.c_str(), nullptr,
                                    mail.tellCode, mail.addressee.c_str(), mail.subject.c_str(),
                                    mail.content.c_str(), ssid.c_str(), mail.code.c_str(), result);
    });
}

Numbers mailLinks(const Client& client, const std::wstring& ssids, const LinkMail& mail,
                  std::uint32_t download, std::uint32_t network) {
    return numbersOf([&](std::uint32_t* result) {
        return WFMSendShareLinkMail2(client.context(), kServer, client.port(), nullptr, nullptr,
                                     mail.tellCode, download, network, mail.addressee.c_str(),
                                     mail.subject.c_str(), mail.content.c_str(), ssids.c_str(),
                                     mail.code.c_str(), result);
    });
}

Visit visit(const std::string& url, const std::string& query) {
    const std::string curl = findProgram("curl");
    if (curl.empty()) throw std::runtime_error("curl isn't installed");
    const ProcessResult result = runProcess(
        curl, {"--silent", "--insecure", "--noproxy", "*", "--write-out", "%{http_code}", url + query});
    if (result.exitCode != 0) return {};
    const std::size_t end = result.out.size() - 3;
    return {std::stoi(result.out.substr(end)), result.out.substr(0, end)};
}

}  // namespace e2e
