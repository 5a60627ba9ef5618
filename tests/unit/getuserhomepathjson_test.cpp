#include "state/GetUserHomePathJson.h"

#include <gtest/gtest.h>

#include "parsing.h"

TEST(CGetUserHomePathJson, BeginsWithNothingLearnt) {
    const CGetUserHomePathJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.GetHomePath(), L"");
}

TEST(CGetUserHomePathJson, ReadsTheHomeWhateverTheStatus) {
    const struct {
        const char* reply;
        int status;
        const wchar_t* home;
    } rows[] = {
        {R"({"status":1,"home":"/share/homes/u"})", 0, L"/share/homes/u"},
        {R"({"status":"4","home":"/書"})", -3, L"/書"},
        {R"({"status":34,"home":"/h"})", -1, L"/h"},
        {R"({"home":"/h"})", -1, L"/h"},
        {R"({"status":1,"home":""})", 0, L""},
        {R"({"status":1,"home":null})", 0, L""},
        {R"({"status":1,"home":7})", 0, L"7"},
        {R"({"status":1})", 0, L""},
        {"{}", -1, L""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        CGetUserHomePathJson reply;
        EXPECT_EQ(parse(reply, row.reply), 1);
        EXPECT_EQ(reply.GetStatus(), row.status);
        EXPECT_EQ(reply.GetHomePath(), row.home);
    }
}

TEST(CGetUserHomePathJson, AHomeHasUpTo4095Characters) {
    for (const auto& [length, fits] : {std::pair(size_t{2048}, true),
                                       {size_t{4095}, true},
                                       {size_t{4096}, false},
                                       {size_t{100000}, false}}) {
        CGetUserHomePathJson reply;
        EXPECT_EQ(parse(reply, R"({"home":")" + std::string(length, 'h') + "\"}"), 1);
        EXPECT_EQ(reply.GetHomePath(), std::wstring(fits ? length : 0, L'h'));
    }
}

TEST(CGetUserHomePathJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CGetUserHomePathJson>(
        {R"({"status":99999999999})", R"({"status":1,"home":["/h"]})", R"({"status":1,"home":{}})"});
}
