#include <gtest/gtest.h>

// Only here can a session without a sid be had.
#include "../../src/core/authcontext.h"
#include "support/logcapture.h"
#include "support/session.h"
#include "support/wire.h"

using namespace wire;

namespace {

const char* const kDone = R"({"status":1,"success":"true"})";

}  // namespace

TEST(TorviLogoutWire, AsksTheLogoutCgi) {
    RawServer server({Reply::json(kDone)});
    const SessionPtr session = makeSession();
    LogCapture log;
    EXPECT_EQ(TorviLogout(kServer, server.port(), false, session.get()), 0u);
    expectGet(server.onlyRequest(), "/cgi-bin/torvi/torvisrv_logout.cgi?sid=sid123&logout=1",
              baseHeaders(server));
    log.expectNoLines();
}

TEST(TorviLogoutWire, AsksTheFcgiOfASessionThatHasIt) {
    RawServer server({Reply::json(kDone)});
    SessionOptions options;
    options.fcgi = true;
    const SessionPtr session = makeSession(options);
    EXPECT_EQ(TorviLogout(kServer, server.port(), false, session.get()), 0u);
    expectRequestLine(server.onlyRequest(),
                      "GET /cgi-bin/torvi/torvisrv.fcgi?func=logout&sid=sid123&logout=1 HTTP/1.1");
}

TEST(TorviLogoutWire, ANullContextIs8WithoutALine) {
    LogCapture log;
    EXPECT_EQ(TorviLogout(kServer, 80, false, nullptr), 8u);
    log.expectNoLines();
}

TEST(TorviLogoutWire, ASlavesSessionSendsNothingUnlessForced) {
    RawServer server({Reply::json(kDone)});
    SessionOptions options;
    options.slaveID = "node1";
    const SessionPtr session = makeSession(options);
    LogCapture log;
    EXPECT_EQ(TorviLogout(kServer, server.port(), false, session.get()), 0u);
    EXPECT_EQ(TorviLogout(nullptr, 0, false, session.get()), 0u);
    EXPECT_EQ(server.requestCount(), 0u);
    log.expectNoLines();
    EXPECT_EQ(TorviLogout(kServer, server.port(), true, session.get()), 0u);
    expectRequestLine(server.onlyRequest(),
                      "GET /cgi-bin/torvi/torvisrv_logout.cgi?sid=sid123&logout=1 HTTP/1.1");
}

TEST(TorviLogoutWire, AnEmptySidSendsNothing) {
    RawServer server({Reply::json(kDone)});
    const SessionPtr session = makeSession();
    session->pszSid[0] = L'\0';
    LogCapture log;
    EXPECT_EQ(TorviLogout(kServer, server.port(), false, session.get()), 0u);
    EXPECT_EQ(server.requestCount(), 0u);
    log.expectNoLines();
    EXPECT_EQ(TorviLogout(kServer, 0, false, session.get()), 8u);
}

TEST(TorviLogoutWire, IsSafeToCallTwice) {
    RawServer server({Reply::json(kDone), Reply::json(R"({"status":3,"success":"false"})")});
    const SessionPtr session = makeSession();
    EXPECT_EQ(TorviLogout(kServer, server.port(), false, session.get()), 0u);
    EXPECT_EQ(TorviLogout(kServer, server.port(), false, session.get()), 14u);
}

struct LogoutRow {
    const char* name;
    const char* reply;
    const char* line;
};

class TorviLogoutReplyWire : public testing::TestWithParam<LogoutRow> {};

TEST_P(TorviLogoutReplyWire, AnythingButSuccessIs14) {
    RawServer server({Reply::json(GetParam().reply)});
    const SessionPtr session = makeSession();
    LogCapture log;
    EXPECT_EQ(TorviLogout(kServer, server.port(), false, session.get()), 14u);
    log.expectLines({GetParam().line, "[WFM] TorviLogout failed dwStatus(14)"});
}

INSTANTIATE_TEST_SUITE_P(
    , TorviLogoutReplyWire,
    testing::Values(LogoutRow{"Refused", R"({"status":3,"success":"true"})",
                              "[WFM] TorviLogout WFM_PARSE_XML_FAIL Status(-29), Result(1)"},
                    LogoutRow{"NoSuccess", R"({"status":1})",
                              "[WFM] TorviLogout WFM_PARSE_XML_FAIL Status(0), Result(0)"},
                    LogoutRow{"NoStatus", R"({"success":true})",
                              "[WFM] TorviLogout WFM_PARSE_XML_FAIL Status(-1), Result(1)"}),
    [](const auto& info) { return info.param.name; });
