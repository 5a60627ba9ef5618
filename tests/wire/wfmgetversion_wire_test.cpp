#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "WebFileManAPI.h"

#include "support/logcapture.h"
#include "support/wire.h"

using namespace wire;

namespace {

struct VersionArgs {
    uint32_t port;
    const wchar_t* agent = L"";
    bool secure = false;
    const wchar_t* server = kServer;
    const wchar_t* forwardedFor = nullptr;
    uint32_t result = 0xABCD;
    _WFM_VERSION_INFORMATION version;

    explicit VersionArgs(const RawServer& at) : port(at.port()) {
        std::fill_n(reinterpret_cast<char*>(&version), sizeof version, 'x');
    }
    uint32_t run() {
        return WFMGetVersion(server, port, agent, secure, 0, nullptr, nullptr, nullptr, forwardedFor, 0,
                             &result, &version);
    }
};

const char* const kGood = R"({"version":"5.1.0","build":"20260101"})";

}  // namespace

TEST(WFMGetVersionWire, AsksTheBareCgi) {
    RawServer server({Reply::json(kGood)});
    VersionArgs call(server);
    EXPECT_EQ(call.run(), 0u);
    expectGet(server.onlyRequest(), "/cgi-bin/filemanager/utilRequest.cgi",
              baseHeaders(server, "VEXAWebFileMan"));
    EXPECT_EQ(call.result, 0u);
    EXPECT_STREQ(call.version.szVersion, L"5.1.0");
    EXPECT_STREQ(call.version.szBuildNumber, L"20260101");
}

TEST(WFMGetVersionWire, ANullAgentIsTheDefaultOneToo) {
    RawServer server({Reply::json(kGood)});
    VersionArgs call(server);
    call.agent = nullptr;
    call.run();
    EXPECT_EQ(server.onlyRequest().header("User-Agent"), "VEXAWebFileMan");
}

TEST(WFMGetVersionWire, SendsTheGivenAgentAndTheForwardedAddress) {
    RawServer server({Reply::json(kGood)});
    VersionArgs call(server);
    call.agent = L"Client/7";
    call.forwardedFor = L"10.1.2.3";
    call.run();
    expectHeaders(server.onlyRequest(), with(baseHeaders(server, "Client/7"), "X-Forwarded-For", "10.1.2.3"));
}

TEST(WFMGetVersionWire, SpeaksTls) {
    for (const Certificate kind : {Certificate::SelfSigned, Certificate::Expired}) {
        RawServer::Options options;
        options.certificate = kind;
        RawServer server({Reply::json(kGood)}, options);
        VersionArgs call(server);
        call.secure = true;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
    }
}

TEST(WFMGetVersionWire, AServerThatDoesNotTellBothIsNotSupported) {
    const std::pair<const char*, const char*> rows[] = {
        {R"({"version":"5.1"})", "strVersion(5.1) strBuildNumber()"},
        {R"({"build":"7"})", "strVersion() strBuildNumber(7)"},
        {"{}", "strVersion() strBuildNumber()"},
    };
    for (const auto& [reply, texts] : rows) {
        RawServer server({Reply::json(reply)});
        VersionArgs call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 50u);
        log.expectLines({std::string("[WFM] WFMGetVersion: ERROR_NOT_SUPPORTED ") + texts});
        EXPECT_EQ(call.version.szVersion[0], L'\0');
    }
}

TEST(WFMGetVersionWire, AFailedCallLeavesTheRecordZeroed) {
    RawServer server({Reply::status(500)});
    VersionArgs call(server);
    EXPECT_EQ(call.run(), 6u);
    const char* bytes = reinterpret_cast<const char*>(&call.version);
    EXPECT_TRUE(std::all_of(bytes, bytes + sizeof call.version, [](char byte) { return byte == 0; }));
}

TEST(WFMGetVersionWire, ALongVersionIsCutToItsFieldAndTerminated) {
    RawServer server({Reply::json(R"({"version":")" + std::string(1000, 'v') + R"(","build":"1"})")});
    VersionArgs call(server);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(std::wstring(call.version.szVersion).size(), 259u);
}

TEST(WFMGetVersionWire, RefusesNullOutParametersAndTouchesNothing) {
    RawServer server({Reply::json(kGood)});
    LogCapture log;
    _WFM_VERSION_INFORMATION version;
    uint32_t result = 0xABCD;
    EXPECT_EQ(WFMGetVersion(kServer, 80, L"", false, 0, L"", L"", L"", L"", 0, nullptr, &version), 8u);
    EXPECT_EQ(WFMGetVersion(kServer, 80, L"", false, 0, L"", L"", L"", L"", 0, &result, nullptr), 8u);
    EXPECT_EQ(result, 0xABCDu);
    const std::string line = "[WFM] WFMGetVersion(127.0.0.1:80): WFM_PARSE_XML_INVALID_PARAMETER";
    log.expectLines({line, line});
}

TEST(WFMGetVersionWire, AnUnknownProxyModeIsTheSystemsProxy) {
    for (const uint32_t mode : {3U, 7U, 0xFFFFFFFFU}) {
        RawServer server({Reply::json(kGood)});
        _WFM_VERSION_INFORMATION version;
        uint32_t result = 1;
        EXPECT_EQ(WFMGetVersion(kServer, server.port(), L"", false, mode, L"127.0.0.1:1", L"u", L"p", L"", 0,
                                &result, &version),
                  0u);
        EXPECT_EQ(result, 0u);
    }
}

TEST(WFMGetVersionWire, AUrlThatCannotBeFormedIs6) {
    LogCapture log;
    _WFM_VERSION_INFORMATION version;
    uint32_t result = 1;
    EXPECT_EQ(WFMGetVersion(kServer, 70000, L"", false, 0, L"", L"", L"", L"", 0, &result, &version), 6u);
    EXPECT_EQ(WFMGetVersion(L"[::1", 80, L"", false, 0, L"", L"", L"", L"", 0, &result, &version), 6u);
    log.expectLines({"[WFM] WFMGetVersion: FAIL(httpStatusCode=0)",
                     "[WFM] WFMGetVersion(127.0.0.1:70000) failed dwStatus(6)",
                     "[WFM] WFMGetVersion: FAIL(httpStatusCode=0)",
                     "[WFM] WFMGetVersion([::1:80) failed dwStatus(6)"});
}

TEST(WFMGetVersionWire, SeparatesProxyModes) {
    RawServer server({Reply::json(kGood)});
    _WFM_VERSION_INFORMATION version;
    uint32_t result = 0;
    // The system's proxy: host, user and password aren't looked at.
    EXPECT_EQ(WFMGetVersion(kServer, server.port(), L"", false, 1, L"127.0.0.1:1", L"u", L"p", L"", 0,
                            &result, &version),
              0u);
    // A manual one that isn't there.
    EXPECT_NE(WFMGetVersion(kServer, server.port(), L"", false, 2, L"127.0.0.1:1", L"", L"", L"", 0, &result,
                            &version),
              0u);
    EXPECT_EQ(server.requestCount(), 1u);
}
