#include "transfer/StatDeltaJson.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "parsing.h"

TEST(StatDeltaJson, BeginsWithNothingLearnt) {
    const CStatDeltaJson reply;
    EXPECT_FALSE(reply.IsSuccess());
    EXPECT_FALSE(reply.IsExist());
    EXPECT_EQ(reply.GetSize(), 0);
}

TEST(StatDeltaJson, ReadsTheSizeOfADeltaThatExists) {
    const struct {
        const char* reply;
        bool exists;
        int64_t size;
    } rows[] = {
        {R"({"exist":1,"size":"5000000000"})", true, 5000000000},
        {R"({"exist":"2","size":7})", true, 7},
        {R"({"exist":-1,"size":"9223372036854775807"})", true, INT64_MAX},
        {R"({"exist":1})", true, 0},
        {R"({"exist":0,"size":"7"})", false, 0},
        {R"({"exist":0,"size":5000000000})", false, 0},
        {R"({"exist":null,"size":"7"})", false, 0},
        {R"({"exist":true,"size":"7"})", false, 0},
        {R"({"exist":"true","size":"7"})", false, 0},
        {R"({"exist":[],"size":"7"})", false, 0},
        {R"({"size":"7"})", false, 0},
        {"{}", false, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        CStatDeltaJson reply;
        EXPECT_EQ(parse(reply, row.reply), 1);
        EXPECT_TRUE(reply.IsSuccess());
        EXPECT_EQ(reply.IsExist(), row.exists);
        EXPECT_EQ(reply.GetSize(), row.size);
    }
}

TEST(StatDeltaJson, RefusesWhatIsNoObjectOrCannotBeRead) {
    for (const char* text : {"", "sorry", R"({"exist":1)", "[]", "\"text\"", "5", "null",
                             R"({"exist":4294967296})", R"({"exist":1,"size":5000000000})"}) {
        CStatDeltaJson reply;
        EXPECT_EQ(parse(reply, text), -1) << text;
    }
    CStatDeltaJson reply;
    EXPECT_EQ(reply.Parser(nullptr), -1);
}
