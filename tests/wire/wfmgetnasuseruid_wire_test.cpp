// WFMGetNASUserUID, which walks over the places of both services by itself.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "identities.h"
#include "refusals.h"
#include "support/logcapture.h"
#include "support/timers.h"
#include "support/wire.h"

using namespace wire;

namespace {

using Lines = std::vector<std::string>;

const std::string kNew = "/cgi-bin/torvi/torvisrvPrepare.cgi?user=user";
const std::string kOld = "/cgi-bin/filemanager/torviPrepare.cgi?user=user";

struct UserUIDCall {
    const wchar_t* server = kServer;
    uint32_t port = 80;
    uint32_t tlsPort = 0;
    bool secure = false;
    const wchar_t* user = L"user";
    const wchar_t* agent = nullptr;
    uint32_t proxyMode = 0;
    const wchar_t* proxyHost = nullptr;
    const wchar_t* forwardedFor = nullptr;
    const uint32_t* timeout = nullptr;
    bool* cancel = nullptr;
    IdentityRecord record;
    _NAS_USER_UID_INFORMATION* out = &record.record;

    UserUIDCall() = default;
    explicit UserUIDCall(const RawServer& at) : port(at.port()) {}
    UserUIDCall(const UserUIDCall&) = delete;
    UserUIDCall& operator=(const UserUIDCall&) = delete;

    uint32_t run() {
        return WFMGetNASUserUID(server, port, tlsPort, secure, user, agent, proxyMode, proxyHost, nullptr,
                                nullptr, forwardedFor, timeout, cancel, out);
    }
    uint32_t run(_WFM_AUTH_CONTEXT*, uint32_t at) {
        port = at;
        return run();
    }
    bool isUntouched() const { return record.isUntouched(); }
};

Reply identity(const std::string& version, const std::string& uid = "u") {
    return Reply::json(R"({"UID":")" + uid + R"(","Torvi_version":")" + version + "\"}");
}

Lines targets(const RawServer& server) {
    Lines all;
    for (const Request& request : server.requests()) all.push_back(request.target());
    return all;
}

std::string reason(const std::string& word) {
    return "[WFM] WFMGetNASUserUID: " + word;
}
/// The reasons that tell the server, too.
std::string reasonAt(uint32_t port, const std::string& word) {
    return "[WFM] WFMGetNASUserUID(127.0.0.1:" + std::to_string(port) + "): " + word;
}
std::string summary(uint32_t port, uint32_t dwStatus) {
    return summaryLine("PeltAPIGetVLinkInfo", port, dwStatus);
}

RawServer::Options tls() {
    RawServer::Options options;
    options.certificate = Certificate::SelfSigned;
    return options;
}

}  // namespace

// ---- The request ----

TEST(WFMGetNASUserUIDWire, AsksTheSyncServiceWithOneGet) {
    RawServer server({identity("4.3.6")});
    UserUIDCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    expectGet(server.onlyRequest(), kNew, baseHeaders(server, "VEXAWebFileMan"));
    EXPECT_EQ(call.record.text(), "uid=u torvi=4.3.6");
    log.expectNoLines();
}

TEST(WFMGetNASUserUIDWire, EncodesTheUserAtBothPlaces) {
    RawServer server({Reply::status(404), identity("3.0")});
    UserUIDCall call(server);
    call.user = L"a b&c/100%\x6587";
    EXPECT_EQ(call.run(), 0u);
    const std::string user = "a%20b%26c%2F100%25%E6%96%87";
    EXPECT_EQ(targets(server), (Lines{"/cgi-bin/torvi/torvisrvPrepare.cgi?user=" + user,
                                      "/cgi-bin/filemanager/torviPrepare.cgi?user=" + user}));
}

TEST(WFMGetNASUserUIDWire, SendsTheGivenAgentAndTheForwardedAddressWithEachRequest) {
    RawServer server({Reply::status(404), identity("3.0")});
    UserUIDCall call(server);
    call.agent = L"Client/7";
    call.forwardedFor = L"10.1.2.3";
    EXPECT_EQ(call.run(), 0u);
    const HeaderList headers = with(baseHeaders(server, "Client/7"), "X-Forwarded-For", "10.1.2.3");
    expectGet(server.request(0), kNew, headers);
    expectGet(server.request(1), kOld, headers);
}

TEST(WFMGetNASUserUIDWire, AnEmptyAgentIsTheDefaultOneAndAnotherHostHearsOfNoForwardedAddress) {
    RawServer server({identity("4.3")});
    UserUIDCall call(server);
    call.server = L"localhost";
    call.agent = L"";
    call.forwardedFor = L"10.1.2.3";
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(server.onlyRequest().header("User-Agent"), "VEXAWebFileMan");
    EXPECT_EQ(server.onlyRequest().headerCount("X-Forwarded-For"), 0u);
}

TEST(WFMGetNASUserUIDWire, SpeaksTlsAndGoesThroughAProxy) {
    RawServer server({identity("4.3")}, tls());
    UserUIDCall call(server);
    call.secure = true;
    EXPECT_EQ(call.run(), 0u);

    const RefusedPort refused;
    const std::wstring proxy = L"127.0.0.1:" + std::to_wstring(refused.port());
    call.proxyMode = 2;
    call.proxyHost = proxy.c_str();
    EXPECT_NE(call.run(), 0u);
    EXPECT_EQ(server.requestCount(), 1u);
}

TEST(WFMGetNASUserUIDWire, EachRequestHasTheCallersTimeoutOr15Seconds) {
    const uint32_t zero = 0;
    const uint32_t given = 7000;
    const struct {
        const char* what;
        const uint32_t* timeout;
        int expected;
    } rows[] = {{"null", nullptr, 15000}, {"zero", &zero, 15000}, {"given", &given, 7000}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        RawServer server({Reply::status(404), identity("3.0")});
        UserUIDCall call(server);
        call.timeout = row.timeout;
        TimerCapture timers;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(timers.started(), (std::vector<int>{row.expected, row.expected}));
    }
}

// ---- The walk ----

TEST(WFMGetNASUserUIDWire, AServerWithoutTheNewPlaceIsAskedAtTheOldOne) {
    RawServer server({Reply::status(404), identity("3.9.9")});
    UserUIDCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(targets(server), (Lines{kNew, kOld}));
    EXPECT_EQ(call.record.text(), "uid=u torvi=3.9.9");
    log.expectNoLines();
}

TEST(WFMGetNASUserUIDWire, AnOldPlaceThatTellsOfTheSyncServiceSendsBackToTheNewOne) {
    RawServer server({Reply::status(404), identity("4.0.1", "old"), identity("4.0.1", "new")});
    UserUIDCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(targets(server), (Lines{kNew, kOld, kNew}));
    EXPECT_EQ(call.record.text(), "uid=new torvi=4.0.1");
    log.expectNoLines();
}

TEST(WFMGetNASUserUIDWire, ItIsSentBackOnce) {
    RawServer server(
        {Reply::status(404), identity("4.0", "first"), Reply::status(404), identity("4.0", "last")});
    UserUIDCall call(server);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(targets(server), (Lines{kNew, kOld, kNew, kOld}));
    EXPECT_EQ(call.record.text(), "uid=last torvi=4.0");
}

TEST(WFMGetNASUserUIDWire, AnOldPlaceIsBelievedUnlessItTellsOfARunningSyncService) {
    for (const char* reply :
         {R"({"Torvi_version":"3.9"})", R"({"Torvi_version":"4"})", R"({"Torvi_version":".4"})",
          R"({"Torvi_version":"---"})", R"({"Torvi_version":""})", "{}",
          R"({"Torvi_version":"4.3","is_booting":1})", R"({"Torvi_version":"4.3","is_booting":"2"})"}) {
        SCOPED_TRACE(reply);
        RawServer server({Reply::status(404), Reply::json(reply), identity("9.9")});
        UserUIDCall call(server);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(targets(server), (Lines{kNew, kOld}));
    }
}

TEST(WFMGetNASUserUIDWire, OnlyAMissingCgiIsLookedForElsewhere) {
    for (const int status : {400, 403, 405, 410, 500, 502}) {
        SCOPED_TRACE(status);
        RawServer server({Reply::status(status), identity("4.3")});
        UserUIDCall call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), 6u);
        EXPECT_EQ(targets(server), Lines{kNew});
        EXPECT_EQ(call.record.text(), "");
        log.expectLines(
            {reason("FAIL(httpStatusCode=" + std::to_string(status) + ")"), summary(server.port(), 6)});
    }
}

TEST(WFMGetNASUserUIDWire, AMissingCgiAtBothPlacesIs10) {
    RawServer server({Reply::status(404)});
    UserUIDCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 10u);
    EXPECT_EQ(targets(server), (Lines{kNew, kOld}));
    EXPECT_EQ(call.record.text(), "");
    log.expectLines({reasonAt(server.port(), "WFM_PARSE_XML_CGI_NOT_FOUND"), summary(server.port(), 10)});
}

TEST(WFMGetNASUserUIDWire, AMissingCgiAfterTheWayBackIs10) {
    RawServer server({Reply::status(404), identity("4.0"), Reply::status(404), Reply::status(404)});
    UserUIDCall call(server);
    EXPECT_EQ(call.run(), 10u);
    EXPECT_EQ(targets(server), (Lines{kNew, kOld, kNew, kOld}));
    EXPECT_EQ(call.record.text(), "");
}

TEST(WFMGetNASUserUIDWire, AFailureAtTheOldPlaceIsTheFailure) {
    const struct {
        Reply reply;
        uint32_t dwStatus;
        const char* word;
    } rows[] = {{Reply::status(407), 11, "WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ"},
                {Reply::status(503), 12, "WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL"},
                {Reply::status(500), 6, "FAIL(httpStatusCode=500)"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.word);
        RawServer server({Reply::status(404), row.reply});
        UserUIDCall call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), row.dwStatus);
        EXPECT_EQ(targets(server), (Lines{kNew, kOld}));
        log.expectLines({reason(row.word), summary(server.port(), row.dwStatus)});
    }
}

TEST(WFMGetNASUserUIDWire, WhatIsNoIdentityIs14AtEitherPlace) {
    expectNoIdentities<UserUIDCall>();
    RawServer server({Reply::status(404), Reply::json("[]")});
    UserUIDCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 14u);
    EXPECT_EQ(targets(server), (Lines{kNew, kOld}));
    EXPECT_EQ(call.record.text(), "");
    log.expectLines({reasonAt(server.port(), "WFM_PARSE_XML_FAIL"), summary(server.port(), 14)});
}

TEST(WFMGetNASUserUIDWire, WhatTheServerSaysOfItselfFillsTheRecord) {
    expectIdentities<UserUIDCall>();
}

// ---- To TLS ----

TEST(WFMGetNASUserUIDWire, ARedirectGoesToTheTlsPortAndNotToItsLocation) {
    RawServer secure({identity("4.3")}, tls());
    RawServer elsewhere({identity("9.9", "elsewhere")});
    // It counts before its body does.
    RawServer plain(
        {Reply::status(302, R"({"UID":"plain"})").header("Location", "http://" + elsewhere.authority())});
    UserUIDCall call(plain);
    call.tlsPort = secure.port();
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(targets(plain), Lines{kNew});
    expectGet(secure.onlyRequest(), kNew, baseHeaders(secure, "VEXAWebFileMan"));
    EXPECT_EQ(elsewhere.connectionCount(), 0u);
    EXPECT_EQ(call.record.text(), "uid=u torvi=4.3");
    log.expectNoLines();
}

TEST(WFMGetNASUserUIDWire, ARedirectAtTheOldPlaceAsksThereAndTheWalkGoesOn) {
    RawServer secure({identity("4.3", "old"), identity("4.3", "new")}, tls());
    RawServer plain({Reply::status(404), Reply::redirect("https://127.0.0.1/")});
    UserUIDCall call(plain);
    call.tlsPort = secure.port();
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(targets(plain), (Lines{kNew, kOld}));
    EXPECT_EQ(targets(secure), (Lines{kOld, kNew}));
    EXPECT_EQ(call.record.text(), "uid=new torvi=4.3");
}

TEST(WFMGetNASUserUIDWire, AfterARedirectAMissingCgiIsLookedForOverTls) {
    RawServer secure({Reply::status(404), identity("3.0")}, tls());
    RawServer plain({Reply::redirect("https://127.0.0.1/")});
    UserUIDCall call(plain);
    call.tlsPort = secure.port();
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(targets(plain), Lines{kNew});
    EXPECT_EQ(targets(secure), (Lines{kNew, kOld}));
}

TEST(WFMGetNASUserUIDWire, ARedirectWithNowhereToGoIs6) {
    RawServer plain({Reply::redirect("https://127.0.0.1/")});
    UserUIDCall call(plain);
    LogCapture log;
    EXPECT_EQ(call.run(), 6u);
    EXPECT_EQ(plain.requestCount(), 1u);
    EXPECT_EQ(call.record.text(), "");
    log.expectLines({reason("FAIL(httpStatusCode=302)"), summary(plain.port(), 6)});
}

TEST(WFMGetNASUserUIDWire, ARedirectOverTlsIs6) {
    RawServer secure({Reply::redirect("https://127.0.0.1/")}, tls());
    UserUIDCall call(secure);
    call.secure = true;
    call.tlsPort = secure.port();
    EXPECT_EQ(call.run(), 6u);
    EXPECT_EQ(secure.requestCount(), 1u);
}

TEST(WFMGetNASUserUIDWire, ASecondRedirectIs6) {
    RawServer secure({Reply::redirect("https://127.0.0.1/")}, tls());
    RawServer plain({Reply::redirect("https://127.0.0.1/")});
    UserUIDCall call(plain);
    call.tlsPort = secure.port();
    LogCapture log;
    EXPECT_EQ(call.run(), 6u);
    EXPECT_EQ(plain.requestCount(), 1u);
    EXPECT_EQ(secure.requestCount(), 1u);
    log.expectLines({reason("FAIL(httpStatusCode=302)"), summary(secure.port(), 6)});
}

// ---- Cancelled ----

TEST(WFMGetNASUserUIDWire, CancelledBeforehandItAsksNothing) {
    RawServer server({identity("4.3")});
    UserUIDCall call(server);
    bool cancel = true;
    call.cancel = &cancel;
    LogCapture log;
    EXPECT_EQ(call.run(), 2u);
    EXPECT_EQ(server.connectionCount(), 0u);
    EXPECT_EQ(call.record.text(), "");
    log.expectLines({summary(server.port(), 2)});
}

TEST(WFMGetNASUserUIDWire, CancelledOnTheWayItAsksNoFurther) {
    bool cancel = false;
    RawServer server([&cancel](const Request&) {
        cancel = true;
        return Reply::status(404);
    });
    UserUIDCall call(server);
    call.cancel = &cancel;
    LogCapture log;
    EXPECT_EQ(call.run(), 2u);
    EXPECT_EQ(targets(server), Lines{kNew});
    EXPECT_EQ(call.record.text(), "");
    log.expectLines({summary(server.port(), 2)});
}

TEST(WFMGetNASUserUIDWire, AFlagThatIsNotSetCancelsNothing) {
    RawServer server({Reply::status(404), identity("3.0")});
    UserUIDCall call(server);
    bool cancel = false;
    call.cancel = &cancel;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(server.requestCount(), 2u);
}

// ---- Arguments ----

TEST(WFMGetNASUserUIDWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    LogCapture log;
    expectRefusals<UserUIDCall>(
        log, nullptr, "WFMGetNASUserUID",
        {[](UserUIDCall& call) { call.user = nullptr; }, [](UserUIDCall& call) { call.user = L""; },
         [](UserUIDCall& call) { call.out = nullptr; }});
}

TEST(WFMGetNASUserUIDWire, CancelledBehindARedirectOrOnTheWayBackItIsNoSuccess) {
    for (const bool redirect : {true, false}) {
        SCOPED_TRACE(redirect);
        bool cancel = false;
        int answered = 0;
        RawServer server([&](const Request&) {
            if (redirect) {
                cancel = true;
                return Reply::status(302);
            }
            // An old place that tells of the sync service leads back.
            if (++answered == 1) return Reply::status(404);
            cancel = true;
            return identity("4.3");
        });
        UserUIDCall call(server);
        call.tlsPort = server.port();
        call.cancel = &cancel;
        LogCapture log;
        EXPECT_EQ(call.run(), 2u);
        EXPECT_EQ(server.requestCount(), redirect ? 1u : 2u);
        EXPECT_EQ(call.record.text(), "");
        log.expectLines({summary(server.port(), 2)});
    }
}
