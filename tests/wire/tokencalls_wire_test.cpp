// What the calls with a token record share: ZenoAPIAPPSignin, ZenoAPIAPPRefreshToken and ZenoAPIGetTokenInfo.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/logcapture.h"
#include "tokencalls.h"

using namespace wire;

namespace {

const char* const kRefusal =
    R"({"error":"invalid_client","error_description":"no such client","expires_in":"7"})";

template <class Args>
class TokenCallWire : public CloudTest<> {};

struct NameOf {
    template <class Args>
    static std::string GetName(int) {
        return Args::kName;
    }
};

void expectRefusal(const TokenArgs& args) {
    EXPECT_STREQ(args.record.error, L"invalid_client");
    EXPECT_STREQ(args.record.error_description, L"no such client");
    EXPECT_STREQ(args.record.access_token, L"");
    EXPECT_EQ(args.record.expires_in, 7);
}

}  // namespace

using TokenCalls = testing::Types<SigninArgs, RefreshArgs, TokenInfoArgs>;
TYPED_TEST_SUITE(TokenCallWire, TokenCalls, NameOf);

TYPED_TEST(TokenCallWire, ARefusalWithHttp200IsAReply) {
    const CloudServer server({Reply::json(kRefusal)});
    TypeParam args;
    LogCapture log;
    EXPECT_EQ(args.run(), 0u);
    expectRefusal(args);
    log.expectNoLines();
}

TYPED_TEST(TokenCallWire, ARefusalAsAnHttpErrorFillsTheRecordAndKeepsTheStatus) {
    for (const auto& [http, dwStatus] :
         {std::pair(400, 6u), {401, 6u}, {403, 6u}, {404, 6u}, {500, 6u}, {407, 11u}, {503, 12u}}) {
        SCOPED_TRACE(http);
        const CloudServer server({Reply::status(http, kRefusal)});
        TypeParam args;
        EXPECT_EQ(args.run(), dwStatus);
        expectRefusal(args);
    }
}

// Qt offers to sign in by the header; nobody does, and the body is read all the same.
TYPED_TEST(TokenCallWire, ARefusalWithAChallengeFillsTheRecord) {
    const CloudServer server(
        {Reply::status(401, kRefusal).header("WWW-Authenticate", R"(Bearer error="invalid_token")")});
    TypeParam args;
    EXPECT_EQ(args.run(), 6u);
    expectRefusal(args);
    EXPECT_EQ(server.requestCount(), 1u);
}

TYPED_TEST(TokenCallWire, WhatIsNotUnderstoodLeavesTheRecordEmpty) {
    const std::string broken = R"({"error":"half","expires_in":99999999999})";
    for (const auto& [reply, dwStatus] : {std::pair(Reply::json(broken), 14u),
                                          {Reply::status(400, broken), 6u},
                                          {Reply::status(407, broken), 11u},
                                          {Reply::status(503, broken), 12u},
                                          {Reply::status(400, "<html>sorry</html>"), 6u},
                                          {Reply::status(401), 6u},
                                          {Reply::json(kRefusal).contentLength(5000), 2u},
                                          {Reply::closeBeforeReply(), 2u}}) {
        const CloudServer server({reply});
        TypeParam args;
        LogCapture log;
        EXPECT_EQ(args.run(), dwStatus);
        EXPECT_TRUE(args.isEmpty());
        const std::string reason = log.texts().at(0);
        if (dwStatus == 14) {
            EXPECT_EQ(reason, TypeParam::kNotUnderstood);
        } else {
            EXPECT_THAT(reason, testing::Not(testing::HasSubstr("WFM_PARSE_XML_FAIL")));
        }
    }
}

TYPED_TEST(TokenCallWire, AnEmptyObjectIsAReplyThatSaysNothing) {
    const CloudServer server({Reply::json("{}")});
    TypeParam args;
    EXPECT_EQ(args.run(), 0u);
    EXPECT_TRUE(args.isEmpty());
}

TYPED_TEST(TokenCallWire, CutsTextsToTheirFields) {
    const std::string text(9000, 'w');
    const CloudServer server(
        {Reply::json(R"({"error":")" + text + R"(","error_description":")" + text + "\"}")});
    TypeParam args;
    EXPECT_EQ(args.run(), 0u);
    EXPECT_EQ(args.record.error, std::wstring(259, L'w'));
    EXPECT_EQ(args.record.error_description, std::wstring(4095, L'w'));
}
