#include "transfer/GetUploadMultiPartResultJson.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "parsing.h"

TEST(GetUploadMultiPartResultJson, BeginsWithoutAStatusAndWithoutFiles) {
    CGetUploadMultiPartResultJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.GetMultiPartFileInfo(L""), nullptr);
    EXPECT_EQ(reply.GetMultiPartFileInfo(L"a.txt"), nullptr);
}

TEST(GetUploadMultiPartResultJson, TranslatesTheStatus) {
    const std::pair<const char*, int> rows[] = {
        {"1", 0}, {R"("1")", 0}, {"4", -3}, {"0", -2}, {"34", -1}, {"-101", -8}, {"null", -1},
    };
    for (const auto& [value, expected] : rows) {
        CGetUploadMultiPartResultJson reply;
        EXPECT_EQ(parse(reply, std::string(R"({"status":)") + value + "}"), 1) << value;
        EXPECT_EQ(reply.GetStatus(), expected) << value;
    }
    CGetUploadMultiPartResultJson reply;
    EXPECT_EQ(parse(reply, "{}"), 1);
    EXPECT_EQ(reply.GetStatus(), -1);
}

TEST(GetUploadMultiPartResultJson, ReadsEachFile) {
    CGetUploadMultiPartResultJson reply;
    EXPECT_EQ(parse(reply,
                    "{\"status\":1,\"files\":["
                    "{\"name\":\"a.txt\",\"status\":1,\"size\":10},"
                    "{\"name\":\"b.txt\",\"status\":\"9\",\"size\":5000000000},"
                    "{\"name\":\"\xE6\x96\x87\xF0\x9F\x98\x80\",\"status\":34,\"size\":0}]}"),
              1);
    const struct {
        const wchar_t* name;
        int status;
        int64_t size;
    } rows[] = {{L"a.txt", 0, 10}, {L"b.txt", -6, 5000000000}, {L"\x6587\x1F600", -1, 0}};
    for (const auto& row : rows) {
        const auto* file = reply.GetMultiPartFileInfo(row.name);
        ASSERT_NE(file, nullptr);
        EXPECT_EQ(file->nStatus, row.status);
        EXPECT_EQ(file->strName, row.name);
        EXPECT_EQ(file->llSize, row.size);
    }
    for (const wchar_t* name : {L"", L"a.tx", L"a.txtt", L"c.txt"})
        EXPECT_EQ(reply.GetMultiPartFileInfo(name), nullptr);
}

TEST(GetUploadMultiPartResultJson, FindsAFileInAnyLetterCase) {
    CGetUploadMultiPartResultJson reply;
    EXPECT_EQ(parse(reply, R"({"status":1,"files":[{"name":"Read Me.TXT","status":1,"size":1}]})"), 1);
    for (const wchar_t* name : {L"Read Me.TXT", L"read me.txt", L"READ ME.TXT"}) {
        const auto* file = reply.GetMultiPartFileInfo(name);
        ASSERT_NE(file, nullptr);
        EXPECT_EQ(file->strName, L"Read Me.TXT");
    }
}

TEST(GetUploadMultiPartResultJson, RefusesWhatIsNoObjectOrCannotBeRead) {
    for (const char* text :
         {"", "sorry", R"({"status":1)", "[]", "\"text\"", "5", "null", R"({"status":4294967296})",
          R"({"status":1,"files":["a.txt"]})", R"({"status":1,"files":[{"name":["a"],"status":1,"size":1}]})",
          R"({"status":1,"files":[{"name":"a","status":{},"size":1}]})",
          R"({"status":1,"files":[{"name":"a","status":1,"size":[]}]})",
          R"({"status":1,"files":[{"name":"a","status":1,"size":1e300}]})"}) {
        CGetUploadMultiPartResultJson reply;
        EXPECT_EQ(parse(reply, text), -1) << text;
    }
    CGetUploadMultiPartResultJson reply;
    EXPECT_EQ(reply.Parser(nullptr), -1);
}
