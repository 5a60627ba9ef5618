#include "files/ShareGetProgressJson.h"

#include <gtest/gtest.h>

#include <string>

#include "parsing.h"

TEST(CShareGetProgressJson, BeginsWithAnErrorAndNothingElse) {
    const CShareGetProgressJson reply;
    EXPECT_FALSE(reply.GetResult());
    EXPECT_EQ(reply.GetStatus(), 0);
    EXPECT_EQ(reply.GetErrorCode(), 1);
    EXPECT_EQ(reply.GetPercent(), 0);
}

TEST(CShareGetProgressJson, ReadsItsFields) {
    const struct {
        const char* text;
        bool result;
        int status, errorCode, percent;
    } rows[] = {{R"({"status":1,"copying":0,"percent":42})", true, 1, 0, 42},
                {R"({"status":"1","copying":"0","percent":"42"})", true, 1, 0, 42},
                {R"({"status":1,"copying":0})", true, 1, 0, 0},
                {R"({"status":1,"copying":1,"percent":42})", true, 1, 0, 0},
                {R"({"status":1,"copying":5,"percent":42})", true, 1, -4, 0},
                {R"({"status":1,"copying":-1,"percent":42})", true, 1, -9, 0},
                {R"({"status":1,"copying":34,"percent":[]})", true, 1, -1, 0},
                {R"({"status":1,"percent":42})", true, 1, 1, 0},
                {R"({"status":2,"copying":0,"percent":42})", false, 2, 1, 0},
                {R"({"status":0,"copying":5})", false, 0, 1, 0},
                {R"({"status":-101})", false, -101, 1, 0},
                {R"({"copying":0,"percent":42})", false, 0, 1, 0},
                {"{}", false, 0, 1, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        CShareGetProgressJson reply;
        EXPECT_EQ(parse(reply, row.text), 1);
        EXPECT_EQ(reply.GetResult(), row.result);
        EXPECT_EQ(reply.GetStatus(), row.status);
        EXPECT_EQ(reply.GetErrorCode(), row.errorCode);
        EXPECT_EQ(reply.GetPercent(), row.percent);
    }
}

TEST(CShareGetProgressJson, RefusesWhatIsNoJsonObject) {
    for (const std::string& text :
         {std::string(), std::string("no"), std::string("[]"), std::string("5"), std::string("null"),
          std::string("\"status\""), std::string(R"({"status":1)"), std::string(R"({"status":99999999999})"),
          std::string(R"({"status":1,"copying":99999999999})"),
          std::string(R"({"status":1,"copying":0,"percent":99999999999})"), std::string(5000, '[')}) {
        SCOPED_TRACE(text.substr(0, 60));
        CShareGetProgressJson reply;
        EXPECT_EQ(parse(reply, text), -1);
    }
    CShareGetProgressJson reply;
    EXPECT_EQ(reply.Parser(nullptr), -1);
}
