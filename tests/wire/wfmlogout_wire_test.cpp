// Beyond logouts_wire_test.cpp.

#include <gtest/gtest.h>

#include "loginargs.h"
#include "support/logcapture.h"

using namespace wire;

namespace {

const char* const kPlace = "/cgi-bin/filemanager/wfm2Logout.cgi?sid=";

}  // namespace

TEST(WFMLogoutWire, EndsTheSessionOfALogin) {
    const RawServer server(
        {Reply::json(FileManagerLogin::accepted("abc")), Reply::json(R"({"status":1,"success":"true"})")});
    FileManagerLogin login(server);
    login.agent = L"Client/7";
    login.forwardedFor = L"10.1.2.3";
    ASSERT_EQ(login.run(), 0u);
    EXPECT_EQ(WFMLogout(kServer, server.port(), false, login.made), 0u);
    expectGet(server.request(1), std::string(kPlace) + "abc&logout=1", baseHeaders(server, "Client/7"));
}

TEST(WFMLogoutWire, HasOnePlaceWhateverTheSession) {
    const RawServer server({Reply::json(R"({"status":1,"success":"true"})")});
    SessionOptions options;
    options.fcgi = true;
    const SessionPtr session = makeSession(options);
    EXPECT_EQ(WFMLogout(kServer, server.port(), false, session.get()), 0u);
    EXPECT_EQ(server.onlyRequest().target(), std::string(kPlace) + "sid123&logout=1");
}

TEST(WFMLogoutWire, ItsLinesHaveAColonButBeforeFail) {
    const SessionPtr session = makeSession();
    const struct {
        int http;
        uint32_t dwStatus;
        const char* line;
    } rows[] = {
        {407, 11, "[WFM] WFMLogout: WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ"},
        {503, 12, "[WFM] WFMLogout: WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL"},
        {404, 6, "[WFM] WFMLogout FAIL(httpStatusCode=404)"},
    };
    for (const auto& row : rows) {
        const RawServer server({Reply::status(row.http)});
        LogCapture log;
        EXPECT_EQ(WFMLogout(kServer, server.port(), false, session.get()), row.dwStatus);
        log.expectLines({row.line, "[WFM] WFMLogout failed dwStatus(" + std::to_string(row.dwStatus) + ")"});
    }
}
