#include "transfer/GetVersioningUnLockResultJson.h"

#include <gtest/gtest.h>

#include "parsing.h"

TEST(GetVersioningUnLockResultJson, BeginsWithNothingLearnt) {
    const CGetVersioningUnLockResultJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
}

TEST(GetVersioningUnLockResultJson, ReadsTheServersOwnNumber) {
    const std::pair<const char*, int> rows[] = {
        {"1", 1}, {R"("1")", 1}, {"0", 0}, {"4", 4}, {"33", 33}, {"-101", -101}, {"2147483647", 2147483647},
    };
    for (const auto& [value, expected] : rows) {
        CGetVersioningUnLockResultJson reply;
        EXPECT_EQ(parse(reply, std::string(R"({"status":)") + value + "}"), 1) << value;
        EXPECT_EQ(reply.GetStatus(), expected) << value;
    }
}

TEST(GetVersioningUnLockResultJson, RefusesAReplyWithoutAStatusAndWhatCannotBeRead) {
    for (const char* text : {"", "sorry", R"({"status":1)", "[]", "\"text\"", "5", "null", "{}",
                             R"({"status":null})", R"({"success":"true"})", R"({"status":4294967296})"}) {
        CGetVersioningUnLockResultJson reply;
        EXPECT_EQ(parse(reply, text), -1) << text;
        EXPECT_EQ(reply.GetStatus(), -1) << text;
    }
    CGetVersioningUnLockResultJson reply;
    EXPECT_EQ(reply.Parser(nullptr), -1);
}
