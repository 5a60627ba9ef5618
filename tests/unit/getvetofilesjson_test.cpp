#include "state/GetVetoFilesJson.h"

#include <gtest/gtest.h>

#include "parsing.h"

TEST(CGetVetoFilesJson, BeginsWithNothingLearnt) {
    const CGetVetoFilesJson reply;
    EXPECT_EQ(reply.GetVetoFiles(), L"");
    EXPECT_EQ(reply.GetStatus(), -1);
}

TEST(CGetVetoFilesJson, ReadsTheKeyWithTheBlankAsItIs) {
    const struct {
        const char* reply;
        const wchar_t* text;
    } rows[] = {
        {R"({"status":0,"veto files":"/.cache/.previews/*.tmp/"})", L"/.cache/.previews/*.tmp/"},
        {R"({"status":4,"veto files":"/書/"})", L"/書/"},
        {R"({"veto files":" a\nb "})", L" a\nb "},
        {R"({"veto files":""})", L""},
        {R"({"veto files":null})", L""},
        {R"({"veto_files":"/x/","vetofiles":"/x/"})", L""},
        {"{}", L""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        CGetVetoFilesJson reply;
        EXPECT_EQ(parse(reply, row.reply), 1);
        EXPECT_EQ(reply.GetVetoFiles(), row.text);
    }
}

TEST(CGetVetoFilesJson, KeepsTheServersOwnStatus) {
    CGetVetoFilesJson none;
    EXPECT_EQ(parse(none, "{}"), 1);
    EXPECT_EQ(none.GetStatus(), -1);
    for (const int status : {0, 1, 3, 4, -3, 34}) {
        CGetVetoFilesJson reply;
        EXPECT_EQ(parse(reply, R"({"status":)" + std::to_string(status) + "}"), 1);
        EXPECT_EQ(reply.GetStatus(), status);
    }
}

TEST(CGetVetoFilesJson, ATextMayHaveAnyLength) {
    for (const size_t length : {size_t{2047}, size_t{2048}, size_t{1000000}}) {
        CGetVetoFilesJson reply;
        EXPECT_EQ(parse(reply, R"({"veto files":")" + std::string(length, 'v') + "\"}"), 1);
        EXPECT_EQ(reply.GetVetoFiles(), std::wstring(length, L'v'));
    }
}

TEST(CGetVetoFilesJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CGetVetoFilesJson>(
        {R"({"status":99999999999})", R"({"veto files":["/x/"]})", R"({"veto files":{}})"});
}
