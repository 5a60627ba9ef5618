#include "transfer/GetUploadChunkResultJson.h"

#include <gtest/gtest.h>

#include "parsing.h"

namespace {

struct Row {
    const char* reply;
    int answer, status;
    int64_t size;
    bool home;
};

}  // namespace

TEST(GetUploadChunkResultJson, BeginsWithoutAStatusAndWithAHome) {
    const CGetUploadChunkResultJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.GetSize(), 0);
    EXPECT_TRUE(reply.IsHomeFolderAvailable());
}

TEST(GetUploadChunkResultJson, ReadsItsThreeFields) {
    const Row rows[] = {
        {R"({"status":1,"size":"5000000000","home_folder_available":true})", 1, 0, 5000000000, true},
        {R"({"status":5,"home_folder_available":false})", 1, -4, 0, false},
        {R"({"status":"9","size":7})", 1, -6, 7, true},
        {R"({"status":34})", 1, -1, 0, true},
        {R"({"size":"12","home_folder_available":null})", 1, -1, 12, true},
        {R"({"home_folder_available":0})", 1, -1, 0, false},
        {R"({"home_folder_available":"false"})", 1, -1, 0, false},
        {R"({"home_folder_available":"true"})", 1, -1, 0, true},
        {"{}", 1, -1, 0, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.reply);
        CGetUploadChunkResultJson reply;
        EXPECT_EQ(parse(reply, row.reply), row.answer);
        EXPECT_EQ(reply.GetStatus(), row.status);
        EXPECT_EQ(reply.GetSize(), row.size);
        EXPECT_EQ(reply.IsHomeFolderAvailable(), row.home);
    }
}

TEST(GetUploadChunkResultJson, RefusesWhatIsNoObjectOrCannotBeRead) {
    for (const char* text :
         {"", "sorry", "{\"status\":1", "[]", "\"text\"", "5", "null", R"({"status":4294967296})",
          R"({"status":1,"size":4294967296})", R"({"home_folder_available":[]})"}) {
        CGetUploadChunkResultJson reply;
        EXPECT_EQ(parse(reply, text), -1) << text;
    }
    CGetUploadChunkResultJson reply;
    EXPECT_EQ(reply.Parser(nullptr), -1);
}
