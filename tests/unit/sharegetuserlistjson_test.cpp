#include "sharing/ShareGetUserListJson.h"

#include <gtest/gtest.h>

#include <string>

#include "parsing.h"

namespace {

std::string list(const std::string& users, const std::string& keys = R"("total":1)") {
    return "{" + keys + R"(,"user":[)" + users + "]}";
}

}  // namespace

TEST(CShareGetUserListJson, BeginsWithNothingLearnt) {
    const CShareGetUserListJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.total, 0u);
    EXPECT_TRUE(reply.users.empty());
}

TEST(CShareGetUserListJson, ReadsEachFieldFromItsKey) {
    CShareGetUserListJson reply;
    EXPECT_EQ(parse(reply, R"({"status":1,"total":"70","user":[
        {"name":"ann","policy":"rw","description":"Ann 書","torviuser":"1"},
        {"name":"bob"}]})"),
              1);
    EXPECT_EQ(reply.GetStatus(), 1);
    EXPECT_EQ(reply.total, 70u);
    ASSERT_EQ(reply.users.size(), 2u);
    EXPECT_EQ(reply.users[0].name, L"ann");
    EXPECT_EQ(reply.users[0].policy, L"rw");
    EXPECT_EQ(reply.users[0].description, L"Ann 書");
    EXPECT_EQ(reply.users[0].torviUser, 1);
    EXPECT_EQ(reply.users[1].name, L"bob");
    EXPECT_EQ(reply.users[1].policy + reply.users[1].description, L"");
    EXPECT_EQ(reply.users[1].torviUser, 0);
}

TEST(CShareGetUserListJson, KeepsTheServersOwnStatusAndADenialEndsTheParse) {
    const struct {
        const char* keys;
        int status;
        uint32_t total;
        size_t users;
    } rows[] = {{R"("status":1,"total":5)", 1, 5, 1},
                {R"("status":"4","total":5)", 4, 5, 1},
                {R"("status":-4,"total":5)", -4, 5, 1},
                {R"("total":5)", -1, 5, 1},
                {R"("status":1,"total":-5)", 1, 0, 1},
                {R"("status":-3,"total":5)", -3, 0, 0},
                {R"("status":"-3","total":99999999999)", -3, 0, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.keys);
        CShareGetUserListJson reply;
        EXPECT_EQ(parse(reply, list(R"({"name":"a"})", row.keys)), 1);
        EXPECT_EQ(reply.GetStatus(), row.status);
        EXPECT_EQ(reply.total, row.total);
        EXPECT_EQ(reply.users.size(), row.users);
    }
}

TEST(CShareGetUserListJson, AUserNeedsAName) {
    CShareGetUserListJson reply;
    EXPECT_EQ(parse(reply, list(R"({"policy":"rw"},{"name":null},5,null,[],{"name":"a"},{"name":""})")), 1);
    ASSERT_EQ(reply.users.size(), 2u);
    EXPECT_EQ(reply.users[0].name, L"a");
    EXPECT_EQ(reply.users[1].name, L"");
}

TEST(CShareGetUserListJson, OnlyTheDescriptionIsReadWhateverItsLength) {
    for (const size_t length : {size_t{2047}, size_t{2048}, size_t{100000}}) {
        const std::string text = '"' + std::string(length, 'x') + '"';
        CShareGetUserListJson reply;
        EXPECT_EQ(parse(reply, list(R"({"name":)" + text + R"(,"policy":)" + text + R"(,"description":)" +
                                    text + "}")),
                  1);
        ASSERT_EQ(reply.users.size(), 1u);
        const std::wstring read(length < 2048 ? length : 0, L'x');
        EXPECT_EQ(reply.users[0].name, read);
        EXPECT_EQ(reply.users[0].policy, read);
        EXPECT_EQ(reply.users[0].description, std::wstring(length, L'x'));
    }
}

TEST(CShareGetUserListJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CShareGetUserListJson>(
        {R"({"status":99999999999})", R"({"total":99999999999})", R"({"user":{}})", R"({"user":"x"})",
         list(R"({"name":[]})"), list(R"({"name":"a","policy":{}})"),
         list(R"({"name":"a","description":[]})"), list(R"({"name":"a","torviuser":99999999999})")});
    for (const char* text : {"{}", R"({"user":null})", R"({"total":5,"user":[]})"}) {
        CShareGetUserListJson reply;
        EXPECT_EQ(parse(reply, text), 1);
        EXPECT_TRUE(reply.users.empty());
    }
}
