#include "cloud/PeltGetNASInfoJson.h"

#include <gtest/gtest.h>

#include "parsing.h"

TEST(CPeltGetNASInfoJson, BeginsWithNothingLearnt) {
    const CPeltGetNASInfoJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.GetHttpCode(), 0);
    EXPECT_EQ(reply.GetCloudAPIResponseCode(), 1);
}

TEST(CPeltGetNASInfoJson, ReadsTheLink) {
    CPeltGetNASInfoJson reply;
    EXPECT_EQ(parse(reply, R"({"return":{"StatusCode":{"code":"200","message":"Access successfully."},
        "vlinkId":"L-1","vlinkType":"t","vlinkVersion":3,"lanIp":"10.0.0.2","lanGW":"10.0.0.1",
        "wanIp":"192.0.2.7","actTime":"noon"}})"),
              1);
    EXPECT_EQ(reply.GetStatus(), 0);
    EXPECT_EQ(reply.GetHttpCode(), 200);
    EXPECT_EQ(reply.GetMessage(), L"Access successfully.");
    EXPECT_EQ(reply.GetVLinkId(), L"L-1");
    EXPECT_EQ(reply.GetVLinkType(), L"t");
    EXPECT_EQ(reply.GetVLinkVersion(), L"3");
    EXPECT_EQ(reply.GetLANIPs(), L"10.0.0.2");
    EXPECT_EQ(reply.GetGatewayIP(), L"10.0.0.1");
    EXPECT_EQ(reply.GetWANIP(), L"192.0.2.7");
    EXPECT_EQ(reply.GetactTime(), L"noon");
}

TEST(CPeltGetNASInfoJson, WhatIsNotThereIsEmpty) {
    for (const char* text : {"{}", R"({"return":{}})", R"({"return":null})",
                             R"({"vlinkId":"L-1","lanIp":"10.0.0.2","code":"200","actTime":"noon"})"}) {
        SCOPED_TRACE(text);
        CPeltGetNASInfoJson reply;
        EXPECT_EQ(parse(reply, text), 1);
        EXPECT_EQ(reply.GetStatus(), -1);
        EXPECT_EQ(reply.GetHttpCode(), 0);
        EXPECT_EQ(reply.GetCloudAPIResponseCode(), 1);
        EXPECT_EQ(reply.GetVLinkId() + reply.GetLANIPs() + reply.GetactTime() + reply.GetMessage(), L"");
    }
}

TEST(CPeltGetNASInfoJson, TellsItsMessagesApart) {
    const std::pair<const char*, int> rows[] = {{"Access successfully.", 0},
                                                {"Get device name failed.", 5},
                                                {"The device is not found.", 5},
                                                {"The device status is not found.", 5},
                                                {"Get device failed.", 5},
                                                {"X-VEXA-TIME is invalid.", 2},
                                                {"The vlink configuration is not found.", 6},
                                                {"The app id is not found.", 7},
                                                {"The checksum X-VEXA-CHECK is invalid.", 8},
                                                {"The moon is full.", 1}};
    for (const auto& [message, code] : rows) {
        SCOPED_TRACE(message);
        CPeltGetNASInfoJson reply;
        EXPECT_EQ(parse(reply, R"({"return":{"code":"404","message":")" + std::string(message) + "\"}}"), 1);
        EXPECT_EQ(reply.GetCloudAPIResponseCode(), code);
        EXPECT_EQ(reply.GetHttpCode(), 404);
        EXPECT_EQ(reply.GetStatus(), -1);
    }
}

TEST(CPeltGetNASInfoJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CPeltGetNASInfoJson>(
        {R"({"return":"no"})", R"({"return":[]})", R"({"return":{"StatusCode":200}})",
         R"({"return":{"message":{}}})", R"({"return":{"lanIp":["10.0.0.2"]}})"});
}
