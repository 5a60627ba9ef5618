#include "session/AuthLoginResultXml.h"

#include <gtest/gtest.h>

#include "parsing.h"
#include "support/xmlreplies.h"

using namespace wire;

namespace {

const std::string kGood =
    document(element("authPassed", "1") + element("errorValue", "-7") + element("authSid", "s1") +
             element("ntoken", "token") + element("servername", "書類 NAS") + element("isAdmin", "1") +
             element("need_2sv", "1") + element("lost_phone", "2") + element("emergency_try_limit", "5") +
             element("emergency_try_count", "3"));

void expectNothing(const AuthLoginResultXml& reply) {
    EXPECT_EQ(reply.GetAuthStatus(), -2);
    EXPECT_EQ(reply.GetErrorCode(), 0);
    EXPECT_EQ(reply.GetSid(), L"");
    EXPECT_EQ(reply.GetNToken(), L"");
    EXPECT_EQ(reply.GetServerName(), L"");
    EXPECT_EQ(reply.GetIsAdmin(), 0);
    EXPECT_EQ(reply.need2sv, 0);
    EXPECT_EQ(reply.lostPhone, 0);
    EXPECT_EQ(reply.tryLimit, -1);
    EXPECT_EQ(reply.tryCount, 0);
    EXPECT_FALSE(reply.IsMaxTryFailed());
}

}  // namespace

TEST(AuthLoginResultXml, BeginsWithNothingLearnt) {
    expectNothing(AuthLoginResultXml());
}

TEST(AuthLoginResultXml, ReadsItsElements) {
    AuthLoginResultXml reply;
    EXPECT_EQ(parse(reply, kGood), 1);
    EXPECT_EQ(reply.GetAuthStatus(), 0);
    EXPECT_EQ(reply.GetErrorCode(), -7);
    EXPECT_EQ(reply.GetSid(), L"s1");
    EXPECT_EQ(reply.GetNToken(), L"token");
    EXPECT_EQ(reply.GetServerName(), L"書類 NAS");
    EXPECT_EQ(reply.GetIsAdmin(), 1);
    EXPECT_EQ(reply.need2sv, 1);
    EXPECT_EQ(reply.lostPhone, 2);
    EXPECT_EQ(reply.tryLimit, 5);
    EXPECT_EQ(reply.tryCount, 3);
}

TEST(AuthLoginResultXml, OnlyTheTextOneHasPassed) {
    for (const char* text : {"0", "", "2", "11", "01", " 1", "1 ", "true", "-1"}) {
        AuthLoginResultXml reply;
        EXPECT_EQ(parse(reply, document(element("authPassed", text))), 1);
        EXPECT_EQ(reply.GetAuthStatus(), -2) << text;
    }
}

TEST(AuthLoginResultXml, ADocumentThatSaysNothingIsUnderstood) {
    for (const std::string& text : {std::string("<a/>"), document(""), document(element("other", "1")),
                                    document(element("AUTHPASSED", "1") + element("authsid", "s"))}) {
        AuthLoginResultXml reply;
        EXPECT_EQ(parse(reply, text), 1);
        expectNothing(reply);
    }
}

TEST(AuthLoginResultXml, FindsItsElementsWhereverTheyStand) {
    AuthLoginResultXml reply;
    EXPECT_EQ(parse(reply, "<authSid>s1</authSid>"), 1);
    EXPECT_EQ(reply.GetSid(), L"s1");
    AuthLoginResultXml deep;
    EXPECT_EQ(parse(deep, "<a><b x='1'><!-- <authSid>no</authSid> --><?p i?><c>" + element("authSid", "s2") +
                              "</c></b>" + element("authPassed", "<![CDATA[1]]>") + "</a>"),
              1);
    EXPECT_EQ(deep.GetSid(), L"s2");
    EXPECT_EQ(deep.GetAuthStatus(), 0);
}

TEST(AuthLoginResultXml, ReadsReferencesAndAnyScript) {
    AuthLoginResultXml reply;
    EXPECT_EQ(parse(reply, document(element("servername", "a&amp;b &lt;&#x4E2D;&#128512;"))), 1);
    EXPECT_EQ(reply.GetServerName(), L"a&b <\x4E2D\x1F600");
}

TEST(AuthLoginResultXml, NumbersAreDecimalAndElseZero) {
    const struct {
        const char* text;
        int value;
    } rows[] = {{"7", 7}, {"-7", -7},  {"007", 7},        {"", 0},
                {"x", 0}, {"0x10", 0}, {"4294967296", 0}, {"1.5", 0}};
    for (const auto& row : rows) {
        AuthLoginResultXml reply;
        EXPECT_EQ(parse(reply, document(element("errorValue", row.text) + element("isAdmin", row.text))), 1);
        EXPECT_EQ(reply.GetErrorCode(), row.value) << row.text;
        EXPECT_EQ(reply.GetIsAdmin(), row.value) << row.text;
    }
}

TEST(AuthLoginResultXml, TriesAreUsedUpOnceTheirCountReachesTheLimit) {
    const struct {
        int limit, count;
        bool used;
    } rows[] = {{-1, 0, false}, {-1, 9, false}, {0, 0, true}, {5, 4, false}, {5, 5, true}, {5, 6, true}};
    for (const auto& row : rows) {
        AuthLoginResultXml reply;
        EXPECT_EQ(parse(reply, document(element("emergency_try_limit", std::to_string(row.limit)) +
                                        element("emergency_try_count", std::to_string(row.count)))),
                  1);
        EXPECT_EQ(reply.IsMaxTryFailed(), row.used) << row.limit << " " << row.count;
    }
}

TEST(AuthLoginResultXml, ATextThatDoesNotFitItsFieldCountsAsNotSent) {
    for (const auto& [length, fits] :
         {std::pair(size_t{259}, true), {size_t{260}, false}, {size_t{1000000}, false}}) {
        const std::string text(length, 'x');
        AuthLoginResultXml reply;
        EXPECT_EQ(parse(reply, document(element("authSid", text) + element("ntoken", text) +
                                        element("servername", text))),
                  1);
        for (const std::wstring& field : {reply.GetSid(), reply.GetNToken(), reply.GetServerName()})
            EXPECT_EQ(field.size(), fits ? length : 0);
    }
}

TEST(AuthLoginResultXml, NoFileOfThisMachineGetsIn) {
    AuthLoginResultXml reply;
    parse(reply, foreignFile("authSid", element("authPassed", "1")));
    EXPECT_EQ(reply.GetSid(), L"");
}

TEST(AuthLoginResultXml, WhatIsNotWellFormedOpensNoSession) {
    const std::string session = element("authPassed", "1") + element("authSid", "s1");
    for (const std::string& text :
         {std::string(), std::string("plain"), std::string(R"({"status":1,"sid":"s1"})"), session,
          "<a>" + session, "<a>" + session + "</b>", "<a>" + session + "</a><b/>",
          kGood.substr(0, kGood.size() - 1), "<a>" + session + "&no;</a>", "<a x=1>" + session + "</a>",
          "<a>" + session + "\xFF</a>", "<a>" + session + "\x01</a>", entityBomb("servername", session)}) {
        SCOPED_TRACE(text.substr(0, 100));
        AuthLoginResultXml reply;
        EXPECT_EQ(parse(reply, text), -1);
        expectNothing(reply);
    }
    AuthLoginResultXml reply;
    EXPECT_EQ(reply.Parser(nullptr), -1);
}
