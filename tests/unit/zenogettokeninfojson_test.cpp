#include "cloud/ZenoGetTokenInfoJson.h"

#include <gtest/gtest.h>

#include "parsing.h"

TEST(CZenoGetTokenInfoJson, ReadsTheOwnerOfAToken) {
    CZenoGetTokenInfoJson reply;
    EXPECT_EQ(reply.expires_in, 0);
    EXPECT_EQ(parse(reply, R"({"error":"e","error_description":"d","user_id":7001,
        "user":{"display_name":"n","email":"m"},"display_name":"other","email":"other","expires_in":60})"),
              1);
    EXPECT_EQ(reply.error, L"e");
    EXPECT_EQ(reply.error_description, L"d");
    EXPECT_EQ(reply.user_id, L"7001");
    EXPECT_EQ(reply.display_name, L"n");
    EXPECT_EQ(reply.email, L"m");
    EXPECT_EQ(reply.expires_in, 60);
}

TEST(CZenoGetTokenInfoJson, WhatIsNotThereIsEmpty) {
    for (const char* text : {"{}", R"({"user":null})", R"({"user":{},"display_name":"n","email":"m"})"}) {
        SCOPED_TRACE(text);
        CZenoGetTokenInfoJson reply;
        EXPECT_EQ(parse(reply, text), 1);
        EXPECT_EQ(reply.user_id + reply.display_name + reply.email, L"");
        EXPECT_EQ(reply.expires_in, 0);
    }
}

TEST(CZenoGetTokenInfoJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CZenoGetTokenInfoJson>({R"({"user":"anna"})", R"({"user":[]})",
                                                       R"({"user":{"email":{}}})",
                                                       R"({"expires_in":99999999999})"});
}
