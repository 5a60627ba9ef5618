// WFMAuthConfigPassword: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "WebFileManShareAPI.h"
#include "configreplies.h"
#include "refusals.h"
#include "routes.h"
#include "sessioncall.h"

using namespace wire;

namespace {

const char* const kFunction = "WFMAuthConfigPassword";

struct AuthCall : SessionCall<AuthCall> {
    const wchar_t* password = L"secret";
    uint32_t authResult = 0xABCD;
    uint32_t* out = &authResult;

    using SessionCall::SessionCall;
    uint32_t call() {
        return WFMAuthConfigPassword(session, kServer, port, password, nullptr, resultWord, out);
    }
    bool isUntouched() const { return result == 0xABCD && authResult == 0xABCD; }
};

}  // namespace

TEST(WFMAuthConfigPasswordWire, AsksTheSessionsServiceAndNamesNoNode) {
    expectOnEveryRoute(
        "func=nubo_auth_config_password&sid=sid123&password=c2VjcmV0",
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
            AuthCall call;
            call.run(session, port);
        },
        routesWithoutNode());
}

TEST(WFMAuthConfigPasswordWire, ThePasswordIsBase64AndNotEncodedOnceMore) {
    for (const auto& [password, sent] : {std::pair{L"p\x00E4\x00DF\x6587", "cMOkw5/mloc="},
                                         {L"~~~>", "fn5+Pg=="},
                                         {L"a", "YQ=="},
                                         {L"a b&c", "YSBiJmM="}}) {
        RawServer server({Reply::json("{}")});
        AuthCall call(server);
        call.password = password;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(server.onlyRequest().queryText(),
                  "func=nubo_auth_config_password&sid=sid123&password=" + std::string(sent));
    }
}

TEST(WFMAuthConfigPasswordWire, TheServersNumberTells) {
    for (const auto& [sent, number] : {std::pair{R"({"auth_result":0})", 0u},
                                       {R"({"auth_result":1})", 1u},
                                       {R"({"auth_result":"7"})", 7u},
                                       {R"({"auth_result":-2})", 0xFFFFFFFEu},
                                       {R"({"auth_result":null})", 0xFFFFFFFFu},
                                       {"{}", 0xFFFFFFFFu}}) {
        SCOPED_TRACE(sent);
        RawServer server({Reply::json(sent)});
        AuthCall call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.authResult, number);
        log.expectNoLines();
    }
}

TEST(WFMAuthConfigPasswordWire, OnlyAReplyWithoutAStatusIsASuccess) {
    expectConfigStatuses<AuthCall>(kFunction, errorStatusLine(kFunction),
                                   [](const AuthCall& call) { EXPECT_EQ(call.authResult, 0xFFFFFFFFu); });
}

TEST(WFMAuthConfigPasswordWire, AFailureTellsNothing) {
    for (const Reply& reply : {Reply::status(503), Reply::json("[]"), Reply::closeBeforeReply(),
                               Reply::json(R"({"auth_result":99999999999})")}) {
        RawServer server({reply});
        AuthCall call(server);
        EXPECT_NE(call.run(), 0u);
        EXPECT_EQ(call.signedResult(), -1);
        EXPECT_EQ(call.authResult, 0xFFFFFFFFu);
    }
}

TEST(WFMAuthConfigPasswordWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<AuthCall>(
        log, session.get(), kFunction,
        {[](AuthCall& call) { call.password = nullptr; }, [](AuthCall& call) { call.password = L""; },
         [](AuthCall& call) { call.resultWord = nullptr; }, [](AuthCall& call) { call.out = nullptr; }},
        kSharePrefix);
}
