// Beyond activations_wire_test.cpp.

#include <gtest/gtest.h>

#include "activations.h"
#include "loginproxy.h"
// Only here can a session without a sid be had.
#include "../../src/core/authcontext.h"
#include "support/logcapture.h"
#include "support/proxy.h"

using namespace wire;

TEST(TorviActivateSidWire, GoesAsTheSessionDoes) {
    const RawServer server({Reply::json(R"({"status":1})")});
    SessionOptions options = ActivateSession::node();
    options.agentName = L"Client/7";
    options.forwardedFor = L"10.1.2.3";
    ActivateSession call(options);
    call.port = server.port();
    EXPECT_EQ(call.run(), 0u);
    expectGet(server.onlyRequest(), activationTarget("sid123"),
              with(baseHeaders(server, "Client/7"), "X-Forwarded-For", "10.1.2.3"));
}

TEST(TorviActivateSidWire, GoesThroughTheSessionsProxy) {
    if (!TinyProxy::installed()) GTEST_SKIP() << "tinyproxy isn't installed";
    const LoginProxy proxy;
    SessionOptions options = ActivateSession::node();
    proxy.lead(options);
    const RawServer server({Reply::json(R"({"status":1})")});
    ActivateSession call(options);
    call.port = server.port();
    EXPECT_EQ(call.run(), 0u);
    EXPECT_TRUE(proxy.passedOn("torvisrvPrepare.cgi"));
}

TEST(TorviActivateSidWire, AsksTheSyncServicesPlaceWhateverTheSessionSpeaksTo) {
    for (const bool fileManager : {true, false}) {
        const RawServer server({Reply::json(R"({"status":1})")});
        SessionOptions options = ActivateSession::node();
        (fileManager ? options.fileManager : options.fcgi) = true;
        ActivateSession call(options);
        call.port = server.port();
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(server.onlyRequest().target(), activationTarget("sid123"));
    }
}

TEST(TorviActivateSidWire, TheTokenIsTheSidAsItIs) {
    const RawServer server({Reply::json(R"({"status":1})")});
    SessionOptions options = ActivateSession::node();
    options.sid = "a&b=c";
    ActivateSession call(options);
    call.port = server.port();
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(server.onlyRequest().target(), activationTarget("a&b=c"));
}

TEST(TorviActivateSidWire, RefusesASessionThatIsNoNodesWith87) {
    const SessionPtr withoutSid = makeSession(ActivateSession::node());
    withoutSid->pszSid[0] = L'\0';
    const SessionPtr withoutNode = makeSession();
    const RawServer server({Reply::json(R"({"status":1})")});
    for (_WFM_AUTH_CONTEXT* session :
         {withoutNode.get(), withoutSid.get(), static_cast<_WFM_AUTH_CONTEXT*>(nullptr)}) {
        ActivateSession call(server);
        call.session = session;
        LogCapture log;
        EXPECT_EQ(call.run(), 87u);
        EXPECT_EQ(call.result, 0xABCDu);
        log.expectLines({"[WFM] TorviActivateSid(127.0.0.1:" + std::to_string(server.port()) +
                         "): WFM_PARSE_XML_INVALID_PARAMETER"});
    }
    EXPECT_EQ(server.connectionCount(), 0u);
}

TEST(TorviActivateSidWire, IsSafeToCallTwiceAndLeavesTheSession) {
    const RawServer server({Reply::json(R"({"status":1})")});
    ActivateSession call(server);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(sidOf(call.session), L"sid123");
    EXPECT_EQ(slaveOf(call.session), L"Node7");
}
