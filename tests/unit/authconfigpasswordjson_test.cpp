#include "config/AuthConfigPasswordJson.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "parsing.h"

TEST(CAuthConfigPasswordJson, ReadsTheServersNumber) {
    for (const auto& [sent, number] : {std::pair{"0", 0},
                                       {"1", 1},
                                       {"-2", -2},
                                       {"\"7\"", 7},
                                       {"2147483647", 2147483647},
                                       {"null", -1},
                                       {"[]", -1}}) {
        CAuthConfigPasswordJson reply;
        EXPECT_EQ(parse(reply, R"({"auth_result":)" + std::string(sent) + "}"), 1);
        EXPECT_EQ(reply.GetStatus(), 0);
        EXPECT_EQ(reply.authResult, number) << sent;
    }
}

TEST(CAuthConfigPasswordJson, WithoutANumberItIsMinus1) {
    CAuthConfigPasswordJson reply;
    EXPECT_EQ(reply.authResult, -1);
    EXPECT_EQ(parse(reply, "{}"), 1);
    EXPECT_EQ(reply.authResult, -1);
}

TEST(CAuthConfigPasswordJson, ARefusalHasNoNumber) {
    CAuthConfigPasswordJson reply;
    EXPECT_EQ(parse(reply, R"({"status":-3,"auth_result":1})"), 1);
    EXPECT_EQ(reply.authResult, -1);
}

TEST(CAuthConfigPasswordJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CAuthConfigPasswordJson>({R"({"auth_result":99999999999})"});
}
