#include "sharing/FindTorviShareInfoJson.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parsing.h"
#include "support/teamrecords.h"

namespace {

using Lines = std::vector<std::string>;

/// A reply with one share of that folder.
std::string shareOf(const std::string& file, const std::string& keys = R"("total":1)") {
    return "{" + keys + R"(,"event":[{"file":")" + file +
           R"(","event_type":4,"event_status":5,"share_id":"s"}]})";
}

Lines foundBelow(const std::wstring& filter, const std::string& text) {
    CFindTorviShareInfoJson reply;
    reply.SetFilter(filter);
    EXPECT_EQ(parse(reply, text), 1) << text.substr(0, 200);
    return describeAll(reply.shares);
}

}  // namespace

TEST(CFindTorviShareInfoJson, BeginsWithNothingLearnt) {
    const CFindTorviShareInfoJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_TRUE(reply.shares.empty());
}

TEST(CFindTorviShareInfoJson, NeedsAFilter) {
    CFindTorviShareInfoJson reply;
    EXPECT_EQ(parse(reply, shareOf("/a")), -1);
    EXPECT_EQ(reply.GetStatus(), -1);
}

TEST(CFindTorviShareInfoJson, FindsWhatLiesBelowTheFilter) {
    const Lines found = {"type=4 status=5 file=/A/B/c share=s"};
    EXPECT_EQ(foundBelow(L"/a/b", shareOf("/A/B/c")), found);
    EXPECT_EQ(foundBelow(L"/a/b/", shareOf("/A/B/c")), found);
    EXPECT_EQ(foundBelow(L"/", shareOf("/A/B/c")), found);
    EXPECT_EQ(foundBelow(L"/a/b", shareOf("/a/bc")), Lines{});
    EXPECT_EQ(foundBelow(L"/a/b", shareOf("/a/b")), Lines{});
    // The folder itself, where the server writes it as a folder.
    EXPECT_EQ(foundBelow(L"/a/b", shareOf("/A/B/")), Lines{"type=4 status=5 file=/A/B/ share=s"});
    EXPECT_EQ(foundBelow(L"/a/b/c/d", shareOf("/a/b/c")), Lines{});
}

TEST(CFindTorviShareInfoJson, ARefusalAndAMissingTotalEndTheParse) {
    const struct {
        const char* keys;
        int status;
        size_t shares;
    } rows[] = {{R"("total":1)", 0, 1},
                {R"("status":1,"total":"2")", 0, 1},
                {R"("status":1)", 0, 0},
                {R"("status":1,"total":0)", 0, 0},
                {R"("status":1,"total":-1)", 0, 1},
                {R"("status":4,"total":1)", -3, 0},
                {R"("status":0,"total":1)", -2, 0}};
    for (const auto& row : rows) {
        CFindTorviShareInfoJson reply;
        reply.SetFilter(L"/a");
        EXPECT_EQ(parse(reply, shareOf("/a/b", row.keys)), 1);
        EXPECT_EQ(reply.GetStatus(), row.status) << row.keys;
        EXPECT_EQ(reply.shares.size(), row.shares) << row.keys;
    }
}

TEST(CFindTorviShareInfoJson, RefusesAllButObjects) {
    for (const std::string& text :
         {std::string(), std::string("sorry"), std::string("[]"), std::string("5"), std::string("null"),
          std::string(R"({"total":1)"), std::string(5000, '['), std::string(R"({"total":1,"event":{}})"),
          std::string(R"({"total":1,"event":[{"file":{}}]})"), std::string(R"({"status":99999999999})")}) {
        CFindTorviShareInfoJson reply;
        reply.SetFilter(L"/a");
        EXPECT_EQ(parse(reply, text), -1) << text.substr(0, 100);
    }
    CFindTorviShareInfoJson reply;
    reply.SetFilter(L"/a");
    EXPECT_EQ(reply.Parser(nullptr), -1);
}
