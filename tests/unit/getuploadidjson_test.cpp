#include "transfer/GetUploadIDJson.h"

#include <gtest/gtest.h>

#include "parsing.h"

TEST(GetUploadIDJson, BeginsWithoutAStatusAndWithAHome) {
    const CGetUploadIDJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(std::wstring(reply.GetUploadID()), L"");
    EXPECT_TRUE(reply.IsHomeFolderAvailable());
}

TEST(GetUploadIDJson, ReadsTheIdOfASuccessAndTheHomeOfAFailure) {
    const struct {
        const char* reply;
        int status;
        const wchar_t* id;
        bool home;
    } rows[] = {
        {R"({"status":0,"upload_id":"u-17"})", 0, L"u-17", true},
        {R"({"status":"0","upload_id":17})", 0, L"17", true},
        {R"({"status":0})", 0, L"", true},
        {R"({"status":0,"upload_id":null})", 0, L"", true},
        {"{\"status\":0,\"upload_id\":\"\xE6\x96\x87\xF0\x9F\x98\x80\"}", 0, L"\x6587\x1F600", true},
        // A success says nothing of the home, a failure has no id.
        {R"({"status":0,"home_folder_available":false})", 0, L"", true},
        {R"({"status":0,"home_folder_available":[]})", 0, L"", true},
        {R"({"status":7,"upload_id":"u-17"})", 7, L"", true},
        {R"({"status":7,"upload_id":["u-17"]})", 7, L"", true},
        {R"({"status":7,"home_folder_available":false})", 7, L"", false},
        {R"({"status":7,"home_folder_available":true})", 7, L"", true},
        {R"({"status":7,"home_folder_available":null})", 7, L"", true},
        {R"({"status":1,"upload_id":"u-17","home_folder_available":false})", 1, L"", false},
        {R"({"status":-4})", -4, L"", true},
        {R"({"status":2147483647})", 2147483647, L"", true},
        {R"({"upload_id":"u-17"})", -1, L"", true},
        {R"({"status":null,"upload_id":"u-17"})", -1, L"", true},
        {"{}", -1, L"", true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        CGetUploadIDJson reply;
        EXPECT_EQ(parse(reply, row.reply), 1);
        EXPECT_EQ(reply.GetStatus(), row.status);
        EXPECT_EQ(std::wstring(reply.GetUploadID()), row.id);
        EXPECT_EQ(reply.IsHomeFolderAvailable(), row.home);
    }
}

TEST(GetUploadIDJson, AnIdThatIsTooLongForAReplyIsNone) {
    for (const size_t length : {size_t{2047}, size_t{2048}, size_t{5000}}) {
        CGetUploadIDJson reply;
        EXPECT_EQ(parse(reply, R"({"status":0,"upload_id":")" + std::string(length, 'u') + "\"}"), 1);
        EXPECT_EQ(std::wstring(reply.GetUploadID()).size(), length < 2048 ? length : 0u);
    }
}

TEST(GetUploadIDJson, RefusesWhatIsNoObjectOrCannotBeRead) {
    for (const char* text :
         {"", "sorry", R"({"status":0)", "[]", "\"text\"", "5", "null", R"({"status":4294967296})",
          R"({"status":0,"upload_id":["u"]})", R"({"status":7,"home_folder_available":[]})"}) {
        CGetUploadIDJson reply;
        EXPECT_EQ(parse(reply, text), -1) << text;
    }
    CGetUploadIDJson reply;
    EXPECT_EQ(reply.Parser(nullptr), -1);
}
