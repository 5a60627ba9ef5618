#include "sharing/WebFileManGetLinkXml.h"

#include <gtest/gtest.h>

#include <string>

#include "parsing.h"

namespace {

/// The value behind a key, or "none".
std::wstring valueOf(const std::string& text, const char* key, int capacity = 256) {
    std::wstring out(3000, L'#');
    if (CWebFileManGetLinkXml::GetValue(text.c_str(), key, out.data(), capacity))
        return out.substr(0, out.find(L'\0'));
    EXPECT_EQ(out, std::wstring(3000, L'#'));
    return L"none";
}

void expectReply(const std::string& text, int status, const std::wstring& link, const std::wstring& expires) {
    CWebFileManGetLinkXml reply;
    EXPECT_EQ(parse(reply, text), 1);
    EXPECT_EQ(reply.GetStatus(), status);
    EXPECT_EQ(reply.linkURL, link);
    EXPECT_EQ(reply.expireTime, expires);
}

}  // namespace

TEST(CWebFileManGetLinkXml, BeginsWithNothingLearnt) {
    const CWebFileManGetLinkXml reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.linkURL, L"");
    EXPECT_EQ(reply.expireTime, L"");
}

TEST(CWebFileManGetLinkXml, AValueBeginsBehindItsKeyAndEndsAtACommaABraceOrTheEnd) {
    EXPECT_EQ(valueOf(R"({"key":"value","b":1})", "key"), L"value");
    EXPECT_EQ(valueOf(R"({"b":1,"key":"value"})", "key"), L"value");
    EXPECT_EQ(valueOf(R"(xkey=value)", "key"), L"=value");
    EXPECT_EQ(valueOf("{key", "key"), L"");
    EXPECT_EQ(valueOf(R"({"key":""})", "key"), L"");
    // The first place counts, wherever it is.
    EXPECT_EQ(valueOf(R"({"a":"my key","key":"value"})", "key"), L"");
}

TEST(CWebFileManGetLinkXml, BlanksQuotesAndLeadingColonsAreNoPartOfAValue) {
    EXPECT_EQ(valueOf(R"({"key" : :: "a b"c":d:"})", "key"), L"abc:d:");
    EXPECT_EQ(valueOf("{\"key\":\t'1'!#}", "key"), L"\t'1'!#");
}

TEST(CWebFileManGetLinkXml, AKeyThatIsMissingOrAtTheVeryStartIsNotFound) {
    EXPECT_EQ(valueOf(R"({"b":1})", "key"), L"none");
    EXPECT_EQ(valueOf("key:1", "key"), L"none");
    // Nor is one that stands there and elsewhere.
    EXPECT_EQ(valueOf("key:1,key:2", "key"), L"none");
    EXPECT_EQ(valueOf("", "key"), L"none");
    wchar_t out[10];
    EXPECT_FALSE(CWebFileManGetLinkXml::GetValue(nullptr, "key", out, 10));
    EXPECT_FALSE(CWebFileManGetLinkXml::GetValue("{key:1", nullptr, out, 10));
    EXPECT_FALSE(CWebFileManGetLinkXml::GetValue("{key:1", "key", nullptr, 10));
}

TEST(CWebFileManGetLinkXml, AValueMustBeShorterThanTheCapacity) {
    const std::string text = R"({"key":"12345"})";
    EXPECT_EQ(valueOf(text, "key", 6), L"12345");
    for (const int capacity : {5, 1, 0, -1}) EXPECT_EQ(valueOf(text, "key", capacity), L"none") << capacity;
    // Bytes count, not characters.
    EXPECT_EQ(valueOf("{\"key\":\"\xE6\x96\x87\"}", "key", 4), L"\x6587");
    EXPECT_EQ(valueOf("{\"key\":\"\xE6\x96\x87\"}", "key", 3), L"none");
}

TEST(CWebFileManGetLinkXml, ReadsStatusLinkAndExpiry) {
    expectReply(
        R"({"status":"1","link_url":"http:\/\/nas:8080\/share.cgi?ssid=s1","expire_time":"2026\/12\/24"})", 0,
        L"http://nas:8080/share.cgi?ssid=s1", L"2026\\/12\\/24");
    expectReply(R"({"expire_time":7 , "status": 1})", 0, L"", L"7");
    expectReply("{\"status\":1,\"link_url\":\"\xE6\x96\x87\xFF\"}", 0, L"\x6587\xFFFD", L"");
    expectReply(R"({"status":1,"link_url":"\\\\"})", 0, L"", L"");
}

TEST(CWebFileManGetLinkXml, OnlyTheTextOneIsASuccess) {
    for (const char* status : {"0", "2", "11", "01", "-1", "true", "99999999999"})
        expectReply(R"({"status":")" + std::string(status) + R"(","expire_time":"x"})", -1, L"", L"x");
}

TEST(CWebFileManGetLinkXml, WithoutAStatusNothingIsRead) {
    for (const char* text :
         {"", "sorry", "<html/>", "[]", "5", "null", R"("status")", "status:1",
          R"({"link_url":"x","expire_time":"y"})", R"({"status":"","link_url":"x","expire_time":"y"})"})
        expectReply(text, -1, L"", L"");
    CWebFileManGetLinkXml reply;
    EXPECT_EQ(reply.Parser(nullptr), 1);
    EXPECT_EQ(reply.GetStatus(), -1);
}

TEST(CWebFileManGetLinkXml, StatusAndExpiryHave255BytesAndTheLink2047) {
    const auto reply = [](const std::string& status, size_t expires, size_t link) {
        return R"({"status":")" + status + R"(","expire_time":")" + std::string(expires, 'e') +
               R"(","link_url":")" + std::string(link, 'l') + "\"}";
    };
    expectReply(reply("1", 255, 2047), 0, std::wstring(2047, L'l'), std::wstring(255, L'e'));
    expectReply(reply("1", 256, 2048), 0, L"", L"");
    expectReply(reply(std::string(256, '1'), 1, 1), -1, L"", L"");
}
