#include "sharing/GetShareMemberListJson.h"

#include <gtest/gtest.h>

#include <string>

#include "parsing.h"

namespace {

std::string listOf(const std::string& users, const std::string& keys = R"("status":0,"total":1)") {
    return "{" + keys + R"(,"user":[)" + users + "]}";
}

}  // namespace

TEST(CGetShareMemberListJson, BeginsWithNothingLearnt) {
    const CGetShareMemberListJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.total, 0u);
    EXPECT_TRUE(reply.members.empty());
}

TEST(CGetShareMemberListJson, ReadsEachFieldFromItsKey) {
    CGetShareMemberListJson reply;
    EXPECT_EQ(parse(reply, listOf(R"({"name":"ann","share_member":1,"event_status":2,"event_id":3,
                                      "description":"\u6587","torviuser":"4"},{},5)")),
              1);
    EXPECT_EQ(reply.GetStatus(), 0);
    EXPECT_EQ(reply.total, 1u);
    ASSERT_EQ(reply.members.size(), 2u);
    EXPECT_EQ(reply.members[0].name, L"ann");
    EXPECT_EQ(reply.members[0].shareMember, 1);
    EXPECT_EQ(reply.members[0].eventStatus, 2);
    EXPECT_EQ(reply.members[0].eventID, 3);
    EXPECT_EQ(reply.members[0].description, L"\x6587");
    EXPECT_EQ(reply.members[0].torviUser, 4);
    EXPECT_EQ(reply.members[1].name, L"");
    EXPECT_EQ(reply.members[1].description, L"");
}

TEST(CGetShareMemberListJson, OnlyTheDescriptionHasAnyLength) {
    const std::string text(2048, 'x');
    CGetShareMemberListJson reply;
    EXPECT_EQ(parse(reply, listOf(R"({"name":")" + text + R"(","description":")" + text + R"("},{"name":")" +
                                  text.substr(1) + R"("})")),
              1);
    ASSERT_EQ(reply.members.size(), 2u);
    EXPECT_EQ(reply.members[0].name, L"");
    EXPECT_EQ(reply.members[0].description.size(), 2048u);
    EXPECT_EQ(reply.members[1].name.size(), 2047u);
}

TEST(CGetShareMemberListJson, TheStatusIsTheServersAndMinus3EndsTheParse) {
    const struct {
        const char* keys;
        int status;
        uint32_t total;
        size_t members;
    } rows[] = {{R"("status":-3,"total":1)", -3, 0, 0},
                {R"("status":1,"total":1)", 1, 1, 1},
                {R"("status":"4","total":"2")", 4, 2, 1},
                {R"("total":0)", 0, 0, 1},
                {R"("status":null,"total":-1)", 0, 0, 1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.keys);
        CGetShareMemberListJson reply;
        EXPECT_EQ(parse(reply, listOf("{}", row.keys)), 1);
        EXPECT_EQ(reply.GetStatus(), row.status);
        EXPECT_EQ(reply.total, row.total);
        EXPECT_EQ(reply.members.size(), row.members);
    }
}

TEST(CGetShareMemberListJson, AListMayBeAbsent) {
    for (const char* text : {"{}", R"({"status":0,"user":null})"}) {
        CGetShareMemberListJson reply;
        EXPECT_EQ(parse(reply, text), 1);
        EXPECT_TRUE(reply.members.empty());
    }
}

TEST(CGetShareMemberListJson, RefusesAllButObjects) {
    expectRefusesAllButObjects<CGetShareMemberListJson>(
        {R"({"status":99999999999})", R"({"total":99999999999})", R"({"user":"x"})", listOf(R"({"name":[]})"),
         listOf(R"({"event_id":99999999999})")});
}
