#include "sharing/WebFileManCreateLinkXml.h"

#include <gtest/gtest.h>

#include <string>

#include "parsing.h"

TEST(CWebFileManCreateLinkXml, BeginsWithNothingLearnt) {
    const CWebFileManCreateLinkXml reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.GetResult(), L"");
}

TEST(CWebFileManCreateLinkXml, ATimeErrorGoesBeforeAMailErrorBeforeTheStatus) {
    const struct {
        const char* reply;
        int status;
    } rows[] = {{"{}", -1},
                {R"({"status":1})", 0},
                {R"({"status":"1"})", 0},
                {R"({"status":0})", -1},
                {R"({"status":2})", -1},
                {R"({"status":-1})", -1},
                {R"({"status":null})", -1},
                {R"({"status":1,"email_error":1})", 6},
                {R"({"status":0,"email_error":"1"})", 6},
                {R"({"email_error":1})", 6},
                {R"({"status":1,"email_error":0,"time_error":2})", 0},
                {R"({"status":1,"time_error":1})", 7},
                {R"({"time_error":"1"})", 7},
                {R"({"status":1,"email_error":1,"time_error":1})", 7}};
    for (const auto& row : rows) {
        CWebFileManCreateLinkXml reply;
        EXPECT_EQ(parse(reply, row.reply), 1);
        EXPECT_EQ(reply.GetStatus(), row.status) << row.reply;
    }
}

TEST(CWebFileManCreateLinkXml, TheResultIsCutAt259Characters) {
    const auto resultOf = [](const std::string& value) {
        CWebFileManCreateLinkXml reply;
        EXPECT_EQ(parse(reply, R"({"status":1,"result":)" + value + "}"), 1);
        return reply.GetResult();
    };
    EXPECT_EQ(resultOf(R"("http:\/\/nas\/書")"), L"http://nas/\x66F8");
    EXPECT_EQ(resultOf("5"), L"5");
    EXPECT_EQ(resultOf("null"), L"");
    for (const size_t length : {size_t{259}, size_t{260}, size_t{5000}})
        EXPECT_EQ(resultOf('"' + std::string(length, 'r') + '"'), std::wstring(259, L'r')) << length;
}

TEST(CWebFileManCreateLinkXml, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CWebFileManCreateLinkXml>(
        {R"({"status":99999999999})", R"({"email_error":99999999999})", R"({"time_error":99999999999})",
         R"({"result":[]})", R"({"result":{}})"});
}
