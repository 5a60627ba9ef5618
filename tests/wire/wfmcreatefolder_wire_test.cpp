// WFMCreateFolder: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "forms.h"
#include "lines.h"
#include "pathroutes.h"
#include "refusals.h"
#include "routes.h"
#include "support/logcapture.h"
#include "support/rawserver.h"
#include "support/session.h"
#include "support/wire.h"

using namespace wire;

namespace {

struct CreateFolderCall {
    const wchar_t* slaveID = nullptr;
    const wchar_t* parent = L"/home";
    const wchar_t* name = L"new";
    bool cancel = true;  // not read
    uint32_t result = 0xABCD;
    uint32_t* resultWord = &result;

    CreateFolderCall() = default;
    CreateFolderCall(const CreateFolderCall&) = delete;
    CreateFolderCall& operator=(const CreateFolderCall&) = delete;

    uint32_t run(_WFM_AUTH_CONTEXT* session, uint32_t port) {
        return WFMCreateFolder(session, kServer, port, slaveID, parent, name, &cancel, resultWord);
    }
    bool isUntouched() const { return result == 0xABCD; }
};

std::string query(const std::string& parent, const std::string& name) {
    return "func=createdir&sid=sid123&dest_folder=" + name + "&dest_path=" + parent;
}

class WFMCreateFolderWire : public testing::Test {
protected:
    SessionPtr session = pathRouteSession();
    LogCapture log;
};

}  // namespace

TEST_F(WFMCreateFolderWire, AsksForTheNewFolderEncoded) {
    for (const wchar_t* parent : {L"/home/b c&d", L"home/b c&d"})
        expectOnEveryRoute(query("%2Fhome%2Fb%20c%26d", "100%25%20%E6%96%87%2Fx"),
                           [parent](_WFM_AUTH_CONTEXT* context, uint32_t port, const wchar_t* slaveID) {
                               CreateFolderCall call;
                               call.parent = parent;
                               call.name = L"100% \x6587/x";
                               call.slaveID = slaveID;
                               call.run(context, port);
                           });
}

TEST_F(WFMCreateFolderWire, TheFolderGoesToItsPlaceAndNode) {
    for (const PathRoute& route : pathRoutes()) {
        if (route.folder == nullptr || *route.folder == L'\0' || *route.name == L'\0') continue;
        if (*route.sentName == '\0') continue;  // a team folder's root, below
        SCOPED_TRACE(route.what);
        RawServer server({answered("1")});
        const SessionPtr routed = route.session();
        CreateFolderCall call;
        call.parent = route.folder;
        call.name = route.name;
        call.slaveID = route.slaveID;
        EXPECT_EQ(call.run(routed.get(), server.port()), 0u);
        EXPECT_EQ(call.result, 0u);
        expectGet(server.onlyRequest(), route.cgi() + "?" + query(route.sent, route.sentName),
                  baseHeaders(server));
    }
}

TEST_F(WFMCreateFolderWire, TheRootOfATeamFolderExistsAlreadyWithoutARequest) {
    for (const wchar_t* parent : {L"/home/.Torvi", L"/home/.Torvi/", L"home/.Torvi"}) {
        RawServer server({answered("1")});
        CreateFolderCall call;
        call.parent = parent;
        call.name = L"T";
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(call.result, 183u);
        EXPECT_EQ(server.connectionCount(), 0u);
    }
    log.expectNoLines();
}

TEST_F(WFMCreateFolderWire, TheFileManagerIsAskedForATeamFoldersRoot) {
    useFileManager(*session);
    RawServer server({answered("1")});
    CreateFolderCall call;
    call.parent = L"/home/.Torvi";
    call.name = L"T";
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(server.onlyRequest().queryText(), query("%2Fhome%2F.Torvi", "T"));
}

TEST_F(WFMCreateFolderWire, TheParentGetsASlashInFrontUnlessItIsAServerSidePath) {
    const std::pair<const wchar_t*, const char*> rows[] = {{L"/", "%2F"},
                                                           {L"share", "%2Fshare"},
                                                           {L"/home/", "%2Fhome%2F"},
                                                           {L"home/.Torvi/T/", "vtf%3A%2F%2FS"},
                                                           {L"vtf://S/d", "vtf%3A%2F%2FS%2Fd"},
                                                           {L"vtf:/S", "%2Fvtf%3A%2FS"}};
    for (const auto& [parent, sent] : rows) {
        SCOPED_TRACE(sent);
        RawServer server({answered("1")});
        CreateFolderCall call;
        call.parent = parent;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(server.onlyRequest().queryText(), query(sent, "new"));
    }
}

TEST_F(WFMCreateFolderWire, WhatTheServerSaysDecidesTheResult) {
    const std::string where = "[WFM] WFMCreateFolder: (vtf://S/d&)(\xE6\x96\x87 %)";
    const struct {
        const char* status;
        int32_t result;
        std::vector<LogLine> lines;
    } rows[] = {{"1", 0, {}},
                {"\"1\"", 0, {}},
                {"2", 183, {}},
                {"33", 183, {}},
                {"5", 3, {}},
                {"-3", 3, {}},
                {"26", 206, {}},
                {"4", 5, {where + "ERROR_ACCESS_DENIED"}},
                {"9", -1, {where + "ERROR_UNKNOWN(-6)"}},
                {"3", -1, {where + "ERROR_UNKNOWN(-29)"}},
                {"0", -1, {where + "ERROR_UNKNOWN(-2)"}},
                {"34", -1, {where + "ERROR_UNKNOWN(-1)"}},
                {"null", -1, {where + "ERROR_UNKNOWN(-1)"}}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.status);
        RawServer server({answered(row.status)});
        CreateFolderCall call;
        call.parent = L"/home/.Torvi/T/d&";
        call.name = L"\x6587 %";
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(static_cast<int32_t>(call.result), row.result);
        EXPECT_EQ(log.lines(), row.lines);
    }
}

TEST_F(WFMCreateFolderWire, WithoutSuccessTheReplyIsNotUnderstood) {
    for (const UselessReply& row : uselessReplies()) {
        SCOPED_TRACE(row.reply);
        RawServer server({Reply::json(row.reply)});
        CreateFolderCall call;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 14u);
        EXPECT_EQ(call.result, 0xFFFFFFFFu);
        log.expectLines({"[WFM] WFMCreateFolder: WFM_PARSE_XML_FAIL(nParseResult=" +
                             std::to_string(row.parsed) + ")(Result=0)",
                         summaryLine("WFMCreateFolder", server.port(), 14)});
    }
}

TEST_F(WFMCreateFolderWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    expectRefusals<CreateFolderCall>(
        log, session.get(), "WFMCreateFolder",
        {[](CreateFolderCall& call) { call.parent = nullptr; },
         [](CreateFolderCall& call) { call.parent = L""; },
         [](CreateFolderCall& call) { call.name = nullptr; }, [](CreateFolderCall& call) { call.name = L""; },
         [](CreateFolderCall& call) { call.resultWord = nullptr; }});
}
