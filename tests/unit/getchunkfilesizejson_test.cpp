#include "transfer/GetChunkFileSizeJson.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "parsing.h"

TEST(GetChunkFileSizeJson, BeginsWithoutAStatus) {
    const CGetChunkFileSizeJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.GetSize(), 0);
}

TEST(GetChunkFileSizeJson, ReadsTheServersOwnNumberAndTheSize) {
    const struct {
        const char* reply;
        int status;
        int64_t size;
    } rows[] = {
        {R"({"status":0,"size":"5000000000"})", 0, 5000000000},
        {R"({"status":"0","size":7})", 0, 7},
        {R"({"status":0,"size":"9223372036854775807"})", 0, INT64_MAX},
        {R"({"status":0})", 0, 0},
        {R"({"status":1})", 1, 0},
        {R"({"status":5})", 5, 0},
        {R"({"status":-4})", -4, 0},
        {R"({"status":null})", -1, 0},
        {"{}", -1, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        CGetChunkFileSizeJson reply;
        EXPECT_EQ(parse(reply, row.reply), 1);
        EXPECT_EQ(reply.GetStatus(), row.status);
        EXPECT_EQ(reply.GetSize(), row.size);
    }
}

TEST(GetChunkFileSizeJson, RefusesWhatIsNoObjectOrCannotBeRead) {
    for (const char* text : {"", "sorry", R"({"status":0)", "[]", "\"text\"", "5", "null",
                             R"({"status":4294967296})", R"({"status":0,"size":5000000000})"}) {
        CGetChunkFileSizeJson reply;
        EXPECT_EQ(parse(reply, text), -1) << text;
    }
    CGetChunkFileSizeJson reply;
    EXPECT_EQ(reply.Parser(nullptr), -1);
}
