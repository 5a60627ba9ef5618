#include "session/GetSystemJson.h"

#include <gtest/gtest.h>

#include "parsing.h"

TEST(CGetSystemJson, BeginsWithNothingLearnt) {
    const CGetSystemJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.GetSid(), L"");
}

TEST(CGetSystemJson, EveryRefusalIsTheSame) {
    const struct {
        const char* reply;
        int status;
        const wchar_t* sid;
    } rows[] = {
        {R"({"status":1,"sid":"s1"})", 0, L"s1"},
        {R"({"status":"1","sid":7})", 0, L"7"},
        {R"({"status":1})", 0, L""},
        {R"({"status":0,"sid":"s1"})", -3, L"s1"},
        {R"({"status":4,"sid":"s1"})", -3, L"s1"},
        {R"({"status":34})", -3, L""},
        {R"({"status":"no"})", -3, L""},
        {R"({"status":null,"sid":null})", -1, L""},
        {"{}", -1, L""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        CGetSystemJson reply;
        EXPECT_EQ(parse(reply, row.reply), 1);
        EXPECT_EQ(reply.GetStatus(), row.status);
        EXPECT_EQ(reply.GetSid(), row.sid);
    }
}

TEST(CGetSystemJson, ASidThatIsTooLongIsEmpty) {
    for (const auto& [length, fits] : {std::pair(size_t{2047}, true), {size_t{2048}, false}}) {
        CGetSystemJson reply;
        EXPECT_EQ(parse(reply, R"({"status":1,"sid":")" + std::string(length, 'x') + "\"}"), 1);
        EXPECT_EQ(reply.GetSid().size(), fits ? length : 0);
    }
}

TEST(CGetSystemJson, RefusesWhatCannotBeRead) {
    for (const char* text : {"", "sorry", "[]", "5", "null", R"({"status":1)", R"({"status":4294967296})",
                             R"({"status":1,"sid":[]})"}) {
        CGetSystemJson reply;
        EXPECT_EQ(parse(reply, text), -1) << text;
    }
    CGetSystemJson reply;
    EXPECT_EQ(reply.Parser(nullptr), -1);
}
