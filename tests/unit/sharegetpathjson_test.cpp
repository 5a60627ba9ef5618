#include "sharing/ShareGetPathJson.h"

#include <gtest/gtest.h>

#include <string>

#include "parsing.h"

TEST(CShareGetPathJson, BeginsWithNothingLearnt) {
    const CShareGetPathJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.GetPath(), L"");
}

TEST(CShareGetPathJson, TranslatesTheStatusAndReadsThePathBesideIt) {
    const struct {
        const char* reply;
        int status;
        const wchar_t* path;
    } rows[] = {
        {R"({"status":1,"share_path":"/share/書"})", 0, L"/share/書"},
        {R"({"status":"4","share_path":"/a"})", -3, L"/a"},
        {R"({"status":0,"share_path":""})", -2, L""},
        {R"({"status":34,"share_path":7})", -1, L"7"},
        {R"({"share_path":null})", -1, L""},
        {R"({"status":1})", 0, L""},
        {"{}", -1, L""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        CShareGetPathJson reply;
        EXPECT_EQ(parse(reply, row.reply), 1);
        EXPECT_EQ(reply.GetStatus(), row.status);
        EXPECT_EQ(reply.GetPath(), row.path);
    }
}

TEST(CShareGetPathJson, APathHasUpTo4095Characters) {
    for (const auto& [length, fits] : {std::pair(size_t{2048}, true),
                                       {size_t{4095}, true},
                                       {size_t{4096}, false},
                                       {size_t{100000}, false}}) {
        CShareGetPathJson reply;
        EXPECT_EQ(parse(reply, R"({"share_path":")" + std::string(length, 'x') + "\"}"), 1);
        EXPECT_EQ(reply.GetPath(), std::wstring(fits ? length : 0, L'x'));
    }
}

TEST(CShareGetPathJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CShareGetPathJson>(
        {R"({"status":99999999999})", R"({"status":1,"share_path":["/a"]})", R"({"share_path":{}})"});
}
