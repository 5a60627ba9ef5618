#include "transfer/GenVersioningSigJson.h"

#include <gtest/gtest.h>

#include "parsing.h"

TEST(GenVersioningSigJson, BeginsWithNothingLearnt) {
    const CGenVersioningSigJson reply;
    EXPECT_FALSE(reply.IsSuccess());
    EXPECT_EQ(reply.GetStatus(), 0);
    EXPECT_EQ(std::wstring(reply.GetPid()), L"");
    EXPECT_EQ(std::wstring(reply.GetVersionID()), L"");
}

TEST(GenVersioningSigJson, ReadsTheIdsOfASuccessAlone) {
    const struct {
        const char* reply;
        bool success;
        int status;
        const wchar_t *pid, *versionID;
    } rows[] = {
        {R"({"status":1,"pid":"j-17","version_id":"v-1"})", true, 1, L"j-17", L"v-1"},
        {R"({"status":33,"pid":4711,"version_id":8})", true, 33, L"4711", L"8"},
        {R"({"status":"34","pid":"j-17"})", true, 34, L"j-17", L""},
        {R"({"status":1})", true, 1, L"", L""},
        {R"({"status":1,"pid":null,"version_id":null})", true, 1, L"", L""},
        {R"({"status":2,"pid":"j-17","version_id":"v-1"})", false, 2, L"", L""},
        {R"({"status":0,"pid":"j-17","version_id":"v-1"})", false, 0, L"", L""},
        {R"({"status":32,"pid":"j-17"})", false, 32, L"", L""},
        {R"({"status":35,"pid":"j-17"})", false, 35, L"", L""},
        {R"({"status":-1,"pid":["j-17"]})", false, -1, L"", L""},
        {R"({"status":null,"pid":"j-17"})", false, 0, L"", L""},
        {R"({"pid":"j-17","version_id":"v-1"})", false, 0, L"", L""},
        {"{}", false, 0, L"", L""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        CGenVersioningSigJson reply;
        EXPECT_EQ(parse(reply, row.reply), 1);
        EXPECT_EQ(reply.IsSuccess(), row.success);
        EXPECT_EQ(reply.GetStatus(), row.status);
        EXPECT_EQ(std::wstring(reply.GetPid()), row.pid);
        EXPECT_EQ(std::wstring(reply.GetVersionID()), row.versionID);
    }
}

TEST(GenVersioningSigJson, AnIdNeverOverrunsItsField) {
    for (const size_t length : {size_t{259}, size_t{260}, size_t{2047}, size_t{5000}}) {
        const std::string id(length, 'x');
        CGenVersioningSigJson reply;
        EXPECT_EQ(parse(reply, R"({"status":1,"pid":")" + id + R"(","version_id":")" + id + "\"}"), 1);
        EXPECT_TRUE(reply.IsSuccess());
        for (const std::wstring& text : {std::wstring(reply.GetPid()), std::wstring(reply.GetVersionID())}) {
            EXPECT_LE(text.size(), 259u) << length;
            if (length == 259) {
                EXPECT_EQ(text.size(), 259u);
            }
        }
    }
}

TEST(GenVersioningSigJson, RefusesWhatIsNoObjectOrCannotBeRead) {
    for (const char* text :
         {"", "sorry", R"({"status":1)", "[]", "\"text\"", "5", "null", R"({"status":4294967296})",
          R"({"status":1,"pid":[]})", R"({"status":33,"version_id":{}})"}) {
        CGenVersioningSigJson reply;
        EXPECT_EQ(parse(reply, text), -1) << text;
    }
    CGenVersioningSigJson reply;
    EXPECT_EQ(reply.Parser(nullptr), -1);
}
