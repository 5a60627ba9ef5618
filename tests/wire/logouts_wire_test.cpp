// What both logouts do alike. Their lines differ in a colon.

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

// Only here can a session without a sid be had.
#include "../../src/core/authcontext.h"
#include "loginproxy.h"
#include "support/logcapture.h"
#include "support/proxy.h"
#include "support/session.h"
#include "support/wire.h"

using namespace wire;

namespace {

const char* const kDone = R"({"status":1,"success":"true"})";

struct Logout {
    const char* name;
    uint32_t (*call)(const wchar_t* server, uint32_t port, bool force, _WFM_AUTH_CONTEXT* context);
    const char* place;
    const char* refused;
    const char* before;  ///< the line of an answer that isn't a plain yes, up to its numbers
};

class LogoutWire : public testing::TestWithParam<Logout> {
protected:
    static uint32_t run(const RawServer& server, const SessionPtr& session, bool force = false) {
        return GetParam().call(kServer, server.port(), force, session.get());
    }
    static std::string target(const std::string& sid = "sid123") {
        return GetParam().place + ("?sid=" + sid + "&logout=1");
    }
    static std::string summary() { return std::string("[WFM] ") + GetParam().name + " failed dwStatus(14)"; }
};

}  // namespace

TEST_P(LogoutWire, AsksItsCgi) {
    const RawServer server({Reply::json(kDone)});
    const SessionPtr session = makeSession();
    LogCapture log;
    EXPECT_EQ(run(server, session), 0u);
    expectGet(server.onlyRequest(), target(), baseHeaders(server));
    log.expectNoLines();
}

TEST_P(LogoutWire, GoesAsTheSessionDoes) {
    SessionOptions options;
    options.agentName = L"Client/7";
    options.forwardedFor = L"10.1.2.3";
    options.sid = "a%b c";
    const RawServer server({Reply::json(kDone)});
    EXPECT_EQ(run(server, makeSession(options)), 0u);
    const Request request = server.onlyRequest();
    EXPECT_EQ(request.header("User-Agent"), "Client/7");
    EXPECT_EQ(request.header("X-Forwarded-For"), "10.1.2.3");
    EXPECT_EQ(percentDecode(request.target()), target("a%b c"));
}

TEST_P(LogoutWire, GoesThroughTheSessionsProxy) {
    if (!TinyProxy::installed()) GTEST_SKIP() << "tinyproxy isn't installed";
    const LoginProxy proxy;
    SessionOptions options;
    proxy.lead(options);
    const RawServer server({Reply::json(kDone)});
    EXPECT_EQ(run(server, makeSession(options)), 0u);
    EXPECT_TRUE(proxy.passedOn(GetParam().place));
}

TEST_P(LogoutWire, LeavesTheSessionAsItIs) {
    for (const char* reply : {kDone, "no"}) {
        const RawServer server({Reply::json(reply)});
        const SessionPtr session = makeSession();
        const auto before = std::make_unique<_WFM_AUTH_CONTEXT>(*session);
        run(server, session);
        EXPECT_EQ(std::memcmp(session.get(), before.get(), sizeof *before), 0);
        EXPECT_STREQ(session->pszSid, L"sid123");
    }
}

TEST_P(LogoutWire, ANullContextIs8WithoutALine) {
    LogCapture log;
    EXPECT_EQ(GetParam().call(kServer, 80, false, nullptr), 8u);
    EXPECT_EQ(GetParam().call(nullptr, 0, true, nullptr), 8u);
    log.expectNoLines();
}

TEST_P(LogoutWire, ABadServerOrPortIs8WithOneLine) {
    const SessionPtr session = makeSession();
    LogCapture log;
    EXPECT_EQ(GetParam().call(nullptr, 80, false, session.get()), 8u);
    EXPECT_EQ(GetParam().call(L"", 80, false, session.get()), 8u);
    EXPECT_EQ(GetParam().call(kServer, 0, false, session.get()), 8u);
    log.expectLines({GetParam().refused, GetParam().refused, GetParam().refused});
}

TEST_P(LogoutWire, ASlavesSessionSendsNothingUnlessForced) {
    const RawServer server({Reply::json(kDone)});
    SessionOptions options;
    options.slaveID = "node1";
    const SessionPtr session = makeSession(options);
    LogCapture log;
    EXPECT_EQ(run(server, session), 0u);
    EXPECT_EQ(GetParam().call(nullptr, 0, false, session.get()), 0u);
    EXPECT_EQ(server.connectionCount(), 0u);
    log.expectNoLines();
    EXPECT_EQ(run(server, session, true), 0u);
    EXPECT_EQ(server.onlyRequest().target(), target());
}

TEST_P(LogoutWire, AnEmptySidSendsNothing) {
    const RawServer server({Reply::json(kDone)});
    const SessionPtr session = makeSession();
    session->pszSid[0] = L'\0';
    LogCapture log;
    EXPECT_EQ(run(server, session), 0u);
    EXPECT_EQ(server.connectionCount(), 0u);
    log.expectNoLines();
    // Server and port are looked at before it.
    EXPECT_EQ(GetParam().call(kServer, 0, false, session.get()), 8u);
}

TEST_P(LogoutWire, IsSafeToCallTwice) {
    const RawServer server({Reply::json(kDone), Reply::json(R"({"status":3,"success":"false"})")});
    const SessionPtr session = makeSession();
    EXPECT_EQ(run(server, session), 0u);
    EXPECT_EQ(run(server, session), 14u);
}

TEST_P(LogoutWire, AnythingButAPlainYesIs14) {
    const std::pair<const char*, const char*> rows[] = {
        {R"({"status":3,"success":"true"})", "Status(-29), Result(1)"},
        {R"({"status":1})", "Status(0), Result(0)"},
        {R"({"status":1,"success":"false"})", "Status(0), Result(0)"},
        {R"({"status":1,"success":"TRUE"})", "Status(0), Result(0)"},
        {R"({"status":0,"success":"true"})", "Status(-2), Result(1)"},
        {R"({"success":"true"})", "Status(-1), Result(1)"},
        {R"({"status":[],"success":"true"})", "Status(-1), Result(1)"},
        {"{}", "Status(-1), Result(0)"},
        {"no", "Status(-1), Result(0)"},
        {"[]", "Status(-1), Result(0)"},
        {"", "Status(-1), Result(0)"},
    };
    const SessionPtr session = makeSession();
    for (const auto& [reply, numbers] : rows) {
        SCOPED_TRACE(reply);
        const RawServer server({Reply::json(reply)});
        LogCapture log;
        EXPECT_EQ(run(server, session), 14u);
        log.expectLines({GetParam().before + std::string(numbers), summary()});
    }
}

INSTANTIATE_TEST_SUITE_P(
    , LogoutWire,
    testing::Values(Logout{"TorviLogout", TorviLogout, "/cgi-bin/torvi/torvisrv_logout.cgi",
                           "[WFM] TorviLogout failed dwStatus(8)", "[WFM] TorviLogout WFM_PARSE_XML_FAIL "},
                    Logout{"WFMLogout", WFMLogout, "/cgi-bin/filemanager/wfm2Logout.cgi",
                           "[WFM] WFMLogout: WFM_PARSE_XML_INVALID_PARAMETER",
                           "[WFM] WFMLogout: WFM_PARSE_XML_FAIL "}),
    [](const auto& info) { return std::string(info.param.name); });
