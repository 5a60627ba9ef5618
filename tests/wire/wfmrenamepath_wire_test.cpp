// WFMRenamePath: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "forms.h"
#include "lines.h"
#include "refusals.h"
#include "renames.h"
#include "support/logcapture.h"
#include "support/rawserver.h"
#include "support/session.h"
#include "support/wire.h"

using namespace wire;

namespace {

struct RenameCall {
    const wchar_t* slaveID = nullptr;
    const wchar_t* oldPath = L"/home/a";
    const wchar_t* newPath = L"/home/b";
    bool cancel = true;  // not read
    uint32_t result = 0xABCD;
    uint32_t* resultWord = &result;

    RenameCall() = default;
    RenameCall(const RenameCall&) = delete;
    RenameCall& operator=(const RenameCall&) = delete;

    uint32_t run(_WFM_AUTH_CONTEXT* session, uint32_t port) {
        return WFMRenamePath(session, kServer, port, slaveID, oldPath, newPath, &cancel, resultWord);
    }
    bool isUntouched() const { return result == 0xABCD; }
};

const char* const kQuery = "func=rename&sid=sid123";

HeaderList form(const std::string& folder, const std::string& oldName, const std::string& newName) {
    return {{"path", folder}, {"source_name", oldName}, {"dest_name", newName}};
}

class WFMRenamePathWire : public testing::Test {
protected:
    SessionPtr session = renameRoutes().front().session();
    LogCapture log;
};

}  // namespace

TEST_F(WFMRenamePathWire, PostsFolderAndNamesAsAForm) {
    expectPostOnEveryRoute(kQuery, form("%2Fhome", "a", "b"),
                           [](_WFM_AUTH_CONTEXT* context, uint32_t port, const wchar_t* slaveID) {
                               RenameCall call;
                               call.slaveID = slaveID;
                               call.run(context, port);
                           });
}

TEST_F(WFMRenamePathWire, ThePathsAreMappedAndTheOldOneNamesTheNode) {
    for (const RenameRoute& route : renameRoutes()) {
        SCOPED_TRACE(route.what);
        RawServer server({answered("1")});
        const SessionPtr routed = route.session();
        RenameCall call;
        call.oldPath = route.oldPath;
        call.newPath = route.newPath;
        call.slaveID = route.slaveID;
        EXPECT_EQ(call.run(routed.get(), server.port()), 0u);
        EXPECT_EQ(call.result, 0u);
        expectPost(server, server.onlyRequest(), route.cgi() + "?" + kQuery,
                   form(route.folder, route.oldName, route.newName));
    }
}

TEST_F(WFMRenamePathWire, APathAtTheTopOrWithoutANameIsDenied) {
    for (const DeniedPaths& row : deniedPaths()) {
        SCOPED_TRACE(row.texts);
        RawServer server({answered("1")});
        RenameCall call;
        call.oldPath = row.oldPath;
        call.newPath = row.newPath;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 5u);
        EXPECT_EQ(call.result, 0xFFFFFFFFu);
        EXPECT_EQ(server.connectionCount(), 0u);
        log.expectLines(
            {"[WFM] WFMRenamePath: ERROR_ACCESS_DENIED", summaryLine("WFMRenamePath", server.port(), 5)});
    }
}

TEST_F(WFMRenamePathWire, AnotherParentIs87BeforeAnyRequest) {
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {L"/home/a", L"/home/d/a"},        {L"/home/a", L"/Home/b"},
        {L"/home/a", L"home/b"},           {L"/home/.Torvi/T/a", L"/home/.Torvi/U/a"},
        {L"/home/.Torvi/T/a", L"/home/a"}, {L"/home/.Torvi/T", L"/home/.Torvi/new"}};
    for (const auto& [oldPath, newPath] : rows) {
        SCOPED_TRACE(testing::PrintToString(newPath));
        RawServer server({answered("1")});
        RenameCall call;
        call.oldPath = oldPath;
        call.newPath = newPath;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 87u);
        EXPECT_EQ(call.result, 0xFFFFFFFFu);
        EXPECT_EQ(server.connectionCount(), 0u);
        log.expectLines({"[WFM] WFMRenamePath: ERROR_INVALID_PARAMETER",
                         summaryLine("WFMRenamePath", server.port(), 87)});
    }
}

TEST_F(WFMRenamePathWire, WhatTheServerSaysDecidesTheResult) {
    const std::string paths = "(vtf://S/d&/\xE6\x96\x87 %)(vtf://S/d&/b)";
    const std::string denied = "[WFM] WFMRenamePath: ERROR_ACCESS_DENIED" + paths;
    const auto unknown = [&](int code) {
        return std::vector<LogLine>{"[WFM] WFMRenamePath: ERROR_UNKNOWN" + paths + "(" +
                                    std::to_string(code) + ")"};
    };
    const struct {
        const char* status;
        int32_t result;
        std::vector<LogLine> lines;
    } rows[] = {{"1", 0, {}},
                {"2", 5003, {}},
                {"33", 5003, {}},
                {"4", 5, {denied}},
                {"-40", -1, unknown(-32)},
                {"-41", -1, unknown(-33)},
                {"-42", -1, unknown(-34)},
                {"-43", -1, unknown(-35)},
                {"5", -1, unknown(-4)},
                {"3", -1, unknown(-29)},
                {"0", -1, unknown(-2)},
                {"34", -1, unknown(-1)},
                {"null", -1, unknown(-1)}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.status);
        RawServer server({answered(row.status)});
        RenameCall call;
        call.oldPath = L"/home/.Torvi/T/d&/\x6587 %";
        call.newPath = L"/home/.Torvi/T/d&/b/";
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(static_cast<int32_t>(call.result), row.result);
        EXPECT_EQ(log.lines(), row.lines);
    }
}

TEST_F(WFMRenamePathWire, WithoutSuccessTheReplyIsNotUnderstood) {
    for (const UselessReply& row : uselessReplies()) {
        SCOPED_TRACE(row.reply);
        RawServer server({Reply::json(row.reply)});
        RenameCall call;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 14u);
        EXPECT_EQ(call.result, 0xFFFFFFFFu);
        log.expectLines({"[WFM] WFMRenamePath: WFM_PARSE_XML_FAIL(/home/a)(/home/b) nParseResult(" +
                             std::to_string(row.parsed) + ")Result(0)",
                         summaryLine("WFMRenamePath", server.port(), 14)});
    }
}

TEST_F(WFMRenamePathWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    expectRefusals<RenameCall>(
        log, session.get(), "WFMRenamePath",
        {[](RenameCall& call) { call.oldPath = nullptr; }, [](RenameCall& call) { call.oldPath = L""; },
         [](RenameCall& call) { call.newPath = nullptr; }, [](RenameCall& call) { call.newPath = L""; },
         [](RenameCall& call) { call.resultWord = nullptr; }});
}
