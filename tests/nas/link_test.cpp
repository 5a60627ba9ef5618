#include <gmock/gmock.h>

#include "nastest.h"

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

using LinkForm = std::vector<std::pair<std::string, std::string>>;

struct Wish {
    std::string duration = "forever";
    std::string datetime;
    std::string period;
    std::string code;
    std::string name = "a.txt";
};

/// Anna links files of her home.
class NasLinks : public NasTest {
protected:
    explicit NasLinks(std::vector<std::string> more = {}) : NasTest(std::move(more)) {
        write("homes/anna/a.txt", "content of a");
        write("homes/anna/b.txt", "content of b");
    }

    static void add(LinkForm& form, const LinkForm& more) {
        form.insert(form.end(), more.begin(), more.end());
    }
    static std::string yes(bool value) { return value ? "true" : "false"; }
    static void addDuration(LinkForm& form, const Wish& wish) {
        form.emplace_back("valid_duration", wish.duration);
        if (wish.duration == "specific_time") form.emplace_back("datetime", wish.datetime);
    }
    static LinkForm getForm(const Wish& wish) {
        LinkForm form = {{"download_type", "create_download_link"}};
        addDuration(form, wish);
        add(form, {{"file_total", "1"}, {"access_code", wish.code}});
        const std::string coded = yes(!wish.code.empty());
        add(form, {{"access_enabled", coded},
                   {"hostname", "nas.example.test"},
                   {"ssl", "false"},
                   {"include_access_code", coded},
                   {"file_name", wish.name},
                   {"path", "/home"},
                   {"network_type", "local"},
                   {"expire_time", wish.period}});
        return form;
    }
    static LinkForm selectionForm(const std::vector<std::string>& names) {
        LinkForm form = {{"valid_duration", "forever"},
                         {"access_code", ""},
                         {"hostname", "nas.example.test:81"},
                         {"ssl", "true"}};
        for (const std::string& name : names) form.emplace_back("file_name", name);
        add(form, {{"path", "/home"},
                   {"new_share", "0"},
                   {"expire_time", ""},
                   {"c", "1"},
                   {"file_total", std::to_string(names.size())}});
        return form;
    }
    static LinkForm createForm(const Wish& wish, bool mail = false) {
        LinkForm form = {{"download_type", "email_download_link"}};
        if (mail) add(form, {{"addressee", "dora@example.test"}, {"subject", "Files"}, {"content", "Here:"}});
        addDuration(form, wish);
        const std::string coded = yes(!wish.code.empty());
        add(form, {{"link_url", ""},
                   {"file_name", wish.name},
                   {"file_total", "1"},
                   {"access_code", wish.code},
                   {"access_enabled", coded},
                   {"hostname", "nas.example.test:81"},
                   {"ssl", "true"},
                   {"include_access_code", coded}});
        if (mail) form.emplace_back("mail_content_pwd", wish.code);
        add(form, {{"path", "/home"},
                   {"network_type", "internet"},
                   {"mail_content_date", "today"},
                   {"expire_time", wish.period.empty() ? "24" : wish.period}});
        return form;
    }
    NasReply call(const std::string& func, const LinkForm& form, const std::string& session = "") {
        return post(manager("func=" + func + "&sid=" + (session.empty() ? sid : session)), form);
    }
    Json::Value link(const Wish& wish) {
        const NasReply reply = call("get_share_link", getForm(wish));
        EXPECT_EQ(1, reply.status()) << reply.body;
        return reply.json();
    }
    std::string ssid(const Wish& wish = {}) { return link(wish)["ssid"].asString(); }
    /// As a browser does it, without a header of the protocol.
    NasReply open(const std::string& ssid, const std::string& more = "") {
        NasRequest request;
        request.target = "/share.cgi?ssid=" + ssid + more;
        request.headers = {{"Host", "127.0.0.1"}, {"Connection", "close"}};
        return run(request);
    }
    Json::Value list(const std::string& session, int limit = 100, int start = 0) {
        return get(manager("func=get_share_list&sid=" + session + "&dir=ASC&limit=" + std::to_string(limit) +
                           "&sort=filename&start=" + std::to_string(start)))
            .json();
    }
};

/// A base, for the server wants the folder at its start.
struct Mails {
    TempDir mails;
};

class NasLinkMails : Mails, public NasLinks {
protected:
    NasLinkMails() : NasLinks({"--mail-dir", mails.string()}) {}

    std::string mail(const std::string& name) const { return mails.read(name); }
};

class NasLinkNode : public NasLinks {
protected:
    NasLinkNode() : NasLinks({"--slave-id", "node2"}) {}
};

TEST_F(NasLinks, ALinkOpensForAnybody) {
    const Json::Value reply = link({});
    const std::string id = reply["ssid"].asString();
    EXPECT_THAT(call("get_share_link", getForm({})).body, HasSubstr("\\/share.cgi?ssid="));
    EXPECT_EQ("http://nas.example.test:" + std::to_string(nas.port()) + "/share.cgi?ssid=" + id,
              reply["link_url"].asString());
    EXPECT_EQ("", reply["expire_time"].asString());
    EXPECT_EQ(200, open(id).http);
    EXPECT_EQ("content of a", open(id).body);
    EXPECT_EQ(404, open("unknown").http);
    EXPECT_EQ(400, open(id, "&code=1").http);
}

TEST_F(NasLinks, TheSameFileHasOneLinkUntilANewOneIsMade) {
    const std::string id = ssid();
    EXPECT_EQ(id, ssid());
    const NasReply made = call("share_file", createForm({}));
    EXPECT_EQ(1, made.status());
    EXPECT_THAT(made.json()["result"].asString(), StartsWith("https://nas.example.test:81/share.cgi?ssid="));
    EXPECT_THAT(made.json()["result"].asString(), Not(EndsWith(id)));
    EXPECT_EQ(2, list(sid)["total"].asInt());
}

TEST_F(NasLinks, WithoutTheCodeNobodyComesIn) {
    const std::string id = ssid({"forever", "", "", "sesame", "a.txt"});
    EXPECT_EQ(403, open(id).http);
    EXPECT_EQ(403, open(id, "&access_code=Sesame").http);
    EXPECT_THAT(open(id).body, Not(HasSubstr("content")));
    EXPECT_EQ("content of a", open(id, "&access_code=sesame").body);
}

TEST_F(NasLinks, AnAddressMayBeWrittenByHand) {
    const std::string id = ssid({"forever", "", "", "se!c(1)'*", "a.txt"});
    EXPECT_EQ("content of a", open(id, "&access_code=se!c(1)'*").body);
    EXPECT_EQ("content of a", open(id, "&access_code=se%21c(1)'*&file=a.txt").body);
    EXPECT_EQ("content of a", open(id, "&file=a.txt&access_code=se!c(1)'*").body);
    EXPECT_EQ(403, open(id, "&file=a.txt&access_code=se!c").http);
    EXPECT_EQ(400, open(id, "&access_code=se!c&access_code=se!c").http);
}

TEST_F(NasLinks, ALinkThatHasExpiredIsShut) {
    EXPECT_EQ(410, open(ssid({"specific_time", "2001/02/03 04:05", "", "", "a.txt"})).http);
    EXPECT_EQ(410, open(ssid({"period_of_time", "", "0", "", "a.txt"})).http);
    const Json::Value later = link({"specific_time", "2101/02/03 04:05", "", "", "a.txt"});
    EXPECT_EQ("2101-02-03T04:05", later["expire_time"].asString());
    EXPECT_EQ(200, open(later["ssid"].asString()).http);
    EXPECT_EQ(1, call("share_file", createForm({"period_of_time", "", "0", "", "a.txt"}))
                     .json()["time_error"]
                     .asInt());
    EXPECT_EQ(400, call("get_share_link", getForm({"specific_time", "tomorrow", "", "", "a.txt"})).http);
    EXPECT_EQ(400,
              call("get_share_link", getForm({"specific_time", "2101/02/31 04:05", "", "", "a.txt"})).http);
    EXPECT_EQ(400, call("get_share_link", getForm({"period_of_time", "", "soon", "", "a.txt"})).http);
}

TEST_F(NasLinks, ASelectionIsOneLink) {
    const NasReply reply = call("get_share_link", selectionForm({"a.txt", "b.txt"}));
    ASSERT_EQ(1, reply.status()) << reply.body;
    EXPECT_EQ(1, reply.json()["multiple"].asInt());
    EXPECT_EQ("a.txt", reply.json()["link_name"].asString());
    const std::string id = reply.json()["ssid"].asString();
    EXPECT_EQ(id, reply.json()["links"][0]["ssid"].asString());
    const Json::Value items = get("/share.cgi?func=get_list&ssid=" + id).json();
    ASSERT_EQ(2, items["total"].asInt());
    EXPECT_EQ("b.txt", items["datas"][1]["filename"].asString());
    EXPECT_EQ(items, open(id).json());
    EXPECT_EQ("content of b", open(id, "&file=b.txt").body);
    EXPECT_EQ(404, open(id, "&file=c.txt").http);
    EXPECT_EQ(0, get("/share.cgi?func=get_list&ssid=unknown").json()["total"].asInt());
}

TEST_F(NasLinks, AFolderIsALinkToAllThatItHolds) {
    write("homes/anna/Photos/Old/p", "picture");
    write("homes/anna/Photos.txt", "beside it");
    const std::string id = ssid({"forever", "", "", "", "Photos"});
    EXPECT_EQ(1, get("/share.cgi?func=get_list&ssid=" + id).json()["datas"][0]["isfolder"].asInt());
    const Json::Value below = open(id).json();
    ASSERT_EQ(1, below["total"].asInt());
    EXPECT_EQ("Photos/Old", below["datas"][0]["filename"].asString());
    EXPECT_EQ("Photos/Old/p", open(id, "&file=Photos%2FOld").json()["datas"][0]["filename"].asString());
    EXPECT_EQ("picture", open(id, "&file=Photos%2FOld%2Fp").body);
    for (const char* file :
         {"a.txt", "Photos.txt", "Photos%2F..%2Fa.txt", "Photos%2Fmissing", "%2Fhome", ""}) {
        EXPECT_EQ(404, open(id, std::string("&file=") + file).http) << file;
    }
}

TEST_F(NasLinks, ATeamFolderAsAWholeHasNoFileName) {
    write("homes/anna/Plans/plan", "a plan");
    LinkForm form = getForm({"forever", "", "", "", ""});
    for (auto& [key, value] : form) {
        if (key == "path") value = "vtf://anna-Plans";
    }
    const NasReply reply = call("get_share_link", form, benSid);
    ASSERT_EQ(1, reply.status()) << reply.body;
    const std::string id = reply.json()["ssid"].asString();
    EXPECT_EQ("anna-Plans", list(benSid)["datas"][0]["filename"].asString());
    EXPECT_EQ("anna-Plans",
              get("/share.cgi?func=get_list&ssid=" + id).json()["datas"][0]["filename"].asString());
    EXPECT_EQ("plan", open(id).json()["datas"][0]["filename"].asString());
    EXPECT_EQ("a plan", open(id, "&file=plan").body);
}

TEST_F(NasLinks, ANewShareHasANameAndNoFolder) {
    write("Public/c.txt", "content of c");
    LinkForm form = {{"valid_duration", "forever"},
                     {"access_code", ""},
                     {"ht", "11"},
                     {"ssl", "false"},
                     {"file_name", "a.txt"},
                     {"file_name", "/Public/c.txt"},
                     {"link_name", "Letters"},
                     {"new_share", "1"},
                     {"expire_time", ""},
                     {"c", "1"},
                     {"file_total", "2"}};
    const Json::Value one = call("get_share_link", form).json();
    const std::string id = one["ssid"].asString();
    EXPECT_EQ("Letters", one["link_name"].asString());
    EXPECT_EQ("content of a", open(id, "&file=a.txt").body);
    EXPECT_EQ("content of c", open(id, "&file=%2FPublic%2Fc.txt").body);
    EXPECT_NE(id, call("get_share_link", form).json()["ssid"].asString());
    form[2].second = "10";
    EXPECT_EQ(400, call("get_share_link", form).http);
}

TEST_F(NasLinkNode, AddressesLeadToTheNodeOfTheFile) {
    const Json::Value one = link({});
    const std::string id = one["ssid"].asString();
    EXPECT_THAT(one["link_url"].asString(), EndsWith("/node2/share.cgi?ssid=" + id));
    EXPECT_EQ("content of a", get("/node2/share.cgi?ssid=" + id).body);
    LinkForm form = selectionForm({"a.txt"});
    form[2].second = "nas.example.test:81/node2";
    form.insert(form.begin() + 2, {"ht", "10"});
    EXPECT_EQ("https://nas.example.test:81/node2/share.cgi?ssid=" + id,
              run(NasRequest::form("/node2" + manager("func=get_share_link&sid=" + sid), form))
                  .json()["link_url"]
                  .asString());
    EXPECT_EQ(404, get("/node1/share.cgi?ssid=" + id).http);
    // The server's port belongs to the host, not to the node.
    form[3].second = "nas.example.test/node2";
    EXPECT_EQ("https://nas.example.test:" + std::to_string(nas.tlsPort()) + "/node2/share.cgi?ssid=" + id,
              call("get_share_link", form).json()["link_url"].asString());
}

TEST_F(NasLinks, OnlyWhatIsThereCanBeLinked) {
    EXPECT_EQ(5, call("get_share_link", getForm({"forever", "", "", "", "c.txt"})).status());
    EXPECT_EQ(5, call("get_share_link", getForm({}), benSid).status());
    EXPECT_EQ(3, call("get_share_link", getForm({}), "x").status());
    const std::string id = ssid();
    std::filesystem::remove(nas.folder().file("homes/anna/a.txt"));
    EXPECT_EQ(404, open(id).http);
}

TEST_F(NasLinks, ListsAreSortedAndPaged) {
    const std::string b = ssid({"forever", "", "", "", "b.txt"});
    const std::string a = ssid();
    const Json::Value all = list(sid);
    EXPECT_EQ(1, all["status"].asInt());
    ASSERT_EQ(2U, all["datas"].size());
    EXPECT_EQ(a, all["datas"][0]["ssid"].asString());
    EXPECT_EQ("anna", all["datas"][0]["creator"].asString());
    EXPECT_EQ(b, list(sid, 1, 1)["datas"][0]["ssid"].asString());
    EXPECT_EQ(2, list(sid, 1, 1)["total"].asInt());
    EXPECT_EQ(0, list(benSid)["total"].asInt());
    EXPECT_EQ(
        400, get(manager("func=get_share_list&sid=" + sid + "&dir=DESC&limit=1&sort=filename&start=0")).http);
}

TEST_F(NasLinks, ALinkIsDeletedByIdOrByItsAddress) {
    const Json::Value one = link({});
    const std::string id = one["ssid"].asString();
    const auto remove = [&](const std::string& session, const std::string& what) {
        return get(manager("func=delete_share&sid=" + session + what + "&file_total=1"));
    };
    EXPECT_EQ(5, remove(benSid, "&ssids=" + id).status());
    EXPECT_EQ(0, remove(sid, "&ssids=" + id).status());
    EXPECT_EQ(404, open(id).http);
    EXPECT_EQ(5, remove(sid, "&ssids=" + id).status());
    const Json::Value other = link({});
    const std::string address =
        "&filename=" + encoded("/home/a.txt") + "&download_link=" + encoded(other["link_url"].asString());
    EXPECT_EQ(400, remove(sid, "&filename=" + encoded("/home/a.txt") + "&download_link=").http);
    EXPECT_EQ(
        5, remove(sid, "&filename=" + encoded("/home/b.txt") + address.substr(address.find("&download_link")))
               .status());
    EXPECT_EQ(0, remove(sid, address).status());
    EXPECT_EQ(0, list(sid)["total"].asInt());
}

TEST_F(NasLinks, AnUpdateChangesCodeAndName) {
    const std::string id = ssid();
    const auto update = [&](const std::string& code, const std::string& name) {
        LinkForm form = {{"download_type", "create_download_link"},
                         {"option", "1"},
                         {"valid_duration", "forever"},
                         {"file_total", "1"},
                         {"access_code", code},
                         {"access_enabled", yes(!code.empty())},
                         {"hostname", "other.example.test:80"},
                         {"ssl", "false"},
                         {"include_access_code", yes(!code.empty())},
                         {"expire_time", ""},
                         {"ssids", id},
                         {"link_name", name}};
        return call("update_share_link", form);
    };
    const NasReply reply = update("sesame", "Letters");
    EXPECT_EQ(1, reply.status());
    EXPECT_EQ("http://other.example.test:80/share.cgi?ssid=" + id, reply.json()["result"].asString());
    EXPECT_EQ(403, open(id).http);
    EXPECT_EQ("Letters", list(sid)["datas"][0]["link_name"].asString());
    nas.kill();
    nas.startAgain();
    EXPECT_EQ("content of a", open(id, "&access_code=sesame").body);
    sid = loginSid(nas.port(), "anna", "secret");
    ASSERT_EQ(id, ssid());
    EXPECT_EQ("Letters", list(sid)["datas"][0]["link_name"].asString());
}

TEST_F(NasLinks, AnUpdateNamesItsHostOrSaysThatItHasNone) {
    LinkForm form = {{"download_type", "create_download_link"},
                     {"option", "1"},
                     {"valid_duration", "forever"},
                     {"file_total", "1"},
                     {"access_code", ""},
                     {"access_enabled", "false"},
                     {"ssl", "false"},
                     {"include_access_code", "false"},
                     {"expire_time", ""},
                     {"ssids", ssid()},
                     {"link_name", "Letters"}};
    EXPECT_EQ(400, call("update_share_link", form).http);
    EXPECT_TRUE(nas.waitForLog("form key \"hostname\" is missing"));
    form.insert(form.begin() + 6, {"ht", "11"});
    EXPECT_EQ(1, call("update_share_link", form).status());
    EXPECT_EQ("Letters", list(sid)["datas"][0]["link_name"].asString());
}

TEST_F(NasLinks, TheHostHidesNothingFromASearchForTheStatus) {
    LinkForm form = getForm({});
    form[5].second = "status.expire_time.test";
    const std::string body = call("get_share_link", form).body;
    EXPECT_EQ(body.find("status"), body.find("status\":1"));
    EXPECT_EQ(body.find("expire_time"), body.find("expire_time\":"));
    EXPECT_LT(body.find("expire_time\":"), body.find("link_url"));
}

TEST_F(NasLinks, FormsAreExact) {
    LinkForm form = getForm({});
    form.emplace_back("sn", sid);
    EXPECT_EQ(400, call("get_share_link", form).http);
    form = getForm({});
    form[0].second = "other";
    EXPECT_EQ(400, call("get_share_link", form).http);
    form = getForm({});
    form[3].second = "sesame";
    EXPECT_EQ(400, call("get_share_link", form).http);
    form = selectionForm({"a.txt"});
    form.back().second = "2";
    EXPECT_EQ(400, call("get_share_link", form).http);
    form = selectionForm({"a.txt"});
    form[2] = {"ht", "11"};
    EXPECT_EQ(400, call("get_share_link", form).http);
    for (const char* key : {"mail_content_date", "expire_time"}) {
        form = createForm({});
        for (auto& [name, value] : form) {
            if (name == key) value.clear();
        }
        EXPECT_EQ(400, call("share_file", form).http) << key;
    }
    form = createForm({});
    form.emplace_back("c", "1");
    EXPECT_EQ(400, call("share_file", form).http);
    EXPECT_EQ(400, post(cgi("func=get_share_link&sid=" + sid), getForm({})).http);
}

TEST_F(NasLinks, WithoutAWayOutForMailTheReplySaysSo) {
    EXPECT_EQ(1, call("share_file", createForm({}, true)).json()["email_error"].asInt());
    LinkForm form = getForm({});
    form.insert(form.begin() + 1,
                {{"addressee", "dora@example.test"}, {"subject", "Files"}, {"content", "Here:"}});
    EXPECT_EQ(0, call("get_share_link", form).status());
    LinkForm one = {{"share_ssid", ssid()},
                    {"addressee", "erik@example.test"},
                    {"subject", "One"},
                    {"content", "Look"},
                    {"include_access_code", "maybe"}};
    EXPECT_EQ(400, call("send_share_mail", one).http);
    one[4].second = "false";
    EXPECT_EQ(1, call("send_share_mail", one).json()["email_error"].asInt());
    one[3].second = "";
    EXPECT_EQ(400, call("send_share_mail", one).http);
}

TEST_F(NasLinks, AMailThatIsRefusedLeavesNoLink) {
    LinkForm form = createForm({}, true);
    form[2].second = "Two\r\nBcc: x";
    EXPECT_EQ(400, call("share_file", form).http);
    EXPECT_EQ(0, list(sid)["total"].asInt());
}

TEST_F(NasLinkMails, MailsTellTheLinks) {
    const NasReply made = call("share_file", createForm({"forever", "", "", "sesame", "a.txt"}, true));
    EXPECT_FALSE(made.json().isMember("email_error"));
    EXPECT_THAT(mail("0001.eml"), HasSubstr("To: <dora@example.test>"));
    EXPECT_THAT(mail("0001.eml"), HasSubstr("Subject: Files"));
    EXPECT_THAT(mail("0001.eml"), HasSubstr(made.json()["result"].asString()));
    EXPECT_THAT(mail("0001.eml"), HasSubstr("Access code: sesame"));

    const std::string a = ssid(), b = ssid({"forever", "", "", "", "b.txt"});
    EXPECT_EQ(1, call("send_share_mail", {{"share_ssid", a},
                                          {"addressee", "erik@example.test"},
                                          {"subject", "One"},
                                          {"content", "Look"},
                                          {"include_access_code", "false"}})
                     .status());
    EXPECT_THAT(mail("0002.eml"), HasSubstr("ssid=" + a));
    const LinkForm both = {{"download_type", "email_download_link"},
                           {"addressee", "fay@example.test"},
                           {"subject", "Two"},
                           {"content", "Look"},
                           {"ssids", a},
                           {"ssids", b},
                           {"file_total", "2"},
                           {"network_type", "internet"},
                           {"include_access_code", "false"},
                           {"access_enabled", "false"}};
    EXPECT_EQ(1, call("share_file", both).status());
    EXPECT_THAT(mail("0003.eml"), HasSubstr("ssid=" + a));
    EXPECT_THAT(mail("0003.eml"), HasSubstr("ssid=" + b));
    EXPECT_EQ(5, call("share_file", both, benSid).status());
    LinkForm broken = both;
    broken[2].second = "Two\r\nBcc: x";
    EXPECT_EQ(400, call("share_file", broken).http);
}
