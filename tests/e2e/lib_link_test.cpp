#include "lib_link.h"

#include <algorithm>

#include "lib_sharing.h"

using namespace e2e;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

constexpr Numbers kRefused{0, -1};
constexpr Numbers kUnasked{8, 0xABCD};
const char* const kStrange = "Büro & 書類+%2F.txt";

/// anna links files of her home.
class LibLink : public LibRoad {
protected:
    LibLink() {
        put("a.txt", "content of a");
        put("b.txt", "content of b");
        put(kStrange, "content of a strange one");
        put("folder/c.txt", "content of c");
    }
    LinkWish wish(const std::string& path = "/home/a.txt") const {
        LinkWish wish;
        wish.path = wide(path);
        wish.secure = GetParam().tls;
        return wish;
    }
    LinkText link(const LinkWish& wish) const {
        LinkText link;
        EXPECT_EQ(getLink(client, wish, link), kDone);
        return link;
    }
    std::string address() const {
        return (GetParam().tls ? "https" : "http") + std::string("://127.0.0.1:") +
               std::to_string(client.port()) + "/share.cgi?ssid=";
    }
    std::vector<LinkRow> rows() const {
        Links links;
        EXPECT_EQ(ask(client, links), 0u);
        return links.rows;
    }
    /// The id of the link of that name.
    std::wstring ssidOf(const std::string& name) const {
        for (const LinkRow& row : rows()) {
            if (row.name == name) return row.ssid;
        }
        ADD_FAILURE() << "no link " << name;
        return {};
    }

    Client ben{nas, GetParam(), L"ben", L"hidden"};
};

class MailFolder {
protected:
    int mailCount() const {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(mails.path()))
            count += entry.path().extension() == ".eml";
        return count;
    }
    TempDir mails;
};

class LibLinkMail : protected MailFolder, public LibRoad {
protected:
    LibLinkMail() : LibRoad(withArguments({"--mail-dir", mails.string()})) {
        put("a.txt", "content of a");
        put("b.txt", "content of b");
    }
};

}  // namespace

TEST_P(LibLink, ALinkOpensForAnybodyAndStaysTheSame) {
    const LinkText made = link(wish());
    EXPECT_EQ(made.url, address() + utf8(onlyLink(client)));
    EXPECT_EQ(made.expires, "");
    EXPECT_EQ(made.capacity, 2047u);
    EXPECT_EQ(visit(made.url).status, 200);
    EXPECT_EQ(visit(made.url).body, "content of a");
    EXPECT_EQ(link(wish()).url, made.url);
    EXPECT_EQ(rows().size(), 1u);
    EXPECT_EQ(visit(address() + "unknown").status, 404);
    std::filesystem::remove(onDisk("a.txt"));
    EXPECT_EQ(visit(made.url).status, 404);
    LinkText none;
    EXPECT_EQ(getLink(client, wish(), none), kRefused);
}

TEST_P(LibLink, ANameOfAnyScriptIsLinked) {
    const LinkText made = link(wish("/home/" + std::string(kStrange)));
    EXPECT_EQ(visit(made.url).body, "content of a strange one");
    ASSERT_EQ(rows().size(), 1u);
    EXPECT_EQ(rows()[0].file, kStrange);
    EXPECT_EQ(rows()[0].name, kStrange);
    LinkItems items{ssidOf(kStrange)};
    EXPECT_EQ(ask(client, items), 0u);
    EXPECT_THAT(items.names, ElementsAre(kStrange));
}

TEST_P(LibLink, WithoutItsCodeALinkStaysShut) {
    LinkWish coded = wish();
    coded.code = L"sesame & co";
    const LinkText made = link(coded);
    EXPECT_EQ(visit(made.url).status, 403);
    EXPECT_EQ(visit(made.url, "&access_code=sesame").status, 403);
    EXPECT_THAT(visit(made.url).body, Not(HasSubstr("content of")));
    EXPECT_EQ(visit(made.url, "&access_code=sesame%20%26%20co").body, "content of a");
}

TEST_P(LibLink, ALinkEndsWhenItsTimeIsOver) {
    LinkWish past = wish(), later = wish("/home/b.txt"), hours = wish("/home/folder/c.txt");
    past.duration = later.duration = kUntil;
    past.datetime = L"2001/02/03 04:05";
    later.datetime = L"2101/02/03 04:05";
    hours.duration = kFor;
    hours.period = L"0";
    EXPECT_EQ(visit(link(past).url).status, 410);
    EXPECT_EQ(visit(link(hours).url).status, 410);
    const LinkText open = link(later);
    EXPECT_EQ(visit(open.url).body, "content of b");
    EXPECT_EQ(open.expires, "2101-02-03T04:05");
    hours.period = L"24";
    EXPECT_EQ(visit(link(hours).url).status, 200);
    EXPECT_EQ(createLink(client, past), (Numbers{0, 7}));
}

TEST_P(LibLink, AUrlThatDoesntFitIsToldWithTheRoomThatItNeeds) {
    LinkWish narrow = wish();
    const std::string url = link(narrow).url;
    narrow.capacity = static_cast<std::uint32_t>(url.size()) - 1;
    LinkText link;
    EXPECT_EQ(getLink(client, narrow, link), (Numbers{9, 0}));
    EXPECT_EQ(link.url, "");
    EXPECT_EQ(link.capacity, url.size() + 1);
    // As long as the capacity it fits.
    narrow.capacity = static_cast<std::uint32_t>(url.size());
    EXPECT_EQ(getLink(client, narrow, link), kDone);
    EXPECT_EQ(link.url, url);
    // But not for a change.
    LinkChange change{onlyLink(client), narrow};
    EXPECT_EQ(changeLink(client, change, link), (Numbers{7, 0}));
    EXPECT_EQ(link.capacity, url.size() + 1);
    change.wish.capacity = link.capacity;
    EXPECT_EQ(changeLink(client, change, link), kDone);
    EXPECT_EQ(link.url, url);
}

TEST_P(LibLink, ASelectionIsOneLinkWithSeveralItems) {
    Selection selection{L"/home/a.txt;/home/b.txt;/home/folder;", wish()};
    selection.wish.duration = kUntil;
    selection.wish.datetime = L"2101/02/03 04:05";
    _WFM_SHARE_LINK_RESULT made;
    EXPECT_EQ(selectLink(client, selection, made), kDone);
    EXPECT_EQ(made.nMultiple, 1);
    EXPECT_STREQ(made.szLinkName, L"a.txt");
    EXPECT_STREQ(made.szExpireTime, L"2101/02/03 04:05");
    EXPECT_STREQ(made.szSlaveID, L"");
    EXPECT_EQ(utf8(made.szLinkURL), address() + utf8(made.szSsid));
    LinkItems items{made.szSsid};
    EXPECT_EQ(ask(client, items), 0u);
    EXPECT_EQ(items.total, 3u);
    EXPECT_THAT(items.names, ElementsAre("a.txt", "b.txt", "folder/"));
    items.capacity = 2;
    EXPECT_EQ(ask(client, items), 7u);
    EXPECT_EQ(items.total, 3u);
    EXPECT_EQ(items.count, 0u);
    const std::string url = utf8(made.szLinkURL);
    EXPECT_EQ(visit(url, "&file=b.txt").body, "content of b");
    EXPECT_EQ(visit(url, "&file=" + std::string("c.txt")).status, 404);
    EXPECT_THAT(visit(url).body, HasSubstr("\"total\":3"));
    ASSERT_EQ(rows().size(), 1u);
    EXPECT_TRUE(rows()[0].isMultiple);

    _WFM_SHARE_LINK_RESULT again;
    EXPECT_EQ(selectLink(client, selection, again), kDone);
    EXPECT_STREQ(again.szSsid, made.szSsid);
    Selection one{L"/home/folder;", wish()};
    EXPECT_EQ(selectLink(client, one, again), kDone);
    EXPECT_EQ(again.nMultiple, 0);
    EXPECT_STRNE(again.szSsid, made.szSsid);
    Selection none{L"/home/none;", wish()};
    EXPECT_EQ(selectLink(client, none, again), (Numbers{0, -4}));
    none.files = L"a.txt;";
    EXPECT_EQ(selectLink(client, none, again), (Numbers{8, -1}));
}

TEST_P(LibLink, AnItemListNeedsNoSessionAndNoCode) {
    LinkWish coded = wish();
    coded.code = L"sesame";
    link(coded);
    LinkItems items{onlyLink(client)};
    nas.expireSessions();
    EXPECT_EQ(ask(ben, items), 0u);
    EXPECT_THAT(items.names, ElementsAre("a.txt"));
    items.ssid = L"unknown";
    EXPECT_EQ(ask(ben, items), 0u);
    EXPECT_EQ(items.total, 0u);
    EXPECT_THAT(items.names, IsEmpty());
}

TEST_P(LibLink, LinksAreListedByNamePageByPage) {
    for (const char* path : {"/home/folder", "/home/b.txt", "/home/a.txt"}) link(wish(path));
    LinkMail unsent;
    unsent.subject.clear();
    EXPECT_EQ(createLink(client, wish(), unsent), kDone);
    std::vector<std::string> files;
    for (const LinkRow& row : rows()) {
        files.push_back(row.file + (row.isFolder ? "/" : ""));
        EXPECT_EQ(row.creator, "anna");
        EXPECT_EQ(row.name, row.file);
        EXPECT_EQ(row.url, address() + utf8(row.ssid));
        EXPECT_FALSE(row.isMultiple);
    }
    EXPECT_THAT(files, ElementsAre("a.txt", "a.txt", "b.txt", "folder/"));
    Links page;
    page.limit = 2;
    page.start = 2;
    EXPECT_EQ(ask(client, page), 0u);
    EXPECT_EQ(page.start, 4);
    ASSERT_EQ(page.rows.size(), 2u);
    EXPECT_EQ(page.rows[0].file, "b.txt");
    page.start = 0;
    page.capacity = 1;
    EXPECT_EQ(ask(client, page), 7u);
    EXPECT_EQ(page.start, 4);
    Links none;
    EXPECT_EQ(ask(ben, none), 0u);
    EXPECT_EQ(none.start, 0);
    EXPECT_THAT(none.rows, IsEmpty());
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibLink, AChangeGivesALinkACodeAnEndAndAName) {
    const std::string url = link(wish()).url;
    LinkChange change{onlyLink(client), wish()};
    change.wish.code = L"sesame";
    change.name = wide(kStrange);
    LinkText changed;
    EXPECT_EQ(changeLink(client, change, changed), kDone);
    EXPECT_EQ(changed.url, url);
    EXPECT_EQ(visit(url).status, 403);
    EXPECT_EQ(visit(url, "&access_code=sesame").body, "content of a");
    EXPECT_EQ(rows()[0].name, kStrange);

    change.hostForm = true;
    change.hostPort = client.port();
    change.wish.host = L"localhost";
    change.name.clear();
    EXPECT_EQ(changeLink(client, change, changed), kDone);
    EXPECT_THAT(changed.url, HasSubstr("://localhost:" + std::to_string(client.port()) + "/share.cgi?ssid="));
    EXPECT_EQ(rows()[0].url, changed.url);
    EXPECT_EQ(rows()[0].name, kStrange);

    LinkChange name;
    name.ssids = change.ssids;
    name.nameOnly = true;
    name.name = L"Letters";
    EXPECT_EQ(changeLink(client, name, changed), kDone);
    EXPECT_EQ(rows()[0].name, "Letters");
    EXPECT_EQ(visit(url).status, 403);

    change.wish.duration = kUntil;
    change.wish.datetime = L"2001/02/03 04:05";
    EXPECT_EQ(changeLink(client, change, changed), kDone);
    EXPECT_EQ(visit(url, "&access_code=sesame").status, 410);
    EXPECT_EQ(changeLink(ben, change, changed), kRefused);
}

TEST_P(LibLink, LinksGoByTheirIdsOrOneByItsAddress) {
    const std::string a = link(wish()).url, b = link(wish("/home/b.txt")).url;
    const std::string c = link(wish("/home/folder/c.txt")).url;
    const std::wstring ids = ssidOf("a.txt") + L";" + ssidOf("b.txt");
    EXPECT_EQ(deleteLink(ben, L"/home/a.txt", L"", ids), kRefused);
    EXPECT_EQ(deleteLink(client, L"/home/a.txt", L"", L""), kUnasked);
    EXPECT_EQ(visit(a).status, 200);
    EXPECT_EQ(deleteLink(client, L"/home/a.txt", L"", ids), kDone);
    EXPECT_EQ(visit(a).status, 404);
    EXPECT_EQ(visit(b).status, 404);
    EXPECT_EQ(visit(c).status, 200);
    EXPECT_EQ(deleteLink(client, L"/home/folder/c.txt", wide(c)), kDone);
    EXPECT_EQ(visit(c).status, 404);
    EXPECT_THAT(rows(), IsEmpty());
    EXPECT_EQ(deleteLink(client, L"/home/folder/c.txt", wide(c)), kRefused);
}

TEST_P(LibLink, WhatCantBeALinkIsRefusedBeforeItIsSent) {
    nas.forgetRequests();
    LinkText none;
    LinkWish wrong = wish();
    wrong.download = 3;
    EXPECT_EQ(getLink(client, wrong, none), kUnasked);
    EXPECT_EQ(createLink(client, wrong), kUnasked);
    EXPECT_EQ(mailLinks(client, L"x", {}, 0), kUnasked);
    EXPECT_EQ(mailLinks(client, L"x", {}, kForMail, 3), kUnasked);
    EXPECT_EQ(changeLink(client, {L"x", wrong}, none), kUnasked);
    EXPECT_EQ(getLink(client, wish("/a.txt"), none), (Numbers{14, -1}));
    EXPECT_EQ(createLink(client, wish("a.txt")), (Numbers{14, -1}));
    Links links;
    links.limit = 0;
    EXPECT_EQ(ask(client, links), 8u);
    LinkMail silent;
    silent.subject.clear();
    EXPECT_EQ(mailLink(client, L"x", silent), kUnasked);
    EXPECT_EQ(mailLinks(client, L"x", silent), kUnasked);
    EXPECT_EQ(nas.requestCount(), 0);
}

TEST_P(LibLink, AServerWithoutMailSaysSoButMakesTheLink) {
    EXPECT_EQ(createLink(client, wish(), {}), (Numbers{0, 6}));
    const std::wstring ssid = onlyLink(client);
    EXPECT_EQ(mailLink(client, ssid, {}), (Numbers{0, 6}));
    EXPECT_EQ(mailLinks(client, ssid, {}), (Numbers{0, 6}));
}

TEST_P(LibLink, AnEndedSessionShowsInEachCallsOwnWay) {
    const std::string url = link(wish()).url;
    const std::wstring ssid = onlyLink(client);
    nas.expireSessions();
    LinkText none;
    _WFM_SHARE_LINK_RESULT record;
    Links links;
    EXPECT_EQ(getLink(client, wish(), none), kRefused);
    EXPECT_EQ(createLink(client, wish()), kRefused);
    EXPECT_EQ(selectLink(client, {L"/home/a.txt;", wish()}, record), (Numbers{0, -29}));
    EXPECT_EQ(changeLink(client, {ssid, wish()}, none), kRefused);
    EXPECT_EQ(deleteLink(client, L"/home/a.txt", L"", ssid), kRefused);
    EXPECT_EQ(mailLink(client, ssid, {}), kRefused);
    EXPECT_EQ(mailLinks(client, ssid, {}), kRefused);
    EXPECT_EQ(ask(client, links), 0u);
    EXPECT_THAT(links.rows, IsEmpty());
    EXPECT_EQ(visit(url).status, 200);
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibLinkMail, ALinkIsMailedWhereverItIsMade) {
    LinkWish wish;
    LinkText link;
    EXPECT_EQ(getLink(client, wish, link, L"erik@example.test"), kDone);
    ASSERT_EQ(mailCount(), 1);
    EXPECT_THAT(mails.read("0001.eml"), HasSubstr("To: <erik@example.test>"));
    EXPECT_THAT(mails.read("0001.eml"), HasSubstr("Subject: To Share with You!"));
    EXPECT_THAT(mails.read("0001.eml"),
                HasSubstr("I've shared the following file(s) with you using VEXA Rapido WFM:"));
    EXPECT_THAT(mails.read("0001.eml"), HasSubstr(link.url));
    // Without a subject there is no mail.
    LinkMail mail;
    mail.subject.clear();
    EXPECT_EQ(createLink(client, wish, mail), kDone);
    EXPECT_EQ(mailCount(), 1);
    mail.subject = wide("Für dich 書類");
    mail.content = L"See & read:";
    mail.code = L"sesame";
    wish.code = L"sesame";
    EXPECT_EQ(createLink(client, wish, mail), kDone);
    ASSERT_EQ(mailCount(), 2);
    EXPECT_THAT(mails.read("0002.eml"), HasSubstr("To: <dora@example.test>"));
    EXPECT_THAT(mails.read("0002.eml"), HasSubstr("Subject: Für dich 書類"));
    EXPECT_THAT(mails.read("0002.eml"), HasSubstr("See & read:"));
    EXPECT_THAT(mails.read("0002.eml"), HasSubstr("Access code: sesame"));
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibLinkMail, LinksThatAreThereAreMailedAloneOrTogether) {
    LinkWish one, two;
    one.code = L"sesame";
    two.path = L"/home/b.txt";
    LinkText a, b;
    EXPECT_EQ(getLink(client, one, a), kDone);
    EXPECT_EQ(getLink(client, two, b), kDone);
    EXPECT_EQ(mailCount(), 0);
    const auto ssid = [](const LinkText& link) { return link.url.substr(link.url.find("ssid=") + 5); };
    LinkMail mail;
    EXPECT_EQ(mailLink(client, wide(ssid(a)), mail), kDone);
    EXPECT_THAT(mails.read("0001.eml"), HasSubstr(a.url));
    EXPECT_THAT(mails.read("0001.eml"), Not(HasSubstr("sesame")));
    mail.tellCode = true;
    mail.code = L"sesame";
    EXPECT_EQ(mailLink(client, wide(ssid(a)), mail), kDone);
    EXPECT_THAT(mails.read("0002.eml"), HasSubstr("Access code: sesame"));
    EXPECT_EQ(mailLinks(client, wide(";" + ssid(a) + ";;" + ssid(b)), mail), kDone);
    EXPECT_THAT(mails.read("0003.eml"), HasSubstr(a.url));
    EXPECT_THAT(mails.read("0003.eml"), HasSubstr(b.url));
    EXPECT_THAT(mails.read("0003.eml"), HasSubstr("Access code: sesame"));
    const Client ben(nas, GetParam(), L"ben", L"hidden");
    EXPECT_EQ(mailLink(ben, wide(ssid(a)), mail), kRefused);
    EXPECT_EQ(mailLinks(ben, wide(ssid(a)), mail), kRefused);
    EXPECT_EQ(mailCount(), 3);
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

E2E_ON_ALL_ROADS(LibLink);
E2E_ON_ALL_ROADS(LibLinkMail);
