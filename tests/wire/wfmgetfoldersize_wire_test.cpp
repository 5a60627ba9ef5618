// WFMGetFolderSize: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "lines.h"
#include "refusals.h"
#include "routes.h"
#include "support/logcapture.h"
#include "support/rawserver.h"
#include "support/session.h"
#include "support/wire.h"
#include "teamfolders.h"

using namespace wire;

namespace {

struct FolderSizeCall {
    const wchar_t* slaveID = nullptr;
    const wchar_t* name = L"a";
    const wchar_t* parent = L"/home";
    uint32_t result = 0xABCD;
    int64_t size = -77;
    uint32_t* resultWord = &result;
    int64_t* out = &size;

    FolderSizeCall() = default;
    FolderSizeCall(const FolderSizeCall&) = delete;
    FolderSizeCall& operator=(const FolderSizeCall&) = delete;

    uint32_t run(_WFM_AUTH_CONTEXT* session, uint32_t port) {
        return WFMGetFolderSize(session, kServer, port, slaveID, name, parent, nullptr, resultWord, out);
    }
    bool isUntouched() const { return result == 0xABCD && size == -77; }
};

std::string query(const std::string& path, const std::string& name) {
    return "func=properties&sid=sid123&path=" + path + "&total=1&name=" + name;
}

class WFMGetFolderSizeWire : public testing::Test {
protected:
    SessionPtr session = makeTeamSession();
    LogCapture log;
};

}  // namespace

TEST_F(WFMGetFolderSizeWire, AsksForThePathEncoded) {
    for (const wchar_t* parent : {L"/home/b c", L"home/b c"})
        expectOnEveryRoute(query("%2Fhome%2Fb%20c", "d%26e"),
                           [parent](_WFM_AUTH_CONTEXT* context, uint32_t port, const wchar_t* slaveID) {
                               FolderSizeCall call;
                               call.parent = parent;
                               call.name = L"d&e";
                               call.slaveID = slaveID;
                               call.run(context, port);
                           });
}

TEST_F(WFMGetFolderSizeWire, ThePathGoesToTheTeamFoldersPlaceAndNode) {
    expectOnEveryPathRoute(query, [](_WFM_AUTH_CONTEXT* context, uint32_t port, const PathRoute& route) {
        FolderSizeCall call;
        call.parent = route.folder;
        call.name = route.name;
        call.slaveID = route.slaveID;
        call.run(context, port);
    });
}

TEST_F(WFMGetFolderSizeWire, WhatTheServerSaysDecidesResultAndSize) {
    constexpr int64_t kUntouched = -77;
    const char* const invalid = "[WFM] WWFMGetFolderSize: ERROR_INVALID_PARAMETER";
    const struct {
        std::string reply;
        int32_t result;
        int64_t size;
        std::vector<LogLine> lines;
    } rows[] = {
        {R"({"status":1,"size":"0"})", 0, 0, {}},
        {R"({"status":1,"size":"5000000000"})", 0, 5000000000, {}},
        {R"({"size":9223372036854775807})", 0, INT64_MAX, {}},
        {R"({"status":1,"size":"-1"})", 87, kUntouched, {invalid}},
        {R"({"status":1,"size":""})", 87, kUntouched, {invalid}},
        {R"({"status":1,"size":")" + std::string(5000, '7') + "\"}", 87, kUntouched, {invalid}},
        {"{}", 87, kUntouched, {invalid}},
        {R"({"status":4,"size":"7"})", 5, kUntouched, {}},
        {R"({"status":5,"size":"7"})", 3, kUntouched, {}},
        {R"({"status":3,"size":"7"})",
         -1,
         kUntouched,
         {"[WFM] WWFMGetFolderSize: ERROR_UNKNOWN Status(-29)"}},
        {R"({"status":34})", -1, kUntouched, {"[WFM] WWFMGetFolderSize: ERROR_UNKNOWN Status(-1)"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply.substr(0, 80));
        RawServer server({Reply::json(row.reply)});
        FolderSizeCall call;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(static_cast<int32_t>(call.result), row.result);
        EXPECT_EQ(call.size, row.size);
        EXPECT_EQ(log.lines(), row.lines);
    }
}

TEST_F(WFMGetFolderSizeWire, ASizeThatIsNoTextOrNumberIs14) {
    for (const char* reply : {R"({"status":1,"size":[]})", R"({"status":1,"size":{}})"}) {
        RawServer server({Reply::json(reply)});
        FolderSizeCall call;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 14u);
        EXPECT_EQ(call.result, 0xFFFFFFFFu);
        EXPECT_EQ(call.size, -77);
        log.expectLines({"[WFM] WWFMGetFolderSize: WFM_PARSE_XML_FAIL",
                         summaryLine("WWFMGetFolderSize", server.port(), 14)});
    }
}

TEST_F(WFMGetFolderSizeWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    expectRefusals<FolderSizeCall>(
        log, session.get(), "WWFMGetFolderSize",
        {[](FolderSizeCall& call) { call.name = nullptr; }, [](FolderSizeCall& call) { call.name = L""; },
         [](FolderSizeCall& call) { call.parent = nullptr; }, [](FolderSizeCall& call) { call.parent = L""; },
         [](FolderSizeCall& call) { call.resultWord = nullptr; },
         [](FolderSizeCall& call) { call.out = nullptr; }});
}
