// WFMDeletePath: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "forms.h"
#include "lines.h"
#include "pathroutes.h"
#include "refusals.h"
#include "support/logcapture.h"
#include "support/rawserver.h"
#include "support/session.h"
#include "support/wire.h"

using namespace wire;

namespace {

struct DeleteCall {
    const wchar_t* slaveID = nullptr;
    const wchar_t* path = L"/home/a";
    bool cancel = true;  // not read
    uint32_t result = 0xABCD;
    uint32_t* resultWord = &result;

    DeleteCall() = default;
    DeleteCall(const DeleteCall&) = delete;
    DeleteCall& operator=(const DeleteCall&) = delete;

    uint32_t run(_WFM_AUTH_CONTEXT* session, uint32_t port) {
        return WFMDeletePath(session, kServer, port, slaveID, path, &cancel, resultWord);
    }
    bool isUntouched() const { return result == 0xABCD; }
};

const char* const kQuery = "func=delete&sid=sid123";

HeaderList form(const std::string& parent, const std::string& name) {
    return {{"file_name", name}, {"file_total", "1"}, {"path", parent}};
}

class WFMDeletePathWire : public testing::Test {
protected:
    SessionPtr session = pathRouteSession();
    LogCapture log;
};

}  // namespace

TEST_F(WFMDeletePathWire, PostsFolderAndNameAsAForm) {
    for (const wchar_t* path : {L"/home/b c&d/100% \x6587", L"home/b c&d/100% \x6587"})
        expectPostOnEveryRoute(kQuery, form("%2Fhome%2Fb%20c%26d", "100%25%20%E6%96%87"),
                               [path](_WFM_AUTH_CONTEXT* context, uint32_t port, const wchar_t* slaveID) {
                                   DeleteCall call;
                                   call.path = path;
                                   call.slaveID = slaveID;
                                   call.run(context, port);
                               });
}

TEST_F(WFMDeletePathWire, ThePathIsDeletedAtItsPlaceAndNode) {
    for (const PathRoute& route : pathRoutes()) {
        SCOPED_TRACE(route.what);
        RawServer server({answered("1")});
        const SessionPtr routed = route.session();
        const std::wstring path = route.path();
        DeleteCall call;
        call.path = path.c_str();
        call.slaveID = route.slaveID;
        const bool isWhole = *route.sent != '\0' && *route.sentName != '\0';
        EXPECT_EQ(call.run(routed.get(), server.port()), isWhole ? 0u : 5u);
        EXPECT_EQ(static_cast<int32_t>(call.result), isWhole ? 0 : -1);
        if (isWhole) {
            expectPost(server, server.onlyRequest(), route.cgi() + "?" + kQuery,
                       form(route.sent, route.sentName));
        } else {
            EXPECT_EQ(server.connectionCount(), 0u);
        }
    }
}

TEST_F(WFMDeletePathWire, AServerSidePathGetsNoSlashInFront) {
    RawServer server({answered("1")});
    DeleteCall call;
    call.path = L"vtf://S/d/a";
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    expectForm(server.onlyRequest(), form("vtf%3A%2F%2FS%2Fd", "a"));
}

TEST_F(WFMDeletePathWire, ASharesAndTeamFoldersRootsAre5WithoutARequestOrALine) {
    for (const wchar_t* path : {L"/share", L"share", L"/", L"/home/", L"/home/.Torvi/T", L"/home/.Torvi/T/",
                                L"home/.Torvi/T", L"/home/.Torvi/T/a/"}) {
        SCOPED_TRACE(testing::PrintToString(path));
        RawServer server({answered("1")});
        DeleteCall call;
        call.path = path;
        EXPECT_EQ(call.run(session.get(), server.port()), 5u);
        EXPECT_EQ(call.result, 0xFFFFFFFFu);
        EXPECT_EQ(server.connectionCount(), 0u);
    }
    log.expectNoLines();
}

TEST_F(WFMDeletePathWire, TheFileManagerDeletesWhatTheSyncServiceTakesForATeamFolder) {
    useFileManager(*session);
    RawServer server({answered("1")});
    DeleteCall call;
    call.path = L"/home/.Torvi/T";
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    EXPECT_EQ(call.result, 0u);
    expectForm(server.onlyRequest(), form("%2Fhome%2F.Torvi", "T"));
}

TEST_F(WFMDeletePathWire, OnlyThreeRefusalsAreNoSuccess) {
    const struct {
        const char* status;
        int32_t result;
        std::vector<LogLine> lines;
    } rows[] = {{"1", 0, {}},   {"4", 5, {"[WFM] WFMGetSid: ERROR_ACCESS_DENIED(vtf://S/d&/\xE6\x96\x87 %)"}},
                {"0", 2, {}},   {"5", 3, {}},
                {"-3", 3, {}},  {"2", 0, {}},
                {"3", 0, {}},   {"9", 0, {}},
                {"-40", 0, {}}, {"34", 0, {}},
                {"null", 0, {}}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.status);
        RawServer server({answered(row.status)});
        DeleteCall call;
        call.path = L"/home/.Torvi/T/d&/\x6587 %";
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(static_cast<int32_t>(call.result), row.result);
        EXPECT_EQ(log.lines(), row.lines);
    }
}

TEST_F(WFMDeletePathWire, TheLineOfADenialNamesThePathWithItsSlash) {
    RawServer server({answered("4")});
    DeleteCall call;
    call.path = L"home/a";
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    log.expectLines({"[WFM] WFMGetSid: ERROR_ACCESS_DENIED(/home/a)"});
}

// The line carries another function's name.
TEST_F(WFMDeletePathWire, WithoutSuccessTheReplyIsNotUnderstood) {
    for (const UselessReply& row : uselessReplies()) {
        SCOPED_TRACE(row.reply);
        RawServer server({Reply::json(row.reply)});
        DeleteCall call;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 14u);
        EXPECT_EQ(call.result, 0xFFFFFFFFu);
        log.expectLines(
            {"[WFM] WFMGetSid: WFM_PARSE_XML_FAIL nParseResult(" + std::to_string(row.parsed) + ") Result(0)",
             summaryLine("WFMDeletePath", server.port(), 14)});
    }
}

TEST_F(WFMDeletePathWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    expectRefusals<DeleteCall>(
        log, session.get(), "WFMDeletePath",
        {[](DeleteCall& call) { call.path = nullptr; }, [](DeleteCall& call) { call.path = L""; },
         [](DeleteCall& call) { call.resultWord = nullptr; }});
}
