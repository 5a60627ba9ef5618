#include "config/GetConfigACLInfoJson.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parsing.h"

namespace {

using Numbers = std::vector<uint32_t>;

Numbers numbersOf(const WFM_TORVI_CONFIG_ACL_INFO& rights) {
    return {rights.dwManagerMode, rights.dwUseManagerPassword, rights.dwClientSetConfig,
            rights.dwSmartSync,   rights.dwConflictPolicy,     rights.dwBlackFileFilter,
            rights.dwMails};
}

std::string right(const std::string& section, const std::string& key, const std::string& value = "\"1\"") {
    return R"({"section":")" + section + R"(","key":")" + key + R"(","value":)" + value + "}";
}

Numbers rightsOf(const std::string& rights) {
    CGetConfigACLInfoJson reply;
    EXPECT_EQ(parse(reply, R"({"total":7,"config":[)" + rights + "]}"), 1) << rights;
    EXPECT_EQ(reply.GetStatus(), 0);
    EXPECT_EQ(reply.total, 7);
    return numbersOf(reply.rights);
}

const Numbers kNone{0, 0, 0, 0, 0, 0, 0};

}  // namespace

TEST(CGetConfigACLInfoJson, BeginsWithNothingAllowed) {
    const CGetConfigACLInfoJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.total, 0);
    EXPECT_EQ(numbersOf(reply.rights), kNone);
    CGetConfigACLInfoJson parsed;
    EXPECT_EQ(parse(parsed, "{}"), 1);
    EXPECT_EQ(parsed.total, 0);
    EXPECT_EQ(numbersOf(parsed.rights), kNone);
}

TEST(CGetConfigACLInfoJson, EachRightHasItsSectionAndKey) {
    EXPECT_EQ(rightsOf(right("Admin", "manager mode")), (Numbers{1, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(rightsOf(right("Admin", "use manager password")), (Numbers{0, 1, 0, 0, 0, 0, 0}));
    EXPECT_EQ(rightsOf(right("Admin", "client set config")), (Numbers{0, 0, 1, 0, 0, 0, 0}));
    EXPECT_EQ(rightsOf(right("Synchronize", "smart sync")), (Numbers{0, 0, 0, 1, 0, 0, 0}));
    EXPECT_EQ(rightsOf(right("Policy", "conflict Policy")), (Numbers{0, 0, 0, 0, 1, 0, 0}));
    EXPECT_EQ(rightsOf(right("Policy", "black file filter")), (Numbers{0, 0, 0, 0, 0, 1, 0}));
    EXPECT_EQ(rightsOf(right("Mails", "all")), (Numbers{0, 0, 0, 0, 0, 0, 1}));
}

TEST(CGetConfigACLInfoJson, OnlyTheText0Denies) {
    for (const char* value : {"\"0\"", "0"})
        EXPECT_EQ(rightsOf(right("Mails", "all") + "," + right("Mails", "all", value)), kNone) << value;
    for (const char* value :
         {"\"1\"", "\"\"", "\"00\"", "\" 0\"", "\"no\"", "1", "-1", "null", "false", "\"0\\u6587\""})
        EXPECT_EQ(rightsOf(right("Mails", "all", value)).back(), 1u) << value;
    EXPECT_EQ(rightsOf(R"({"section":"Mails","key":"all"})").back(), 1u);
    EXPECT_EQ(rightsOf(right("Mails", "all", '"' + std::string(5000, '0') + '"')).back(), 1u);
}

TEST(CGetConfigACLInfoJson, NamesMatchExactly) {
    EXPECT_EQ(
        rightsOf(right("admin", "manager mode") + "," + right("Admin", "Manager mode") + "," +
                 right("Policy", "conflict policy") + "," + right("Mails", "smart sync") + "," +
                 right("Mails", "server name") + R"(,{"section":"Mails"},{"key":"all"},{},null,5,[],"x")"),
        kNone);
}

TEST(CGetConfigACLInfoJson, WhatIsNotToldIsNotAllowed) {
    for (const char* text : {"{}", R"({"config":null})", R"({"config":[]})"}) {
        CGetConfigACLInfoJson reply;
        EXPECT_EQ(parse(reply, text), 1) << text;
        EXPECT_EQ(numbersOf(reply.rights), kNone) << text;
    }
}

TEST(CGetConfigACLInfoJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CGetConfigACLInfoJson>(
        {R"({"total":99999999999})", R"({"config":{}})", R"({"config":"x"})",
         R"({"config":[{"section":[],"key":"all"}]})", R"({"config":[{"section":"Mails","key":{}}]})",
         R"({"config":[{"section":"Mails","key":"all","value":[]}]})"});
}
