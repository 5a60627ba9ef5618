// WFMRenamePathwithCheckProfile: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <limits>
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

struct CheckedRenameCall {
    const wchar_t* slaveID = nullptr;
    const wchar_t* oldPath = L"/home/a";
    const wchar_t* newPath = L"/home/b";
    int64_t time = 1700000000;
    int64_t size = 5000000000;
    bool isFolder = false;
    bool cancel = true;  // not read
    uint32_t result = 0xABCD;
    uint32_t* resultWord = &result;

    CheckedRenameCall() = default;
    CheckedRenameCall(const CheckedRenameCall&) = delete;
    CheckedRenameCall& operator=(const CheckedRenameCall&) = delete;

    uint32_t run(_WFM_AUTH_CONTEXT* session, uint32_t port) {
        return WFMRenamePathwithCheckProfile(session, kServer, port, slaveID, oldPath, newPath, time, size,
                                             isFolder, &cancel, resultWord);
    }
    bool isUntouched() const { return result == 0xABCD; }
};

const char* const kQuery = "func=rename&sid=sid123";
const std::string kName = "[WFM] WFMRenamePathwithCheckProfile: ";

HeaderList form(const std::string& folder, const std::string& oldName, const std::string& newName,
                const HeaderList& profile) {
    return joined({{"path", folder}, {"source_name", oldName}, {"dest_name", newName}}, profile);
}
HeaderList fileForm(const std::string& folder, const std::string& oldName, const std::string& newName) {
    return form(folder, oldName, newName, fileProfile(folder + "%2F" + oldName, "5000000000", "1700000000"));
}

std::string summary(uint32_t port) {
    return summaryLine("WFMRenamePathwithCheckProfile", port, 14);
}

class WFMRenamePathwithCheckProfileWire : public testing::Test {
protected:
    SessionPtr session = renameRoutes().front().session();
    LogCapture log;
};

}  // namespace

TEST_F(WFMRenamePathwithCheckProfileWire, PostsAFileWithItsSizeAndTime) {
    expectPostOnEveryRoute(kQuery, fileForm("%2Fhome", "a", "b"),
                           [](_WFM_AUTH_CONTEXT* context, uint32_t port, const wchar_t* slaveID) {
                               CheckedRenameCall call;
                               call.slaveID = slaveID;
                               call.run(context, port);
                           });
}

TEST_F(WFMRenamePathwithCheckProfileWire, PostsAFolderWithNeitherSizeNorTime) {
    expectPostOnEveryRoute(kQuery, form("%2Fhome", "a", "b", folderProfile("%2Fhome%2Fa")),
                           [](_WFM_AUTH_CONTEXT* context, uint32_t port, const wchar_t* slaveID) {
                               CheckedRenameCall call;
                               call.isFolder = true;
                               call.slaveID = slaveID;
                               call.run(context, port);
                           });
}

TEST_F(WFMRenamePathwithCheckProfileWire, SizeAndTimeAreDecimalWhateverTheyAre) {
    constexpr int64_t least = std::numeric_limits<int64_t>::min();
    const std::pair<int64_t, const char*> rows[] = {{0, "0"}, {-1, "-1"}, {least, "-9223372036854775808"}};
    for (const auto& [size, sent] : rows) {
        RawServer server({answered("1")});
        CheckedRenameCall call;
        call.size = size;
        call.time = -5;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        expectForm(server.onlyRequest(), form("%2Fhome", "a", "b", fileProfile("%2Fhome%2Fa", sent, "-5")));
    }
}

TEST_F(WFMRenamePathwithCheckProfileWire, ThePathsAreMappedAndCheckedAndTheOldOneNamesTheNode) {
    for (const RenameRoute& route : renameRoutes()) {
        SCOPED_TRACE(route.what);
        RawServer server({answered("1")});
        const SessionPtr routed = route.session();
        CheckedRenameCall call;
        call.oldPath = route.oldPath;
        call.newPath = route.newPath;
        call.slaveID = route.slaveID;
        EXPECT_EQ(call.run(routed.get(), server.port()), 0u);
        EXPECT_EQ(call.result, 0u);
        expectPost(server, server.onlyRequest(), route.cgi() + "?" + kQuery,
                   fileForm(route.folder, route.oldName, route.newName));
    }
}

TEST_F(WFMRenamePathwithCheckProfileWire, APathAtTheTopOrWithoutANameIsDenied) {
    for (const DeniedPaths& row : deniedPaths()) {
        SCOPED_TRACE(row.texts);
        RawServer server({answered("1")});
        CheckedRenameCall call;
        call.oldPath = row.oldPath;
        call.newPath = row.newPath;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 14u);
        EXPECT_EQ(call.result, 5u);
        EXPECT_EQ(server.connectionCount(), 0u);
        log.expectLines({kName + "ERROR_ACCESS_DENIED", summary(server.port())});
    }
}

TEST_F(WFMRenamePathwithCheckProfileWire, AnotherParentIs87BeforeAnyRequest) {
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {{L"/home/a", L"/home/d/a"},
                                                              {L"/home/a", L"/Home/b"},
                                                              {L"/home/.Torvi/T/a", L"/home/.Torvi/U/a"},
                                                              {L"/home/.Torvi/T/a", L"/home/a"}};
    for (const auto& [oldPath, newPath] : rows) {
        SCOPED_TRACE(testing::PrintToString(newPath));
        RawServer server({answered("1")});
        CheckedRenameCall call;
        call.oldPath = oldPath;
        call.newPath = newPath;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 14u);
        EXPECT_EQ(call.result, 87u);
        EXPECT_EQ(server.connectionCount(), 0u);
        log.expectLines({kName + "WFM_PARSE_XML_INVALID_PARAMETER", summary(server.port())});
    }
}

TEST_F(WFMRenamePathwithCheckProfileWire, WhatTheServerSaysDecidesTheResult) {
    const std::string paths = "(vtf://S/d&/\xE6\x96\x87 %)(vtf://S/d&/b)";
    const auto line = [&](const char* word, int code) {
        return std::vector<LogLine>{kName + word + paths + "(" + std::to_string(code) + ")"};
    };
    const char* const invalid = "ERROR_INVALID_DATA";
    const char* const unknown = "ERROR_UNKNOWN";
    const struct {
        const char* status;
        int32_t result;
        std::vector<LogLine> lines;
    } rows[] = {{"1", 0, {}},
                {"2", 5003, {kName + "ERROR_DEPENDENCY_ALREADY_EXISTS" + paths}},
                {"33", 5003, {kName + "ERROR_DEPENDENCY_ALREADY_EXISTS" + paths}},
                {"4", 5, {kName + "ERROR_ACCESS_DENIED" + paths}},
                {"-40", 13, line(invalid, -32)},
                {"-41", 13, line(invalid, -33)},
                {"-42", 13, line(invalid, -34)},
                {"-43", 13, line(invalid, -35)},
                {"-19", -1, line(unknown, -36)},
                {"-18", -1, line(unknown, -30)},
                {"-44", -1, line(unknown, -1)},
                {"5", -1, line(unknown, -4)},
                {"3", -1, line(unknown, -29)},
                {"null", -1, line(unknown, -1)}};
    for (const bool isFolder : {false, true})
        for (const auto& row : rows) {
            SCOPED_TRACE(std::string(row.status) + (isFolder ? " on a folder" : " on a file"));
            RawServer server({answered(row.status)});
            CheckedRenameCall call;
            call.oldPath = L"/home/.Torvi/T/d&/\x6587 %";
            call.newPath = L"/home/.Torvi/T/d&/b/";
            call.isFolder = isFolder;
            log.clear();
            EXPECT_EQ(call.run(session.get(), server.port()), 0u);
            EXPECT_EQ(static_cast<int32_t>(call.result), row.result);
            EXPECT_EQ(log.lines(), row.lines);
        }
}

TEST_F(WFMRenamePathwithCheckProfileWire, WithoutSuccessTheReplyIsNotUnderstood) {
    for (const UselessReply& row : uselessReplies()) {
        SCOPED_TRACE(row.reply);
        RawServer server({Reply::json(row.reply)});
        CheckedRenameCall call;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 14u);
        EXPECT_EQ(call.result, 0xFFFFFFFFu);
        log.expectLines(
            {kName + "WFM_PARSE_XML_FAIL(nParseResult=" + std::to_string(row.parsed) + ")(Result=0)",
             summary(server.port())});
    }
}

TEST_F(WFMRenamePathwithCheckProfileWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    expectRefusals<CheckedRenameCall>(
        log, session.get(), "WFMRenamePathwithCheckProfile",
        {[](CheckedRenameCall& call) { call.oldPath = nullptr; },
         [](CheckedRenameCall& call) { call.oldPath = L""; },
         [](CheckedRenameCall& call) { call.newPath = nullptr; },
         [](CheckedRenameCall& call) { call.newPath = L""; }, [](CheckedRenameCall& call) { call.time = 0; },
         [](CheckedRenameCall& call) {
             call.time = 0;
             call.isFolder = true;
         },
         [](CheckedRenameCall& call) { call.resultWord = nullptr; }});
}
