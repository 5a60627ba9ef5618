#include "files/GetFolderSizeJson.h"

#include <gtest/gtest.h>

#include <string>

#include "parsing.h"

TEST(CGetFolderSizeJson, BeginsWithoutASize) {
    const CGetFolderSizeJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_FALSE(reply.IsValid());
    EXPECT_EQ(reply.GetSize(), 0);
}

TEST(CGetFolderSizeJson, ReadsStatusAndSize) {
    const struct {
        const char* text;
        int status;
        bool isValid;
        int64_t size;
    } rows[] = {
        {R"({"status":1,"size":"0"})", 0, true, 0},
        {R"({"status":1,"size":"5000000000"})", 0, true, 5000000000},
        {R"({"status":1,"size":"9223372036854775807"})", 0, true, INT64_MAX},
        {R"({"status":1,"size":"99999999999999999999"})", 0, true, INT64_MAX},
        {R"({"status":1,"size":5000000000})", 0, true, 5000000000},
        {R"({"size":"7"})", 0, true, 7},
        {R"({"status":null,"size":"7"})", 0, true, 7},
        {R"({"status":"1","size":"7 bytes"})", 0, true, 7},
        {R"({"status":1,"size":"-1"})", 0, false, -1},
        {R"({"status":1,"size":""})", 0, false, 0},
        {R"({"status":1,"size":null})", 0, false, 0},
        {R"({"status":1})", 0, false, 0},
        {R"({"status":5,"size":"7"})", -4, true, 7},
        {R"({"status":34,"size":"7"})", -1, true, 7},
        // A denial ends the parse.
        {R"({"status":4,"size":"7"})", -3, false, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        CGetFolderSizeJson reply;
        EXPECT_EQ(parse(reply, row.text), 1);
        EXPECT_EQ(reply.GetStatus(), row.status);
        EXPECT_EQ(reply.IsValid(), row.isValid);
        EXPECT_EQ(reply.GetSize(), row.size);
    }
}

TEST(CGetFolderSizeJson, ASizeOf5000DigitsIsNone) {
    CGetFolderSizeJson reply;
    EXPECT_EQ(parse(reply, R"({"status":1,"size":")" + std::string(5000, '7') + "\"}"), 1);
    EXPECT_FALSE(reply.IsValid());
}

TEST(CGetFolderSizeJson, RefusesWhatIsNoJsonObject) {
    for (const char* text : {"", "no", "[]", "5", "null", "\"size\"", "{\"size\":", R"({"size":[]})",
                             R"({"size":{}})", R"({"status":99999999999})"}) {
        SCOPED_TRACE(text);
        CGetFolderSizeJson reply;
        EXPECT_EQ(parse(reply, text), -1);
        EXPECT_FALSE(reply.IsValid());
    }
    CGetFolderSizeJson reply;
    EXPECT_EQ(reply.Parser(nullptr), -1);
}
