#include <gmock/gmock.h>

#include "nastest.h"

using testing::ElementsAre;
using testing::IsEmpty;

class NasPeople : public NasTest {
protected:
    explicit NasPeople(std::vector<std::string> more = {}) : NasTest(std::move(more)) {}

    struct Question {
        int type = 1;
        std::string netbios, domain, filter;
        std::string window = "&lower=0&upper=100";
        int all = 1;
    };
    std::string query(const std::string& session, const Question& question) const {
        return "func=nubo_get_user_list&sid=" + session + "&user_type=" + std::to_string(question.type) +
               "&all_user=" + std::to_string(question.all) + "&refresh=1" + question.window +
               "&netbios=" + encoded(question.netbios) + "&domain=" + encoded(question.domain) +
               "&filter=" + encoded(question.filter);
    }
    Json::Value ask(const Question& question) { return get(cgi(query(sid, question))).json(); }
    static std::vector<std::string> names(const Json::Value& reply) {
        std::vector<std::string> result;
        for (const Json::Value& user : reply["user"]) result.push_back(user["name"].asString());
        return result;
    }
};

class NasDirectory : public NasPeople {
protected:
    NasDirectory()
        : NasPeople({"--directory", "PINE:pine.example.test", "--directory", "OAK:oak.example.test",
                     "--directory-user", "PINE:erik", "--directory-user", "PINE:fay", "--directory-user",
                     "OAK:gus", "--user", "PINE\\fay:sixth", "--description", "PINE\\erik:Erik of the woods",
                     "--no-sync-for", "ben"}) {}
};

TEST_F(NasPeople, WithoutADirectoryThereAreTheServersOwn) {
    const Json::Value reply = ask({});
    EXPECT_EQ(0, reply["status"].asInt());
    EXPECT_EQ(2, reply["total"].asInt());
    EXPECT_THAT(names(reply), ElementsAre("anna", "ben"));
    EXPECT_EQ("0", reply["user"][0]["policy"].asString());
    EXPECT_EQ(1, reply["user"][0]["torviuser"].asInt());
    EXPECT_FALSE(reply["user"][0].isMember("description"));
    EXPECT_EQ(reply, get(manager(query(sid, {}))).json());
    const Json::Value info = get(cgi("func=get_ad_info&sid=" + sid)).json();
    EXPECT_EQ(1, info["status"].asInt());
    EXPECT_EQ(0, info["ADSupport"].asInt());
    EXPECT_EQ(0, info["count"].asInt());
}

TEST_F(NasDirectory, EachDomainHasItsUsers) {
    const Json::Value pine = ask({2, "PINE", "pine.example.test", "", "&lower=0&upper=100", 1});
    EXPECT_THAT(names(pine), ElementsAre("PINE\\erik", "PINE\\fay"));
    EXPECT_EQ("Erik of the woods", pine["user"][0]["description"].asString());
    EXPECT_EQ(0, pine["user"][0]["torviuser"].asInt());
    EXPECT_EQ(1, pine["user"][1]["torviuser"].asInt());
    EXPECT_THAT(names(ask({2, "OAK", "oak.example.test", "", "&lower=0&upper=100", 1})),
                ElementsAre("OAK\\gus"));
    EXPECT_THAT(names(ask({})), ElementsAre("anna", "ben"));
    EXPECT_NE("", loginSid(nas.port(), "PINE\\fay", "sixth"));
}

TEST_F(NasDirectory, AnUnknownDomainIsAFailure) {
    EXPECT_EQ(5, ask({2, "ELM", "elm.example.test", "", "&lower=0&upper=100", 1})["status"].asInt());
    EXPECT_EQ(5, ask({2, "OAK", "pine.example.test", "", "&lower=0&upper=100", 1})["status"].asInt());
}

TEST_F(NasDirectory, FilterPageAndThoseWhoSync) {
    EXPECT_THAT(names(ask({1, "", "", "BE", "&lower=0&upper=100", 1})), ElementsAre("ben"));
    EXPECT_THAT(names(ask({1, "", "", "", "&lower=0&upper=100", 0})), ElementsAre("anna"));
    EXPECT_THAT(names(ask({2, "PINE", "pine.example.test", "", "&lower=0&upper=100", 0})),
                ElementsAre("PINE\\fay"));
    const Json::Value page = ask({2, "PINE", "pine.example.test", "", "&lower=1&upper=5", 1});
    EXPECT_EQ(2, page["total"].asInt());
    EXPECT_THAT(names(page), ElementsAre("PINE\\fay"));
    EXPECT_THAT(names(ask({1, "", "", "", "&lower=2&upper=5", 1})), IsEmpty());
}

TEST_F(NasDirectory, TheDomainsAreToldToClients) {
    for (const std::string& target :
         {cgi("func=get_ad_info&sid=" + sid), manager("func=get_ad_info&sid=" + sid)}) {
        const Json::Value info = get(target).json();
        EXPECT_EQ(1, info["status"].asInt());
        EXPECT_EQ(1, info["ADSupport"].asInt());
        EXPECT_EQ(1, info["TrustedDomainEnable"].asInt());
        ASSERT_EQ(2, info["count"].asInt());
        EXPECT_EQ("PINE", info["datas"][0]["netbios"].asString());
        EXPECT_EQ("pine.example.test", info["datas"][0]["domain"].asString());
    }
    EXPECT_EQ(3, get(cgi("func=get_ad_info&sid=x")).status());
    EXPECT_EQ(400, get(cgi("func=get_ad_info&sid=" + sid + "&refresh=1")).http);
}

TEST_F(NasDirectory, ThePolicyOfEachIsTold) {
    ASSERT_EQ(0, get(cgi("func=nubo_set_policy&share_policy=2&sid=" + benSid)).status());
    EXPECT_EQ("2", ask({})["user"][1]["policy"].asString());
}

TEST_F(NasDirectory, QueriesAreExact) {
    EXPECT_EQ(400, get(cgi(query(sid, {3, "", "", "", "&lower=0&upper=1", 1}))).http);
    EXPECT_EQ(400, get(cgi(query(sid, {1, "PINE", "", "", "&lower=0&upper=1", 1}))).http);
    EXPECT_EQ(400, get(cgi(query(sid, {1, "", "", "", "&lower=0&upper=1", 2}))).http);
    EXPECT_EQ(400, get(cgi(query(sid, {1, "", "", "", "&upper=1&lower=0", 1}))).http);
    EXPECT_EQ(400, get(cgi(query(sid, {1, "", "", "", "&lower=0&upper=-2", 1}))).http);
    EXPECT_EQ(400, get(cgi(query(sid, {}) + "&nas_id=a")).http);
    EXPECT_EQ(3, get(cgi(query("x", {}))).status());
}
