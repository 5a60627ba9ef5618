// The road that all calls on the cloud share, driven through every call of the table: what each fault of the
// network and each kind of bad reply does to `dwStatus` and the log.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cloudcalls.h"
#include "support/cloudplace.h"
#include "support/logcapture.h"
#include "support/proxy.h"
#include "support/systemproxy.h"
#include "support/timers.h"
#include "support/wire.h"

using namespace wire;

namespace {

std::vector<CloudRow> cloudTable() {
    std::vector<CloudRow> table = cloudAccountRows();
    for (CloudRow& row : cloudDeviceRows()) table.push_back(std::move(row));
    return table;
}

std::string rowName(const testing::TestParamInfo<CloudRow>& info) {
    return info.param.name;
}

std::string filled(std::string line, const std::string& field, int value) {
    if (const auto at = line.find(field); at != std::string::npos)
        line.replace(at, field.size(), std::to_string(value));
    return line;
}

class EveryCloudCallWire : public CloudTest<testing::TestWithParam<CloudRow>> {
protected:
    uint32_t run() { return GetParam().run({cloudHost()}); }

    /// Of the two, the row's own line if it has one, for that HTTP status.
    static std::string line(const char* own, const std::string& word, int http) {
        const std::string usual = std::string("[WFM] ") + GetParam().name + ": " + word;
        return filled(own != nullptr ? own : usual, "{http}", http);
    }

    void expectFails(uint32_t dwStatus, const std::string& reason) {
        LogCapture log;
        EXPECT_EQ(run(), dwStatus);
        std::vector<std::string> expected{reason};
        const std::string summary = filled(line(GetParam().summary, "failed dwStatus({status})", 0),
                                           "{status}", static_cast<int>(dwStatus));
        if (!summary.empty()) expected.push_back(summary);
        EXPECT_EQ(log.texts(), expected);
    }
    void expectFailsBy(uint32_t dwStatus, int http) {
        expectFails(dwStatus, line(GetParam().failed, "FAIL(httpStatusCode={http})", http));
    }
    void expectNotUnderstood(int http = 200) {
        if (!GetParam().readsReply) return expectGood();
        expectFails(14, line(GetParam().notUnderstood, "WFM_PARSE_XML_FAIL", http));
    }
    void expectGood() {
        LogCapture log;
        EXPECT_EQ(run(), 0u);
        log.expectNoLines();
    }
};

}  // namespace

TEST_P(EveryCloudCallWire, SucceedsWithoutALine) {
    const CloudServer server({Reply::json(GetParam().goodReply)});
    expectGood();
    EXPECT_EQ(server.requestCount(), 1u);
}

TEST_P(EveryCloudCallWire, TellsItsSuccessAtTheDebugLevelAlone) {
    const CloudServer server({Reply::json(GetParam().goodReply)});
    LogCapture log(4);
    EXPECT_EQ(run(), 0u);
    if (GetParam().goodLine == nullptr) return log.expectNoLines();
    log.expectLines({{"Debug", GetParam().goodLine}});
}

TEST_P(EveryCloudCallWire, GoesToPort443WithTls) {
    const CloudServer server({Reply::json(GetParam().goodReply)}, true);
    EXPECT_EQ(GetParam().run({cloudHost(), true}), 0u);
    EXPECT_EQ(server.onlyRequest().header("Host"), *cloudAddress() + ":443");
}

TEST_P(EveryCloudCallWire, GoesThroughAManualProxyOnly) {
    const CloudServer server({Reply::json(GetParam().goodReply)});
    RawServer::Options options;
    options.port = freePort();  // the library takes ports up to 32767
    const RawServer proxy({Reply::json(GetParam().goodReply)}, options);
    const std::wstring place = L"127.0.0.1:" + std::to_wstring(proxy.port());
    for (const uint32_t mode : {0u, 1u})
        EXPECT_EQ(GetParam().run({cloudHost(), false, mode, place.c_str()}), 0u);
    EXPECT_EQ(server.requestCount(), 2u);
    EXPECT_EQ(GetParam().run({cloudHost(), false, 2, place.c_str()}), 0u);
    EXPECT_EQ(server.requestCount(), 2u);
    EXPECT_EQ(proxy.onlyRequest().target(), "http://" + server.authority() + server.request(0).target());
}

TEST_P(EveryCloudCallWire, TakesNoProxyHostForAnEmptyOne) {
    const CloudServer server({Reply::json(GetParam().goodReply)});
    LogCapture log;
    const uint32_t ofEmpty = GetParam().run({cloudHost(), false, 2, L""});
    const auto lines = log.texts();
    EXPECT_NE(ofEmpty, 0u);
    log.clear();
    EXPECT_EQ(GetParam().run({cloudHost(), false, 2, nullptr}), ofEmpty);
    EXPECT_EQ(log.texts(), lines);
    EXPECT_EQ(server.requestCount(), 0u);
}

TEST_P(EveryCloudCallWire, TellsTheProxyUserAndPassword) {
    if (!TinyProxy::installed()) GTEST_SKIP() << "tinyproxy isn't installed";
    const CloudServer server({Reply::json(GetParam().goodReply)});
    const TinyProxy proxy("pu", "pp");
    const std::wstring place = proxy.hostAndPort();
    // A checksum may hold line ends, which look like the end of the head and so hide the password from the
    // proxy.
    uint32_t status = 11;
    for (int i = 0; i < 5 && status != 0; ++i)
        status = GetParam().run({cloudHost(), false, 2, place.c_str(), L"pu", L"pp"});
    EXPECT_EQ(status, 0u);
    EXPECT_EQ(server.onlyRequest().headerCount("Proxy-Authorization"), 0u);
    EXPECT_TRUE(proxy.waitForLog(server.onlyRequest().path()));
}

// For another host, as Qt takes no application proxy for this machine's own addresses.
TEST_P(EveryCloudCallWire, GoesThroughTheApplicationsProxyInTheOtherModes) {
    for (const uint32_t mode : {0u, 1u}) {
        SCOPED_TRACE(mode);
        const RawServer proxy({Reply::json(GetParam().goodReply)});
        const SystemProxy system(proxy.port());
        EXPECT_EQ(GetParam().run({L"cloud.invalid", false, mode, L"127.0.0.1:1"}), 0u);
        EXPECT_THAT(proxy.onlyRequest().target(), testing::StartsWith("http://cloud.invalid:80/"));
    }
}

TEST_P(EveryCloudCallWire, Http407Is11) {
    const CloudServer server({Reply::status(407)});
    expectFails(11, line(GetParam().proxyRefused, "WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ", 407));
}

TEST_P(EveryCloudCallWire, Http503Is12) {
    const CloudServer server({Reply::status(503)});
    expectFails(12, line(GetParam().unavailable, "WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL", 503));
}

TEST_P(EveryCloudCallWire, Http404Is10WhereItIsTestedAnd6Elsewhere) {
    const CloudServer server({Reply::status(404)});
    if (!GetParam().has404) return expectFailsBy(6, 404);
    expectFails(10, line(nullptr, "WFM_PARSE_XML_CGI_NOT_FOUND", 404));
}

TEST_P(EveryCloudCallWire, AnyOtherHttpErrorIs6EvenWithAGoodBody) {
    for (const int http : {400, 401, 403, 500}) {
        const CloudServer server({Reply::status(http, GetParam().goodReply)});
        expectFailsBy(6, http);
    }
}

TEST_P(EveryCloudCallWire, Http302IsNotFollowed) {
    const CloudServer server({Reply::redirect("http://" + *cloudAddress() + "/elsewhere")});
    expectNotUnderstood(302);
    EXPECT_EQ(server.requestCount(), 1u);
}

TEST_P(EveryCloudCallWire, ARefusedConnectionIs2) {
    expectFailsBy(2, 0);
}

TEST_P(EveryCloudCallWire, AConnectionClosedBeforeTheReplyIs2) {
    const CloudServer server({Reply::closeBeforeReply()});
    expectFailsBy(2, 0);
    if (server.request(0).method() == "POST") {
        EXPECT_EQ(server.requestCount(), 1u);
    }
}

TEST_P(EveryCloudCallWire, AReplyThatBreaksOffIs2) {
    const CloudServer server({Reply::json(GetParam().goodReply).contentLength(5000)});
    expectFailsBy(2, 200);
}

TEST_P(EveryCloudCallWire, AReplyThatIsNoJsonObjectIs14) {
    const std::string good = GetParam().goodReply;
    for (const std::string& reply :
         {std::string(), std::string("<html>sorry</html>"), good.substr(0, good.size() - 2),
          std::string("[]"), std::string("\"code\""), std::string("null"),
          std::string(5000, '[') + std::string(5000, ']')}) {
        SCOPED_TRACE(reply.substr(0, 100));
        const CloudServer server({Reply::json(reply)});
        expectNotUnderstood();
    }
}

TEST_P(EveryCloudCallWire, WaitsForAMinute) {
    const CloudServer server({Reply::json(GetParam().goodReply)});
    const TimerCapture timers;
    run();
    EXPECT_EQ(timers.started(), std::vector<int>{60000});
}

INSTANTIATE_TEST_SUITE_P(, EveryCloudCallWire, testing::ValuesIn(cloudTable()), rowName);
