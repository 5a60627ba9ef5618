#include <gmock/gmock.h>

#include "sharing.h"

using testing::ElementsAre;
using testing::HasSubstr;

class NasMembers : public NasSharing {
protected:
    explicit NasMembers(std::vector<std::string> more = {}) : NasSharing(withDora(std::move(more))) {}

    static std::vector<std::string> withDora(std::vector<std::string> more) {
        more.insert(more.end(), {"--user", "dora day:fourth", "--description", "carl:Carl of sales",
                                 "--no-sync-for", "dora day"});
        return more;
    }
    struct Change {
        std::string name;
        int action;
        int event = 0;
    };
    static std::string memberQuery(const std::string& session, const std::string& id,
                                   const std::string& filter = "", const std::string& more = "",
                                   const std::string& window = "&lower=0&upper=100", int all = 1) {
        return "func=nubo_team_folder_get_member&sid=" + session + "&user_type=1&share_id=" + id + window +
               "&all_user=" + std::to_string(all) + "&refresh=0&netbios=&domain=&filter=" + encoded(filter) +
               more;
    }
    Json::Value members(const std::string& filter = "", const std::string& more = "",
                        const std::string& window = "&lower=0&upper=100", int all = 1) {
        const Json::Value reply = get(cgi(memberQuery(sid, photosId(), filter, more, window, all))).json();
        EXPECT_EQ(0, reply.get("status", -1000).asInt()) << reply.toStyledString();
        return reply;
    }
    static std::vector<std::string> names(const Json::Value& reply) {
        std::vector<std::string> result;
        for (const Json::Value& user : reply["user"]) result.push_back(user["name"].asString());
        return result;
    }
    FormFields changeForm(const std::string& session, const std::vector<Change>& changes,
                          bool events = false) {
        FormFields form = {{"sid", session}, {"share_id", photosId()}};
        for (std::size_t i = 0; i < changes.size(); ++i) {
            const std::string index = std::to_string(i);
            if (events) form.emplace_back("event_id" + index, std::to_string(changes[i].event));
            form.emplace_back("user" + index, encoded(changes[i].name));
            form.emplace_back("action" + index, std::to_string(changes[i].action));
        }
        form.emplace_back("user_number", std::to_string(changes.size()));
        return form;
    }
    NasReply change(const std::string& session, const std::vector<Change>& changes) {
        return post(cgi("func=nubo_team_folder_set_member"), changeForm(session, changes));
    }
    void changed(const std::vector<Change>& changes) { ASSERT_TRUE(finished(change(sid, changes), sid)); }
};

TEST_F(NasMembers, AllWhoMayBecomeMembersAreListed) {
    share({"ben"});
    const Json::Value all = members();
    EXPECT_EQ(3, all["total"].asInt());
    EXPECT_THAT(names(all), ElementsAre("ben", "carl", "dora day"));
    const Json::Value ben = all["user"][0];
    EXPECT_EQ(1, ben["share_member"].asInt());
    EXPECT_EQ(1, ben["event_status"].asInt());
    EXPECT_EQ(event(sid, 4, "/home/Photos")["event_id"], ben["event_id"]);
    EXPECT_FALSE(ben.isMember("description"));
    const Json::Value carl = all["user"][1];
    EXPECT_EQ(0, carl["share_member"].asInt());
    EXPECT_EQ("Carl of sales", carl["description"].asString());
    EXPECT_EQ(1, carl["torviuser"].asInt());
    EXPECT_EQ(0, all["user"][2]["torviuser"].asInt());
    std::string query = memberQuery(sid, photosId());
    query.replace(query.find("nubo_team_folder_get_member"), 27, "nubo_get_share_member");
    EXPECT_EQ(all, get(manager(query)).json());
}

TEST_F(NasMembers, AFilterAPageOrMembersAlone) {
    share({"ben"});
    EXPECT_THAT(names(members("AR")), ElementsAre("carl"));
    EXPECT_THAT(names(members("", "&only_member=1")), ElementsAre("ben"));
    EXPECT_THAT(names(members("", "", "&lower=0&upper=100", 0)), ElementsAre("ben", "carl"));
    const Json::Value second = members("", "", "&lower=1&upper=2");
    EXPECT_THAT(names(second), ElementsAre("carl"));
    EXPECT_EQ(3, second["total"].asInt());
}

TEST_F(NasMembers, OnlyTheOwnerAsks) {
    share({"ben"});
    const std::string id = photosId();
    EXPECT_EQ(4, get(cgi(memberQuery(benSid, id))).status());
    EXPECT_EQ(5, get(cgi(memberQuery(carlSid, id))).status());
    EXPECT_EQ(5, get(cgi(memberQuery(sid, "unknown"))).status());
    EXPECT_EQ(5, get(cgi(memberQuery(sid, id, "", "&nas_id=node2"))).status());
    EXPECT_EQ(3, get(cgi(memberQuery("x", id))).status());
}

TEST_F(NasMembers, QueriesAreExact) {
    share({"ben"});
    const std::string id = photosId();
    EXPECT_EQ(400, get(cgi(memberQuery(sid, id, "", "", "&lower=1&upper=1"))).http);
    EXPECT_EQ(400, get(cgi(memberQuery(sid, id, "", "", "&lower=0&upper=9", 2))).http);
    EXPECT_EQ(400, get(cgi(memberQuery(sid, id, "", "&only_member=0"))).http);
    EXPECT_EQ(400, get(cgi(memberQuery(sid, id, "", "&nas_id=a&only_member=1"))).http);
    EXPECT_EQ(400, get(cgi(memberQuery(sid, ""))).http);
    std::string query = memberQuery(sid, id);
    query.replace(query.find("user_type=1"), 11, "user_type=3");
    EXPECT_EQ(400, get(cgi(query)).http);
}

TEST_F(NasMembers, MembersComeGoAndChange) {
    share({"ben"});
    ASSERT_EQ(0, accept(benSid, photosId(), "Photos").status());
    ASSERT_NO_FATAL_FAILURE(changed({{"ben", 1}, {"carl", 2}, {"dora day", 2}}));
    EXPECT_EQ(1, reach(benSid));
    const auto upload = [&] {
        return run(NasRequest::upload(cgi(uploadQuery(benSid, "vtf://anna-Photos")), "p", "x")).status();
    };
    EXPECT_EQ(4, upload());
    EXPECT_FALSE(folder(carlSid, 1, "Photos").isNull());
    EXPECT_THAT(names(members("", "&only_member=1")), ElementsAre("ben", "carl", "dora day"));
    ASSERT_NO_FATAL_FAILURE(changed({{"ben", 2}, {"dora day", 0}}));
    EXPECT_EQ(1, upload());
    EXPECT_THAT(names(members("", "&only_member=1")), ElementsAre("ben", "carl"));
    ASSERT_NO_FATAL_FAILURE(changed({{"ben", 0}}));
    EXPECT_EQ(4, reach(benSid));
}

TEST_F(NasMembers, AMemberWhoseAccountIsGoneIsListed) {
    share({"ben"});
    nas.kill();
    std::string book = nas.folder().read(".torvi-nas.shares");
    const std::string ben = "\"receiver\":\"ben\",\"removedBy\":[],\"share\":\"";
    const std::size_t at = book.rfind(ben);
    ASSERT_NE(std::string::npos, at) << book;
    book.replace(at + 12, 3, "zoe");
    write(".torvi-nas.shares", book);
    nas.startAgain();
    sid = loginSid(nas.port(), "anna", "secret");
    EXPECT_THAT(names(members("", "&only_member=1")), ElementsAre("zoe"));
    EXPECT_THAT(names(members("arl")), ElementsAre("carl"));
    ASSERT_NO_FATAL_FAILURE(changed({{"zoe", 0}}));
    EXPECT_THAT(names(members("", "&only_member=1")), ElementsAre());
}

TEST_F(NasMembers, TheFileManagerNamesTheEventsToo) {
    share({"ben"});
    const std::string target = manager("func=nubo_set_share_member");
    const int id = event(sid, 4, "/home/Photos")["event_id"].asInt();
    EXPECT_EQ(5, post(target, changeForm(sid, {{"ben", 0, id + 1}}, true)).status());
    EXPECT_EQ(5, post(target, changeForm(sid, {{"carl", 2, id}}, true)).status());
    EXPECT_EQ(400, post(target, changeForm(sid, {{"ben", 0}})).http);
    ASSERT_TRUE(finished(post(target, changeForm(sid, {{"ben", 0, id}, {"carl", 2, 0}}, true)), sid));
    EXPECT_THAT(names(members("", "&only_member=1")), ElementsAre("carl"));
}

TEST_F(NasMembers, AFormIsTakenWholeOrNotAtAll) {
    share({"ben"});
    EXPECT_EQ(5, change(sid, {{"ben", 0}, {"carl", 0}}).status());
    EXPECT_EQ(5, change(sid, {{"carl", 2}, {"nobody", 2}}).status());
    EXPECT_EQ(4, change(sid, {{"carl", 2}, {"anna", 2}}).status());
    EXPECT_EQ(4, change(benSid, {{"carl", 2}}).status());
    EXPECT_EQ(4, change(sid, {{"carl", 3}}).status());
    EXPECT_EQ(4, change(sid, {{"carl", 2}, {"carl", 1}}).status());
    EXPECT_EQ(3, change("x", {{"carl", 2}}).status());
    EXPECT_THAT(names(members("", "&only_member=1")), ElementsAre("ben"));
}

TEST_F(NasMembers, FormsAreExact) {
    share({"ben"});
    const std::string target = cgi("func=nubo_team_folder_set_member");
    const FormFields right = changeForm(sid, {{"carl", 2}});
    const auto refused = [&](const FormFields& form, const std::string& reason) {
        const NasReply reply = post(target, form);
        EXPECT_EQ(400, reply.http) << reply.body;
        EXPECT_THAT(reply.body, HasSubstr(reason));
    };
    refused(changeForm(sid, {{"carl", 2}}, true), "event_id0");
    FormFields form = right;
    form.back().second = "2";
    refused(form, "user1\\\" is missing");
    form.back().second = "0";
    refused(form, "out of its range");
    form.pop_back();
    refused(form, "user_number\\\" is missing");
    form = right;
    form[2].second = "dora day";
    refused(form, "unencoded");
    form[2].second = "~bc";
    refused(form, "unencoded");
    form = right;
    form.emplace_back("nas_id", "node2");
    EXPECT_EQ(5, post(target, form).status());
}
