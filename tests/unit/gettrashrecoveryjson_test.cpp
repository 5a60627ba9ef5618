#include "files/GetTrashRecoveryJson.h"

#include <gtest/gtest.h>

#include <string>

#include "parsing.h"

TEST(CGetTrashRecoveryJson, BeginsWithNothingLearnt) {
    const CGetTrashRecoveryJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(std::wstring(reply.GetPid()), L"");
}

TEST(CGetTrashRecoveryJson, ReadsThePidOfASuccessOnly) {
    const struct {
        std::string text;
        int status;
        std::wstring pid;
    } rows[] = {{R"({"status":1,"pid":"4711"})", 0, L"4711"},
                {R"({"status":"1","pid":4711})", 0, L"4711"},
                {R"({"status":1,"pid":"\u6587\ud83d\ude00"})", 0, L"\x6587\x1F600"},
                {R"({"status":1,"pid":null})", 0, L""},
                {R"({"status":1})", 0, L""},
                {R"({"status":1,"pid":")" + std::string(259, '7') + "\"}", 0, std::wstring(259, L'7')},
                {R"({"status":4,"pid":"4711"})", -3, L""},
                {R"({"status":0,"pid":"4711"})", -2, L""},
                {R"({"status":34,"pid":[]})", -1, L""}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text.substr(0, 60));
        CGetTrashRecoveryJson reply;
        EXPECT_EQ(parse(reply, row.text), 1);
        EXPECT_EQ(reply.GetStatus(), row.status);
        EXPECT_EQ(std::wstring(reply.GetPid()), row.pid);
    }
}

TEST(CGetTrashRecoveryJson, RefusesAReplyWithoutAStatusAndWhatIsNoObject) {
    for (const std::string& text :
         {std::string("{}"), std::string(R"({"pid":"4711"})"), std::string(R"({"status":null,"pid":"4711"})"),
          std::string("[]"), std::string("5"), std::string("null"), std::string("\"status\""), std::string(),
          std::string("no"), std::string(R"({"status":1)"), std::string(R"({"status":99999999999})"),
          std::string(R"({"status":1,"pid":[]})"), std::string(5000, '[')}) {
        SCOPED_TRACE(text.substr(0, 60));
        CGetTrashRecoveryJson reply;
        EXPECT_EQ(parse(reply, text), -1);
    }
    CGetTrashRecoveryJson reply;
    EXPECT_EQ(reply.Parser(nullptr), -1);
}
