#include <gtest/gtest.h>

#include "loginproxy.h"
#include "replies.h"
#include "support/logcapture.h"
#include "support/proxy.h"
#include "support/session.h"
#include "support/timers.h"
#include "support/wire.h"

using namespace wire;

namespace {

const char* const kIdentity =
    R"({"is_booting":0,"user_type":1,"Torvi_version":"5.0","is_migrating":0,"is_recovering":0,"nubo_cgi":1,)"
    R"("fcgi":1,"UID":"Uid-1","versioning_version":"1.0","SUID":"s","MAC0":"00:11"})";
const std::string kNewPlace = "/cgi-bin/torvi/torvisrvPrepare.cgi?user=";
const std::string kOldPlace = "/cgi-bin/filemanager/torviPrepare.cgi?user=";

struct Probe {
    const wchar_t* server = kServer;
    uint32_t port = 80;
    bool secure = false;
    const wchar_t* user = L"user";
    const wchar_t* uid = L"Uid-1";
    const wchar_t* agent = nullptr;
    uint32_t proxyMode = 0;
    const wchar_t* proxyHost = nullptr;
    const wchar_t* proxyUser = nullptr;
    const wchar_t* proxyPassword = nullptr;
    const wchar_t* forwardedFor = nullptr;
    const wchar_t* otherAgent = nullptr;
    uint32_t timeout = 0;

    Probe() = default;
    explicit Probe(const RawServer& at) : port(at.port()) {}
    uint32_t run() const {
        return WFMValidIP(server, port, 7, secure, user, uid, agent, proxyMode, proxyHost, proxyUser,
                          proxyPassword, forwardedFor, otherAgent, timeout);
    }
};

LogLine said(const std::string& text) {
    return {"Debug", "[WFMShare] WFMValidIP" + text};
}
std::string at(uint32_t port, const std::string& text) {
    return "(127.0.0.1:" + std::to_string(port) + "): " + text;
}
LogLine summary(const RawServer& server, int dwStatus) {
    return said(at(server.port(), "failed dwStatus(" + std::to_string(dwStatus) + ")"));
}
const LogLine kNotIt = said(": WFM_PARSE_XML_FAIL");
const LogLine kIt = said(": Valid IP (127.0.0.1)");

constexpr uint32_t kAllLevels = 63;

}  // namespace

TEST(WFMValidIPWire, AsksTheServerForItsIdentity) {
    const RawServer server({Reply::json(kIdentity)});
    LogCapture log(kAllLevels);
    EXPECT_EQ(Probe(server).run(), 0u);
    expectGet(server.onlyRequest(), kNewPlace + "user", baseHeaders(server, "VEXAWebFileMan"));
    log.expectLines({kIt});
}

TEST(WFMValidIPWire, TheUserIsEncoded) {
    const RawServer server({Reply::json(kIdentity)});
    Probe probe(server);
    probe.user = L"a&b c\x4E2D";
    EXPECT_EQ(probe.run(), 0u);
    EXPECT_EQ(server.onlyRequest().target(), kNewPlace + "a%26b%20c%E4%B8%AD");
}

TEST(WFMValidIPWire, TheOtherAgentGoesFirst) {
    const struct {
        const wchar_t *agent, *other;
        const char* sent;
    } rows[] = {{nullptr, nullptr, "VEXAWebFileMan"},
                {L"", L"", "VEXAWebFileMan"},
                {L"one", nullptr, "one"},
                {L"one", L"", "one"},
                {L"one", L"two", "two"},
                {nullptr, L"two", "two"},
                {L"", L"two", "two"}};
    for (const auto& row : rows) {
        const RawServer server({Reply::json(kIdentity)});
        Probe probe(server);
        probe.agent = row.agent;
        probe.otherAgent = row.other;
        EXPECT_EQ(probe.run(), 0u);
        EXPECT_EQ(server.onlyRequest().header("User-Agent"), row.sent);
    }
}

TEST(WFMValidIPWire, TellsALocalServerAloneForWhomItActs) {
    for (const auto& [host, count] : {std::pair{L"127.0.0.1", 1U}, {L"localhost", 0U}}) {
        const RawServer server({Reply::status(404)});
        Probe probe(server);
        probe.server = host;
        probe.forwardedFor = L"10.1.2.3";
        EXPECT_EQ(probe.run(), 10u);
        ASSERT_EQ(server.requestCount(), 2u);
        for (const Request& request : server.requests())
            EXPECT_EQ(request.headerCount("X-Forwarded-For"), count);
    }
}

TEST(WFMValidIPWire, SpeaksTlsAtBothPlaces) {
    RawServer::Options tls;
    tls.certificate = Certificate::SelfSigned;
    const RawServer server({Reply::status(404), Reply::json(kIdentity)}, tls);
    Probe probe(server);
    probe.secure = true;
    EXPECT_EQ(probe.run(), 0u);
    EXPECT_EQ(server.requestCount(), 2u);
}

TEST(WFMValidIPWire, GoesThroughItsProxy) {
    if (!TinyProxy::installed()) GTEST_SKIP() << "tinyproxy isn't installed";
    const LoginProxy proxy;
    const RawServer server({Reply::status(404), Reply::json(kIdentity)});
    Probe probe(server);
    proxy.lead(probe);
    EXPECT_EQ(probe.run(), 0u);
    EXPECT_TRUE(proxy.passedOn("torvisrvPrepare.cgi"));
    EXPECT_TRUE(proxy.passedOn("torviPrepare.cgi"));
    probe.proxyPassword = L"wrong";
    EXPECT_EQ(probe.run(), 11u);
    EXPECT_EQ(server.requestCount(), 2u);
}

TEST(WFMValidIPWire, RefusesEachMissingArgumentAtItsLevel) {
    const std::pair<const char*, void (*)(Probe&)> changes[] = {
        {"(:80)", [](Probe& a) { a.server = nullptr; }},
        {"(:80)", [](Probe& a) { a.server = L""; }},
        {"(127.0.0.1:0)", [](Probe& a) { a.port = 0; }},
        {"(127.0.0.1:80)", [](Probe& a) { a.user = nullptr; }},
        {"(127.0.0.1:80)", [](Probe& a) { a.user = L""; }},
    };
    for (const auto& [address, change] : changes) {
        Probe probe;
        change(probe);
        LogCapture log(kAllLevels);
        EXPECT_EQ(probe.run(), 8u);
        log.expectLines({said(std::string(address) + ": WFM_PARSE_XML_INVALID_PARAMETER")});
    }
}

TEST(WFMValidIPWire, WithoutATimeoutEachRequestHasThreeSeconds) {
    for (const auto& [given, waited] : {std::pair{0U, 3000}, {7000U, 7000}, {0xFFFFFFFFU, 0x7FFFFFFF}}) {
        const RawServer server({Reply::status(404), Reply::json(kIdentity)});
        Probe probe(server);
        probe.timeout = given;
        const TimerCapture timers;
        EXPECT_EQ(probe.run(), 0u);
        EXPECT_EQ(timers.started(), (std::vector<int>{waited, waited}));
    }
}

TEST(WFMValidIPWire, AServerThatStallsIs2) {
    const RawServer server({Reply::stall()});
    Probe probe(server);
    probe.timeout = 50;
    LogCapture log(kAllLevels);
    EXPECT_EQ(probe.run(), 2u);
    log.expectLines({said(": WFM_PARSE_XML_HTTPTRAN_CONNECT_FAIL(statusCode=408)"), summary(server, 2)});
}

TEST(WFMValidIPWire, AnOldServerIsAskedOnceMoreAtItsPlace) {
    const RawServer server({Reply::status(404), Reply::json(kIdentity)});
    LogCapture log(kAllLevels);
    EXPECT_EQ(Probe(server).run(), 0u);
    ASSERT_EQ(server.requestCount(), 2u);
    expectGet(server.request(0), kNewPlace + "user", baseHeaders(server, "VEXAWebFileMan"));
    expectGet(server.request(1), kOldPlace + "user", baseHeaders(server, "VEXAWebFileMan"));
    log.expectLines({kIt});
}

TEST(WFMValidIPWire, AServerWithNeitherPlaceIs10) {
    const RawServer server({Reply::status(404, kIdentity)});
    for (const wchar_t* uid : {L"Uid-1", L""}) {
        Probe probe(server);
        probe.uid = uid;
        LogCapture log(kAllLevels);
        EXPECT_EQ(probe.run(), 10u);
        log.expectLines({said(at(server.port(), "HTTP_STATUS_NOT_FOUND")), summary(server, 10)});
    }
    EXPECT_EQ(server.requestCount(), 4u);
}

TEST(WFMValidIPWire, TheOldPlacesAnswerCountsAsTheFirsts) {
    const struct {
        int http;
        uint32_t dwStatus;
        const char* word;
    } rows[] = {
        {407, 11, "HTTP_STATUS_PROXY_AUTH_REQ"},
        {503, 12, "HTTP_STATUS_SERVICE_UNAVAIL"},
        {500, 6, "WFM_PARSE_XML_HTTPTRAN_RECEIVE_FAIL(statusCode=500)"},
        {403, 6, "WFM_PARSE_XML_HTTPTRAN_RECEIVE_FAIL(statusCode=403)"},
    };
    for (const auto& row : rows) {
        for (const bool isOld : {false, true}) {
            SCOPED_TRACE(row.http);
            std::vector<Reply> script = {Reply::status(row.http, kIdentity)};
            if (isOld) script.insert(script.begin(), Reply::status(404));
            const RawServer server(script);
            LogCapture log(kAllLevels);
            EXPECT_EQ(Probe(server).run(), row.dwStatus);
            EXPECT_EQ(server.requestCount(), script.size());
            log.expectLines(
                {said(std::string(": ") + row.word), summary(server, static_cast<int>(row.dwStatus))});
        }
    }
}

TEST(WFMValidIPWire, AConnectionThatTheOldPlaceDropsIs2) {
    const RawServer server({Reply::status(404), Reply::closeBeforeReply()});
    LogCapture log(kAllLevels);
    EXPECT_EQ(Probe(server).run(), 2u);
    log.expectLines({said(": WFM_PARSE_XML_HTTPTRAN_CONNECT_FAIL(statusCode=0)"), summary(server, 2)});
}

TEST(WFMValidIPWire, WithoutAUidARedirectsPageIsAnAnswerToo) {
    for (const auto& [page, dwStatus] : {std::pair{"moved", 0U}, {"", 14U}}) {
        const RawServer server({Reply::status(302, page)});
        Probe probe(server);
        probe.uid = nullptr;
        EXPECT_EQ(probe.run(), dwStatus);
        EXPECT_EQ(server.requestCount(), 1u);
    }
}

TEST(WFMValidIPWire, ComparesTheUidWithoutRegardToCase) {
    for (const wchar_t* uid : {L"Uid-1", L"UID-1", L"uid-1"}) {
        const RawServer server({Reply::json(kIdentity)});
        Probe probe(server);
        probe.uid = uid;
        EXPECT_EQ(probe.run(), 0u);
    }
    for (const wchar_t* uid : {L"Uid-2", L"Uid-", L"Uid-11", L" Uid-1", L"---"}) {
        const RawServer server({Reply::json(kIdentity)});
        Probe probe(server);
        probe.uid = uid;
        LogCapture log(kAllLevels);
        EXPECT_EQ(probe.run(), 14u);
        log.expectLines({kNotIt, summary(server, 14)});
    }
}

TEST(WFMValidIPWire, AReplyWithoutThatUidIs14) {
    for (const std::string& reply :
         {std::string(), std::string("{}"), std::string("[]"), std::string("null"), std::string("Uid-1"),
          std::string("<UID>Uid-1</UID>"), std::string(R"({"UID":"---"})"),
          std::string(R"({"UID":["Uid-1"]})"), std::string(R"({"uid":"Uid-1"})"),
          std::string(R"({"UID":"Uid-1")"), std::string(R"({"UID":null})"),
          R"({"UID":")" + std::string(3000000, 'U') + "\"}", std::string("{\"UID\":\"Uid-1\xFF\"}"),
          std::string(R"({"UID":"Uid-1","is_booting":4294967296})")}) {
        SCOPED_TRACE(reply.substr(0, 100));
        const RawServer server({Reply::json(reply)});
        LogCapture log(kAllLevels);
        EXPECT_EQ(Probe(server).run(), 14u);
        log.expectLines({kNotIt, summary(server, 14)});
    }
}

TEST(WFMValidIPWire, AnAnswerOfTheRightServerCountsWhateverItsStatus) {
    const RawServer server({Reply::json(R"({"status":0,"is_booting":1,"UID":"Uid-1"})")});
    EXPECT_EQ(Probe(server).run(), 0u);
}

TEST(WFMValidIPWire, WithoutAUidAnyBodyWillDoButNone) {
    for (const wchar_t* uid : {static_cast<const wchar_t*>(nullptr), L""}) {
        for (const char* body : {kIdentity, "{}", "hello", "[", " ", "\xFF"}) {
            const RawServer server({Reply::text(body)});
            Probe probe(server);
            probe.uid = uid;
            LogCapture log(kAllLevels);
            EXPECT_EQ(probe.run(), 0u) << body;
            log.expectNoLines();
        }
        const RawServer server({Reply::text("")});
        Probe probe(server);
        probe.uid = uid;
        LogCapture log(kAllLevels);
        EXPECT_EQ(probe.run(), 14u);
        log.expectLines({kNotIt, summary(server, 14)});
    }
}

TEST(WFMValidIPWire, ItsLinesAreAtTheDebugLevelAlone) {
    const RawServer server({Reply::status(500)});
    LogCapture log(kAllLevels & ~4u);
    EXPECT_EQ(Probe(server).run(), 6u);
    log.expectNoLines();
}
