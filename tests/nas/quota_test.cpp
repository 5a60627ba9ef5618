#include <gmock/gmock.h>
#include <sys/statvfs.h>

#include "nastest.h"

using testing::HasSubstr;

class NasQuotaInfo : public NasTest {
protected:
    using NasTest::NasTest;

    static std::string quotaQuery(const std::string& session, const std::string& more = {}) {
        return "func=nubo_get_quota_info&sid=" + session + more;
    }
    Json::Value quota(const std::string& session, const std::string& more = {}) {
        return get(cgi(quotaQuery(session, more))).json();
    }
    static std::string homeQuery(const std::string& session, const std::string& user) {
        return "func=nubo_get_user_home&sid=" + session + "&user=" + encoded(user);
    }
    NasReply home(const std::string& session, const std::string& user) {
        return get(cgi(homeQuery(session, user)));
    }
    static long long bytes(const std::string& text) {
        const std::map<std::string, int> shifts = {
            {"bytes", 0}, {"KB", 10}, {"MB", 20}, {"GB", 30}, {"TB", 40}};
        const std::size_t blank = text.find(' ');
        EXPECT_NE(std::string::npos, blank) << text;
        if (blank == std::string::npos || !shifts.count(text.substr(blank + 1))) return -1;
        return std::stoll(text.substr(0, blank)) << shifts.at(text.substr(blank + 1));
    }
};

class NasLimited : public NasQuotaInfo {
protected:
    NasLimited() : NasQuotaInfo({"--quota", "anna:10240", "--volume", "Public:2048", "--volume", "Gone:1"}) {}
};

using NasHomePath = NasQuotaInfo;

TEST_F(NasQuotaInfo, WithoutAQuotaOnlyTheDiskIsTold) {
    struct statvfs info {};
    ASSERT_EQ(0, ::statvfs(nas.folder().string().c_str(), &info));
    const auto block = static_cast<long long>(info.f_frsize);
    for (const std::string& target :
         {cgi(quotaQuery(sid)), manager(quotaQuery(sid)), cgi(quotaQuery(sid, "&get_all=1"))}) {
        const Json::Value reply = get(target).json();
        EXPECT_FALSE(reply["quota_enable"].asBool());
        EXPECT_FALSE(reply.isMember("status"));
        EXPECT_FALSE(reply.isMember("quota_size"));
        EXPECT_EQ(static_cast<long long>(info.f_blocks) * block,
                  bytes(reply["volume_total_size"].asString()));
        EXPECT_GT(bytes(reply["volume_free_size"].asString()), 0);
        EXPECT_LE(bytes(reply["volume_free_size"].asString()), bytes(reply["volume_total_size"].asString()));
    }
}

TEST_F(NasLimited, TheQuotaOfTheHomeFollowsWhatLiesInIt) {
    Json::Value reply = quota(sid);
    EXPECT_TRUE(reply["quota_enable"].asBool());
    EXPECT_EQ("10 KB", reply["quota_size"].asString());
    EXPECT_EQ("0 bytes", reply["used_quota_size"].asString());
    EXPECT_EQ("10 KB", reply["avaiable_quota_size"].asString());
    ASSERT_EQ(1, put("/home", "a", std::string(1000, 'x')).status());
    ASSERT_EQ(
        1, post(cgi("func=delete&sid=" + sid), {{"file_name", "a"}, {"file_total", "1"}, {"path", "/home"}})
               .status());
    reply = quota(sid);
    EXPECT_EQ("1000 bytes", reply["used_quota_size"].asString());
    EXPECT_EQ("9240 bytes", reply["avaiable_quota_size"].asString());
    EXPECT_FALSE(quota(benSid)["quota_enable"].asBool());
}

TEST_F(NasLimited, AHomeThatHoldsTooMuchHasNoRoomLeft) {
    write("homes/anna/a", std::string(20480, 'x'));
    EXPECT_EQ("20 KB", quota(sid)["used_quota_size"].asString());
    EXPECT_EQ("0 bytes", quota(sid)["avaiable_quota_size"].asString());
}

TEST_F(NasLimited, AllVolumesAreAListWithTheirIds) {
    write("Public/a", std::string(1024, 'x'));
    const Json::Value reply = quota(sid, "&get_all=1");
    EXPECT_TRUE(reply["quota_enable"].asBool());
    ASSERT_EQ(2U, reply["quota"].size());
    EXPECT_EQ(1, reply["quota"][0]["vol_id"].asInt());
    EXPECT_EQ("10 KB", reply["quota"][0]["quota_size"].asString());
    EXPECT_EQ(2, reply["quota"][1]["vol_id"].asInt());
    EXPECT_EQ("2 KB", reply["quota"][1]["quota_size"].asString());
    EXPECT_EQ("1 KB", reply["quota"][1]["used_quota_size"].asString());
    EXPECT_EQ("1 KB", reply["quota"][1]["avaiable_quota_size"].asString());
    // Nothing limits this user's home, but the volume does.
    EXPECT_EQ(1U, quota(benSid, "&get_all=1")["quota"].size());
}

TEST_F(NasQuotaInfo, QueriesAreExact) {
    const auto refused = [&](const std::string& query, const std::string& reason) {
        for (const std::string& target : {cgi(query), manager(query)}) {
            const NasReply reply = get(target);
            EXPECT_EQ(400, reply.http) << target;
            EXPECT_THAT(reply.body, HasSubstr(reason));
        }
    };
    refused(quotaQuery(sid, "&get_all=0"), "not \\\"1\\\"");
    refused(quotaQuery(sid, "&all=1"), "not in the protocol");
    refused("func=nubo_get_quota_info&get_all=1&sid=" + sid, "out of order");
    refused("func=nubo_get_user_home&user=anna&sid=" + sid, "out of order");
    refused("func=nubo_get_user_home&sid=" + sid, "\\\"user\\\" is missing");
    refused(homeQuery(sid, ""), "\\\"user\\\" is empty");
    EXPECT_EQ(405, post(cgi(quotaQuery(sid)), {}).http);
}

TEST_F(NasQuotaInfo, StrangersLearnNothing) {
    const std::string stranger = "0123456789abcdef0123456789abcdef";
    EXPECT_EQ(3, quota(stranger)["status"].asInt());
    EXPECT_FALSE(quota(stranger).isMember("volume_total_size"));
    EXPECT_EQ(3, home(stranger, "anna").status());
}

TEST_F(NasHomePath, EachUserMayAskForTheOwnHome) {
    for (const std::string& target : {cgi(homeQuery(benSid, "ben")), manager(homeQuery(benSid, "ben"))}) {
        EXPECT_EQ(1, get(target).status());
        EXPECT_EQ("/home", get(target).json()["home"].asString());
    }
}

TEST_F(NasHomePath, OthersHomesAreForAdministrators) {
    EXPECT_EQ("/homes/ben", home(sid, "ben").json()["home"].asString());
    EXPECT_EQ(4, home(benSid, "anna").status());
    EXPECT_FALSE(home(benSid, "anna").json().isMember("home"));
    EXPECT_EQ(5, home(sid, "carl").status());
    EXPECT_EQ(4, home(benSid, "carl").status());
}

TEST_F(NasHomePath, AHomeThatIsGoneIsStatusMinus4) {
    std::filesystem::remove_all(nas.folder().path() / "homes/ben");
    EXPECT_EQ(-4, home(benSid, "ben").status());
    EXPECT_FALSE(home(benSid, "ben").json().isMember("home"));
    EXPECT_FALSE(quota(benSid)["quota_enable"].asBool());
}
