#include "transfer/GetVersioningLockResultJson.h"

#include <gtest/gtest.h>

#include "parsing.h"

TEST(GetVersioningLockResultJson, BeginsWithNothingLearnt) {
    const CGetVersioningLockResultJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(std::wstring(reply.GetLockID()), L"");
    EXPECT_EQ(std::wstring(reply.GetVersionID()), L"");
}

TEST(GetVersioningLockResultJson, ReadsTheServersOwnNumberAndTheIds) {
    const struct {
        const char* reply;
        int status;
        const wchar_t *lockID, *versionID;
    } rows[] = {
        {R"({"status":1,"lockid":"lock-1","version_id":"version-1"})", 1, L"lock-1", L"version-1"},
        {R"({"status":"1","lockid":7,"version_id":8})", 1, L"7", L"8"},
        {R"({"status":33,"lockid":"lock-1"})", 33, L"lock-1", L""},
        {R"({"status":-4,"lockid":null,"version_id":"version-1"})", -4, L"", L"version-1"},
        {R"({"status":0})", 0, L"", L""},
        {R"({"status":1,"lock_id":"lock-1","versionid":"version-1"})", 1, L"", L""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        CGetVersioningLockResultJson reply;
        EXPECT_EQ(parse(reply, row.reply), 1);
        EXPECT_EQ(reply.GetStatus(), row.status);
        EXPECT_EQ(std::wstring(reply.GetLockID()), row.lockID);
        EXPECT_EQ(std::wstring(reply.GetVersionID()), row.versionID);
    }
}

TEST(GetVersioningLockResultJson, RefusesAReplyWithoutAStatusAndWhatCannotBeRead) {
    for (const char* text :
         {"", "sorry", R"({"status":1)", "[]", "\"text\"", "5", "null", "{}", R"({"status":null})",
          R"({"lockid":"lock-1","version_id":"version-1"})", R"({"status":4294967296})",
          R"({"status":1,"lockid":[]})", R"({"status":1,"version_id":{}})"}) {
        CGetVersioningLockResultJson reply;
        EXPECT_EQ(parse(reply, text), -1) << text;
    }
    CGetVersioningLockResultJson reply;
    EXPECT_EQ(reply.Parser(nullptr), -1);
}
