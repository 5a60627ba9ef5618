#include "cloud/ZenoAPIAPPSigninJson.h"

#include <gtest/gtest.h>

#include "parsing.h"

TEST(CZenoAPIAPPSigninJson, ReadsATokenOrARefusal) {
    CZenoAPIAPPSigninJson reply;
    EXPECT_EQ(reply.expiresIn, 0);
    EXPECT_EQ(parse(reply, R"({"error":"e","error_description":"d","access_token":"a","token_type":"t",
        "refresh_token":"r","expires_in":"3600"})"),
              1);
    EXPECT_EQ(reply.error, L"e");
    EXPECT_EQ(reply.errorDescription, L"d");
    EXPECT_EQ(reply.accessToken, L"a");
    EXPECT_EQ(reply.tokenType, L"t");
    EXPECT_EQ(reply.refreshToken, L"r");
    EXPECT_EQ(reply.expiresIn, 3600);
}

TEST(CZenoAPIAPPSigninJson, WhatIsNotThereIsEmpty) {
    for (const char* text : {"{}", R"({"access_token":null,"expires_in":null})"}) {
        CZenoAPIAPPSigninJson reply;
        EXPECT_EQ(parse(reply, text), 1);
        EXPECT_EQ(
            reply.error + reply.errorDescription + reply.accessToken + reply.tokenType + reply.refreshToken,
            L"");
        EXPECT_EQ(reply.expiresIn, 0);
    }
}

TEST(CZenoAPIAPPSigninJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CZenoAPIAPPSigninJson>(
        {R"({"error":{"code":1}})", R"({"access_token":["a"]})", R"({"expires_in":99999999999})"});
}
