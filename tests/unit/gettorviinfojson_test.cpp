#include "state/GetTorviInfoJson.h"

#include <gtest/gtest.h>

#include "parsing.h"

namespace {

std::string reply(const std::string& more = "") {
    return R"({"nubo_function_enable":1,"nubo_user_enable":1,"home_is_exist":1,"team_folder_is_exist":1)" +
           more + "}";
}

/// What the parser read, as words.
std::string wordsOf(const CGetTorviInfoJson& reply) {
    std::string words;
    const auto add = [&words](const char* word, bool is) { words += is ? std::string(" ") + word : ""; };
    add("function", reply.functionEnable);
    add("user", reply.userEnable);
    add("home", reply.homeIsExist);
    add("team", reply.teamFolderIsExist);
    add("cluster", reply.clusterSupport);
    return words;
}

}  // namespace

TEST(CGetTorviInfoJson, BeginsWithAHomeAndATeamFolder) {
    const CGetTorviInfoJson reply;
    EXPECT_EQ(wordsOf(reply), " home team");
    EXPECT_FALSE(reply.GetResult());
    EXPECT_EQ(reply.clusterStatus, 0);
    EXPECT_EQ(reply.slaveId, L"");
}

TEST(CGetTorviInfoJson, AFlagIsTrueIfItsIntegerIsOne) {
    const struct {
        const char* reply;
        const char* words;
    } rows[] = {
        {R"({"nubo_function_enable":1,"nubo_user_enable":1,"home_is_exist":1,"team_folder_is_exist":1})",
         " function user home team"},
        {R"({"nubo_function_enable":0,"nubo_user_enable":0,"home_is_exist":0,"team_folder_is_exist":0})", ""},
        {R"({"nubo_function_enable":"1","nubo_user_enable":"0","home_is_exist":"1",
            "team_folder_is_exist":"0"})",
         " function home"},
        {R"({"nubo_function_enable":2,"nubo_user_enable":-1,"home_is_exist":2,"team_folder_is_exist":"x"})",
         ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        CGetTorviInfoJson reply;
        EXPECT_EQ(parse(reply, row.reply), 1);
        EXPECT_TRUE(reply.GetResult());
        EXPECT_EQ(wordsOf(reply), row.words);
    }
}

TEST(CGetTorviInfoJson, EachOfItsFirstFourKeysIsNeeded) {
    for (const char* key :
         {"nubo_function_enable", "nubo_user_enable", "home_is_exist", "team_folder_is_exist"}) {
        SCOPED_TRACE(key);
        std::string without = reply();
        without.replace(without.find(key), std::string(key).size(), "other");
        CGetTorviInfoJson reply;
        EXPECT_EQ(parse(reply, without), 1);
        EXPECT_FALSE(reply.GetResult());
    }
    CGetTorviInfoJson nothing;
    EXPECT_EQ(parse(nothing, "{}"), 1);
    EXPECT_FALSE(nothing.GetResult());
    EXPECT_EQ(wordsOf(nothing), " home team");
}

TEST(CGetTorviInfoJson, OnlyAServerWithClusterSupportTellsItsStatusAndOnlyAClusterItsSlaveId) {
    const struct {
        const char* more;
        const char* words;
        int status;
        const wchar_t* slaveId;
    } rows[] = {
        {R"(,"nubo_cluster_support":1,"nubo_cluster_status":1,"nubo_cluster_slave_id":"n1")",
         " function user home team cluster", 1, L"n1"},
        {R"(,"nubo_cluster_support":"1","nubo_cluster_status":"1","nubo_cluster_slave_id":7)",
         " function user home team cluster", 1, L"7"},
        {R"(,"nubo_cluster_support":1,"nubo_cluster_status":0,"nubo_cluster_slave_id":"n1")",
         " function user home team cluster", 0, L""},
        {R"(,"nubo_cluster_support":1,"nubo_cluster_status":-2,"nubo_cluster_slave_id":"n1")",
         " function user home team cluster", -2, L""},
        {R"(,"nubo_cluster_support":1,"nubo_cluster_slave_id":"n1")", " function user home team cluster", 0,
         L""},
        {R"(,"nubo_cluster_support":1,"nubo_cluster_status":1)", " function user home team cluster", 1, L""},
        {R"(,"nubo_cluster_support":0,"nubo_cluster_status":1,"nubo_cluster_slave_id":"n1")",
         " function user home team", 0, L""},
        {R"(,"nubo_cluster_support":2,"nubo_cluster_status":1,"nubo_cluster_slave_id":"n1")",
         " function user home team", 0, L""},
        {R"(,"nubo_cluster_status":1,"nubo_cluster_slave_id":"n1")", " function user home team", 0, L""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.more);
        CGetTorviInfoJson info;
        EXPECT_EQ(parse(info, reply(row.more)), 1);
        EXPECT_TRUE(info.GetResult());
        EXPECT_EQ(wordsOf(info), row.words);
        EXPECT_EQ(info.clusterStatus, row.status);
        EXPECT_EQ(info.slaveId, row.slaveId);
    }
}

TEST(CGetTorviInfoJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CGetTorviInfoJson>(
        {R"({"nubo_function_enable":99999999999})",
         reply(R"(,"nubo_cluster_support":1,"nubo_cluster_status":1,"nubo_cluster_slave_id":["n1"])")});
    // Where there is no cluster the id isn't looked at.
    CGetTorviInfoJson info;
    EXPECT_EQ(parse(info, reply(R"(,"nubo_cluster_slave_id":["n1"])")), 1);
}
