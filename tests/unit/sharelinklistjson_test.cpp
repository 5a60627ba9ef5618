#include "sharing/ShareLinkListJson.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parsing.h"
#include "support/linkrecords.h"

namespace {

using Lines = std::vector<std::string>;

Lines linksOf(const std::string& datas) {
    CShareLinkListJson reply;
    EXPECT_EQ(parse(reply, R"({"status":1,"datas":[)" + datas + "]}"), 1) << datas.substr(0, 200);
    return describeAll(reply.links);
}

}  // namespace

TEST(CShareLinkListJson, BeginsWithNothingLearnt) {
    const CShareLinkListJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.maxShareFile, 0);
    EXPECT_EQ(reply.total, 0);
    EXPECT_EQ(reply.number, 0u);
    EXPECT_TRUE(reply.links.empty());
}

TEST(CShareLinkListJson, ReadsEachFieldFromItsKey) {
    CShareLinkListJson reply;
    EXPECT_EQ(parse(reply, R"({"status":1,"max_share_file":"50","total":7,"datas":[
        {"ssid":"s1","filename":"書.txt","download_link":"http://nas/share.cgi?ssid=s1","creator":"ann",
         "link_name":"for bob","isfolder":1,"multiple":0},
        {"ssid":"s2","filename":"d","isfolder":"0","multiple":"2"}]})"),
              1);
    EXPECT_EQ(reply.GetStatus(), 1);
    EXPECT_EQ(reply.maxShareFile, 50);
    EXPECT_EQ(reply.total, 7);
    EXPECT_EQ(describeAll(reply.links),
              (Lines{"ssid=s1 file=書.txt link=http://nas/share.cgi?ssid=s1 creator=ann name=for bob folder",
                     "ssid=s2 file=d multiple"}));
}

TEST(CShareLinkListJson, EveryKeyOfALinkIsOptional) {
    EXPECT_EQ(linksOf(R"({},{"filename":"a"},{"ssid":null,"filename":null,"isfolder":null})"),
              (Lines{"", "file=a", ""}));
}

TEST(CShareLinkListJson, Minus3EndsTheParseAndNoOtherStatusDoes) {
    const std::string rest = R"(,"max_share_file":5,"total":1,"datas":[{"filename":"a"}]})";
    CShareLinkListJson refused;
    EXPECT_EQ(parse(refused, R"({"status":-3)" + rest), 1);
    EXPECT_EQ(refused.GetStatus(), -3);
    EXPECT_EQ(refused.maxShareFile, 0);
    EXPECT_EQ(refused.total, 0);
    EXPECT_TRUE(refused.links.empty());
    for (const int status : {0, 1, 3, 4, -1, -4}) {
        CShareLinkListJson reply;
        EXPECT_EQ(parse(reply, R"({"status":)" + std::to_string(status) + rest), 1);
        EXPECT_EQ(reply.GetStatus(), status);
        EXPECT_EQ(reply.total, 1);
        EXPECT_EQ(reply.links.size(), 1u);
    }
}

TEST(CShareLinkListJson, ANegativeTotalIsNone) {
    CShareLinkListJson reply;
    EXPECT_EQ(parse(reply, R"({"status":1,"total":-5,"datas":[{"filename":"a"}]})"), 1);
    EXPECT_EQ(reply.total, 0);
    EXPECT_EQ(reply.links.size(), 1u);
}

TEST(CShareLinkListJson, WhatHasNoRoomIsCountedAlone) {
    CShareLinkListJson reply;
    reply.room = 2;
    EXPECT_EQ(parse(reply, R"({"status":1,"datas":[{"filename":"a"},{},{"filename":"c"},{},{}]})"), 1);
    EXPECT_EQ(reply.number, 5u);
    EXPECT_EQ(describeAll(reply.links), (Lines{"file=a", ""}));
}

TEST(CShareLinkListJson, AListMayBeMissing) {
    for (const char* text : {"{}", R"({"total":3})", R"({"datas":null})", R"({"datas":[]})"}) {
        CShareLinkListJson reply;
        EXPECT_EQ(parse(reply, text), 1);
        EXPECT_TRUE(reply.links.empty());
    }
}

TEST(CShareLinkListJson, TextsAreCutToTheirFieldsAndAnIdThatDoesNotFitIsNone) {
    const std::string long2047(2047, 'x');
    const auto link = [](const std::string& text) {
        return R"({"ssid":")" + text + R"(","filename":")" + text + R"(","download_link":")" + text +
               R"(","creator":")" + text + R"(","link_name":")" + text + "\"}";
    };
    const std::string cut(259, 'x');
    EXPECT_EQ(linksOf(link(cut)),
              Lines{"ssid=" + cut + " file=" + cut + " link=" + cut + " creator=" + cut + " name=" + cut});
    EXPECT_EQ(linksOf(link(cut + "x")),
              Lines{"file=" + cut + "x link=" + cut + "x creator=" + cut + " name=" + cut});
    EXPECT_EQ(linksOf(link(long2047)),
              Lines{"file=" + long2047 + " link=" + long2047 + " creator=" + cut + " name=" + cut});
    // What the conversion can't take is lost.
    EXPECT_EQ(linksOf(link(long2047 + "x")), Lines{""});
}

TEST(CShareLinkListJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CShareLinkListJson>(
        {R"({"status":99999999999})", R"({"total":99999999999})", R"({"max_share_file":99999999999})",
         R"({"datas":{}})", R"({"datas":"x"})", R"({"datas":[{"ssid":[]}]})",
         R"({"datas":[{"filename":{}}]})", R"({"datas":[{"isfolder":[]}]})",
         R"({"datas":[{"multiple":99999999999}]})"});
    EXPECT_EQ(linksOf(R"(null,5,"x",[],{"filename":"a"})"), Lines{"file=a"});
}
