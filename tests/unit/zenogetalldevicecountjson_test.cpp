#include "cloud/ZenoGetAllDeviceCountJson.h"

#include <gtest/gtest.h>

#include <string>

#include "cloudcodes.h"

namespace {

int countOf(const std::string& keys) {
    CZenoGetAllDeviceCountJson reply;
    EXPECT_EQ(parse(reply, "{" + keys + "}"), 1) << keys;
    return reply.count;
}

}  // namespace

TEST(CZenoGetAllDeviceCountJson, TellsTheCode) {
    expectReadsCodes<CZenoGetAllDeviceCountJson>();
}

TEST(CZenoGetAllDeviceCountJson, ReadsTheCount) {
    EXPECT_EQ(CZenoGetAllDeviceCountJson().count, 0);
    EXPECT_EQ(countOf(R"("code":0,"result":3)"), 3);
    EXPECT_EQ(countOf(R"("result":"4","code":"0")"), 4);
    EXPECT_EQ(countOf(R"("code":0,"result":2147483647)"), 2147483647);
}

TEST(CZenoGetAllDeviceCountJson, WhatIsNoCountIsNone) {
    for (const char* result : {"0", "-1", "null", "[]", "{\"count\":3}", "\"-3\"", "\"three\"", "true"})
        EXPECT_EQ(countOf(R"("code":0,"result":)" + std::string(result)), 0) << result;
    EXPECT_EQ(countOf(R"("code":0)"), 0);
}

TEST(CZenoGetAllDeviceCountJson, ARefusalHasNoCount) {
    EXPECT_EQ(countOf(R"("code":1013002,"result":3)"), 0);
    EXPECT_EQ(countOf(R"("result":3)"), 0);
    EXPECT_EQ(countOf(R"("code":1,"result":99999999999)"), 0);
}

TEST(CZenoGetAllDeviceCountJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CZenoGetAllDeviceCountJson>(
        {R"({"code":99999999999})", R"({"code":0,"result":99999999999})", R"({"code":0,"result":-1e30})"});
}
