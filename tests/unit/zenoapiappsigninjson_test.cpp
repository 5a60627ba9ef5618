#include "cloud/ZenoAPIAPPSigninJson.h"

#include <gtest/gtest.h>

#include "parsing.h"

TEST(CZenoAPIAPPSigninJson, ReadsATokenOrARefusal) {
    CZenoAPIAPPSigninJson reply;
    EXPECT_EQ(reply.expires_in, 0);
    EXPECT_EQ(parse(reply, R"({"error":"e","error_description":"d","access_token":"a","token_type":"t",
        "refresh_token":"r","expires_in":"3600"})"),
              1);
    EXPECT_EQ(reply.error, L"e");
    EXPECT_EQ(reply.error_description, L"d");
    EXPECT_EQ(reply.access_token, L"a");
    EXPECT_EQ(reply.token_type, L"t");
    EXPECT_EQ(reply.refresh_token, L"r");
    EXPECT_EQ(reply.expires_in, 3600);
}

TEST(CZenoAPIAPPSigninJson, WhatIsNotThereIsEmpty) {
    for (const char* text : {"{}", R"({"access_token":null,"expires_in":null})"}) {
        CZenoAPIAPPSigninJson reply;
        EXPECT_EQ(parse(reply, text), 1);
        EXPECT_EQ(reply.error + reply.error_description + reply.access_token + reply.token_type +
                      reply.refresh_token,
                  L"");
        EXPECT_EQ(reply.expires_in, 0);
    }
}

TEST(CZenoAPIAPPSigninJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CZenoAPIAPPSigninJson>(
        {R"({"error":{"code":1}})", R"({"access_token":["a"]})", R"({"expires_in":99999999999})"});
}
