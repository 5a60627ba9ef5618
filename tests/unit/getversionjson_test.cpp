#include "state/GetVersionJson.h"

#include <gtest/gtest.h>

#include "parsing.h"

TEST(CGetVersionJson, BeginsWithNothingLearnt) {
    const CGetVersionJson reply;
    EXPECT_EQ(reply.GetVersion(), L"");
    EXPECT_EQ(reply.GetBuildNumber(), L"");
}

TEST(CGetVersionJson, ReadsItsTwoFields) {
    const struct {
        const char* reply;
        const wchar_t *version, *build;
    } rows[] = {
        {R"({"version":"5.2.1","build":"20260105"})", L"5.2.1", L"20260105"},
        {R"({"status":4,"version":"版 5","build":20260105})", L"版 5", L"20260105"},
        {R"({"version":"5.2.1"})", L"5.2.1", L""},
        {R"({"build":"20260105"})", L"", L"20260105"},
        {R"({"version":null,"build":""})", L"", L""},
        {"{}", L"", L""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        CGetVersionJson reply;
        EXPECT_EQ(parse(reply, row.reply), 1);
        EXPECT_EQ(reply.GetVersion(), row.version);
        EXPECT_EQ(reply.GetBuildNumber(), row.build);
    }
}

TEST(CGetVersionJson, ATextThatIsTooLongIsEmpty) {
    for (const auto& [length, fits] : {std::pair(size_t{2047}, true), {size_t{2048}, false}}) {
        CGetVersionJson reply;
        EXPECT_EQ(parse(reply, R"({"version":")" + std::string(length, 'x') + "\"}"), 1);
        EXPECT_EQ(reply.GetVersion().size(), fits ? length : 0);
    }
}

TEST(CGetVersionJson, RefusesWhatIsNoObject) {
    for (const char* text : {"", "sorry", "<html/>", "[]", "5", "null", "\"5.2.1\"", R"({"version":"5")",
                             R"({"version":[]})", R"({"build":{"a":1}})"}) {
        CGetVersionJson reply;
        EXPECT_NE(parse(reply, text), 1) << text;
    }
    CGetVersionJson reply;
    EXPECT_NE(reply.Parser(nullptr), 1);
}
