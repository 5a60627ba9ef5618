// The status of the replies on device configuration: five parsers with one rule.

#include <gtest/gtest.h>

#include <string>

#include "config/AuthConfigPasswordJson.h"
#include "config/GetConfigACLInfoJson.h"
#include "config/GetConfigItemInfoJson.h"
#include "config/GetConfigNotifyItemInfoJson.h"
#include "config/GetDeviceListJson.h"
#include "parsing.h"

namespace {

template <class Parser>
class ConfigStatus : public testing::Test {};

struct ParserNames {
    template <class Parser>
    static std::string GetName(int number) {
        const char* names[] = {"Password", "ACL", "Item", "Notify", "DeviceList"};
        return names[number];
    }
};

using Parsers = testing::Types<CAuthConfigPasswordJson, CGetConfigACLInfoJson, CGetConfigItemInfoJson,
                               CGetConfigNotifyItemInfoJson, CGetDeviceListJson>;
TYPED_TEST_SUITE(ConfigStatus, Parsers, ParserNames);

}  // namespace

TYPED_TEST(ConfigStatus, BeginsWithNothingLearnt) {
    EXPECT_EQ(TypeParam().GetStatus(), -1);
}

TYPED_TEST(ConfigStatus, NoneIsASuccess) {
    for (const char* text : {"{}", R"({"total":1,"STATUS":5})"}) {
        TypeParam reply;
        EXPECT_EQ(parse(reply, text), 1);
        EXPECT_EQ(reply.GetStatus(), 0) << text;
    }
}

TYPED_TEST(ConfigStatus, ARefusalIsUnderstoodAndNothingElseIsRead) {
    for (const char* text : {R"({"status":-3})", R"({"status":"-3"})", R"({"status":-3.0})",
                             R"({"status":-3,"total":99999999999,"config":5,"event":5,"device":5})"}) {
        TypeParam reply;
        EXPECT_EQ(parse(reply, text), 1) << text;
        EXPECT_EQ(reply.GetStatus(), -4) << text;
    }
}

TYPED_TEST(ConfigStatus, AnyOtherIsNotUnderstood) {
    for (const char* status : {"1", "0", "-1", "-4", "3", "\"0\"", "\"\"", "null", "true", "[]", "{}", "[-3]",
                               "2147483647", "-2147483648"}) {
        TypeParam reply;
        EXPECT_EQ(parse(reply, R"({"status":)" + std::string(status) + "}"), -1) << status;
        EXPECT_EQ(reply.GetStatus(), -1) << status;
    }
}

TYPED_TEST(ConfigStatus, WhatCannotBeReadIsRefused) {
    expectRefusesAllButObjects<TypeParam>({R"({"status":99999999999})", R"({"status":-3)"});
}
