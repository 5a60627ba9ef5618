#include "sharing/ShareGetPolicyJson.h"

#include <gtest/gtest.h>

#include "parsing.h"

TEST(CShareGetPolicyJson, BeginsWithZero) {
    EXPECT_EQ(CShareGetPolicyJson().GetPolicy(), 0u);
}

TEST(CShareGetPolicyJson, TheServersNumberIsThePolicy) {
    const struct {
        const char* reply;
        uint32_t policy;
    } rows[] = {{R"({"share_policy":2})", 2},      {R"({"share_policy":"7"})", 7},
                {R"({"share_policy":0})", 0},      {R"({"share_policy":-1})", 0xFFFFFFFF},
                {R"({"share_policy":true})", 0},   {R"({"share_policy":null})", 0},
                {R"({"status":1,"policy":3})", 0}, {"{}", 0}};
    for (const auto& row : rows) {
        CShareGetPolicyJson reply;
        EXPECT_EQ(parse(reply, row.reply), 1);
        EXPECT_EQ(reply.GetPolicy(), row.policy) << row.reply;
    }
}

TEST(CShareGetPolicyJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CShareGetPolicyJson>({R"({"share_policy":99999999999})"});
}
