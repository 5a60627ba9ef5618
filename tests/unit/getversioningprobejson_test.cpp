#include "transfer/GetVersioningProbeJson.h"

#include <gtest/gtest.h>

#include "parsing.h"

TEST(GetVersioningProbeJson, BeginsWithNothingLearnt) {
    const CGetVersioningProbeJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_FALSE(reply.IsVersioningEnabled());
    EXPECT_FALSE(reply.IsSyncVersioningEnabled());
    EXPECT_EQ(std::wstring(reply.GetVersion()), L"");
}

TEST(GetVersioningProbeJson, ReadsItsFourFields) {
    const struct {
        const char* reply;
        int status;
        bool versioning, syncVersioning;
        const wchar_t* version;
    } rows[] = {
        {R"({"status":1,"versioning_enable":1,"nubo_versioning_enable":1,"versioning_version":"2.1"})", 1,
         true, true, L"2.1"},
        {R"({"status":1,"versioning_enable":1})", 1, true, false, L""},
        {R"({"status":1,"nubo_versioning_enable":1})", 1, false, true, L""},
        {R"({"status":"4","versioning_enable":"1","nubo_versioning_enable":"0"})", 4, true, false, L""},
        {R"({"status":0,"versioning_enable":0,"nubo_versioning_enable":2})", 0, false, false, L""},
        {R"({"status":-101,"versioning_enable":-1,"nubo_versioning_enable":null})", -101, false, false, L""},
        {R"({"status":33,"versioning_version":3})", 33, false, false, L"3"},
        {R"({"status":1,"versioning_version":null})", 1, false, false, L""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        CGetVersioningProbeJson reply;
        EXPECT_EQ(parse(reply, row.reply), 1);
        EXPECT_EQ(reply.GetStatus(), row.status);
        EXPECT_EQ(reply.IsVersioningEnabled(), row.versioning);
        EXPECT_EQ(reply.IsSyncVersioningEnabled(), row.syncVersioning);
        EXPECT_EQ(std::wstring(reply.GetVersion()), row.version);
    }
}

TEST(GetVersioningProbeJson, RefusesAReplyWithoutAStatusAndWhatCannotBeRead) {
    for (const char* text :
         {"", "sorry", R"({"status":1)", "[]", "\"text\"", "5", "null", "{}", R"({"status":null})",
          R"({"versioning_enable":1,"versioning_version":"2.1"})", R"({"status":4294967296})",
          R"({"status":1,"versioning_enable":4294967296})", R"({"status":1,"versioning_version":[]})"}) {
        CGetVersioningProbeJson reply;
        EXPECT_EQ(parse(reply, text), -1) << text;
    }
    CGetVersioningProbeJson reply;
    EXPECT_EQ(reply.Parser(nullptr), -1);
}
