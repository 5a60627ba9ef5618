#include <gtest/gtest.h>

#include "pathroutes.h"
#include "support/logcapture.h"
#include "support/wire.h"

using namespace wire;

namespace {

const char* const kGood = R"({"status":1})";

std::string target(const std::string& cgi, const std::string& folder, const std::string& name) {
    return cgi + "?func=nubo_check_permission&sid=sid123&path=" + folder + "&file_name=" + name +
           "&check_upload=1";
}

struct CheckCall {
    SessionPtr session = makeSession();
    uint32_t port = 80;
    const wchar_t* slaveID = nullptr;
    const wchar_t* folder = L"/home";
    const wchar_t* name = L"a.txt";
    uint32_t result = 0xABCD;

    CheckCall() = default;
    explicit CheckCall(const RawServer& at) : port(at.port()) {}
    uint32_t run() {
        return WFMTorviCheckPermission(session.get(), kServer, port, slaveID, folder, name, nullptr, &result);
    }
};

}  // namespace

TEST(WFMTorviCheckPermissionWire, AsksWithOneGet) {
    RawServer server({Reply::json(kGood)});
    CheckCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    log.expectNoLines();
    expectGet(server.onlyRequest(), target("/cgi-bin/torvi/torvisrv.cgi", "%2Fhome", "a.txt"),
              baseHeaders(server));
}

TEST(WFMTorviCheckPermissionWire, GoesToTheNodeAndFolderOfItsPath) {
    for (const PathRoute& route : pathRoutes()) {
        SCOPED_TRACE(route.what);
        RawServer server({Reply::json(kGood)});
        CheckCall call(server);
        call.session = route.session();
        call.slaveID = route.slaveID;
        call.folder = route.folder;
        call.name = route.name;
        EXPECT_EQ(call.run(), 0u);
        expectRequestLine(server.onlyRequest(),
                          "GET " + target(route.cgi(), route.sent, route.sentName) + " HTTP/1.1");
    }
}

TEST(WFMTorviCheckPermissionWire, EncodesFolderAndName) {
    RawServer server({Reply::json(kGood)});
    CheckCall call(server);
    call.folder = L"/100% & \x6587";
    call.name = L"a'b=\"\x1F600\".txt";
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(server.onlyRequest().target(),
              target("/cgi-bin/torvi/torvisrv.cgi", "%2F100%25%20%26%20%E6%96%87",
                     "a%27b%3D%22%F0%9F%98%80%22.txt"));
}

TEST(WFMTorviCheckPermissionWire, ANullFolderOrNameCountsAsEmpty) {
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {nullptr, nullptr}, {L"", L""}, {nullptr, L""}, {L"", nullptr}};
    for (const auto& [folder, name] : rows) {
        RawServer server({Reply::json(kGood)});
        CheckCall call(server);
        call.folder = folder;
        call.name = name;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(server.onlyRequest().target(), target("/cgi-bin/torvi/torvisrv.cgi", "", ""));
    }
}

TEST(WFMTorviCheckPermissionWire, RefusesANullResultWord) {
    CheckCall call;
    LogCapture log;
    EXPECT_EQ(
        WFMTorviCheckPermission(call.session.get(), kServer, 80, nullptr, L"/home", L"a", nullptr, nullptr),
        8u);
    log.expectLines({"[WFM] WFMTorviCheckPermission(127.0.0.1:80): WFM_PARSE_XML_INVALID_PARAMETER"});
}

TEST(WFMTorviCheckPermissionWire, OnlyADenialIs5) {
    const std::pair<const char*, uint32_t> rows[] = {
        {R"({"status":4})", 5},   {R"({"status":"4"})", 5},  {R"({"status":1})", 0},
        {R"({"status":5})", 0},   {R"({"status":9})", 0},    {R"({"status":3})", 0},
        {R"({"status":0})", 0},   {R"({"status":-101})", 0}, {R"({"status":2147483647})", 0},
        {R"({"status":[4]})", 0}, {R"({"status":true})", 0}, {R"({"status":"no"})", 0},
    };
    for (const auto& [reply, result] : rows) {
        SCOPED_TRACE(reply);
        RawServer server({Reply::json(reply)});
        CheckCall call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, result);
        log.expectNoLines();
    }
}

TEST(WFMTorviCheckPermissionWire, AReplyWithoutAStatusIs14) {
    for (const char* reply : {"{}", R"({"status":null})", R"({"status":4294967296})"}) {
        SCOPED_TRACE(reply);
        RawServer server({Reply::json(reply)});
        CheckCall call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), 14u);
        EXPECT_EQ(static_cast<int32_t>(call.result), -1);
        log.expectLines({"[WFM] WFMTorviCheckPermission: WFM_PARSE_XML_FAIL",
                         "[WFM] WFMTorviCheckPermission(127.0.0.1:" + std::to_string(server.port()) +
                             ") failed dwStatus(14)"});
    }
}
