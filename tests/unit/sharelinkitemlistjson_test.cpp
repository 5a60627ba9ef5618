#include "sharing/ShareLinkItemListJson.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parsing.h"
#include "support/linkrecords.h"

namespace {

using Lines = std::vector<std::string>;

Lines itemsOf(const std::string& datas) {
    CShareLinkItemListJson reply;
    EXPECT_EQ(parse(reply, R"({"total":1,"datas":[)" + datas + "]}"), 1) << datas.substr(0, 200);
    return describeAll(reply.items);
}

}  // namespace

TEST(CShareLinkItemListJson, BeginsWithNothingLearnt) {
    const CShareLinkItemListJson reply;
    EXPECT_EQ(reply.total, 0u);
    EXPECT_TRUE(reply.items.empty());
}

TEST(CShareLinkItemListJson, ReadsTheTotalAndTheItems) {
    CShareLinkItemListJson reply;
    EXPECT_EQ(parse(reply, R"({"status":4,"total":"9","datas":[{"filename":"書","isfolder":1},
        {"filename":"b c","isfolder":0},{"filename":"d"},{"isfolder":"1"},{}]})"),
              1);
    EXPECT_EQ(reply.total, 9u);
    EXPECT_EQ(describeAll(reply.items), (Lines{"file=書 folder", "file=b c", "file=d", "folder", ""}));
}

TEST(CShareLinkItemListJson, ATotalBelowOneEndsTheParseWithNothing) {
    for (const char* total : {"", R"("total":0,)", R"("total":-1,)", R"("total":null,)", R"("total":"0",)"}) {
        CShareLinkItemListJson reply;
        EXPECT_EQ(parse(reply, "{" + std::string(total) + R"("datas":[{"filename":"a"}]})"), 1);
        EXPECT_EQ(reply.total, 0u) << total;
        EXPECT_TRUE(reply.items.empty()) << total;
    }
    CShareLinkItemListJson reply;
    EXPECT_EQ(parse(reply, R"({"total":0,"datas":5})"), 1);
}

TEST(CShareLinkItemListJson, WhatHasNoRoomIsCountedAlone) {
    CShareLinkItemListJson reply;
    reply.room = 2;
    EXPECT_EQ(parse(reply, R"({"total":9,"datas":[{"filename":"a"},{},{"filename":"c"},{},{}]})"), 1);
    EXPECT_EQ(reply.number, 5u);
    EXPECT_EQ(describeAll(reply.items), (Lines{"file=a", ""}));
}

TEST(CShareLinkItemListJson, AListMayBeMissing) {
    for (const char* text : {R"({"total":3})", R"({"total":3,"datas":null})", R"({"total":3,"datas":[]})"}) {
        CShareLinkItemListJson reply;
        EXPECT_EQ(parse(reply, text), 1);
        EXPECT_EQ(reply.total, 3u);
        EXPECT_TRUE(reply.items.empty());
    }
}

TEST(CShareLinkItemListJson, ANameHasUpTo2047Characters) {
    const std::string longest(2047, 'x');
    EXPECT_EQ(itemsOf(R"({"filename":")" + longest + "\"}"), Lines{"file=" + longest});
    EXPECT_EQ(itemsOf(R"({"filename":")" + longest + "x\"}"), Lines{""});
}

TEST(CShareLinkItemListJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CShareLinkItemListJson>(
        {R"({"total":99999999999})", R"({"total":1,"datas":{}})", R"({"total":1,"datas":"x"})",
         R"({"total":1,"datas":[{"filename":[]}]})", R"({"total":1,"datas":[{"isfolder":99999999999}]})"});
    EXPECT_EQ(itemsOf(R"(null,5,"x",[],{"filename":"a"})"), Lines{"file=a"});
}
