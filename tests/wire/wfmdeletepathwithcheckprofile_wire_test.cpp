// WFMDeletePathwithCheckProfile: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <limits>
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

struct CheckedDeleteCall {
    const wchar_t* slaveID = nullptr;
    const wchar_t* path = L"/home/a";
    int64_t time = 1700000000;
    int64_t size = 5000000000;
    bool isFolder = false;
    bool cleanThumbnails = false;
    bool cancel = true;  // not read
    uint32_t result = 0xABCD;
    uint32_t* resultWord = &result;

    CheckedDeleteCall() = default;
    CheckedDeleteCall(const CheckedDeleteCall&) = delete;
    CheckedDeleteCall& operator=(const CheckedDeleteCall&) = delete;

    uint32_t run(_WFM_AUTH_CONTEXT* session, uint32_t port) {
        return WFMDeletePathwithCheckProfile(session, kServer, port, slaveID, path, time, size, isFolder,
                                             cleanThumbnails, &cancel, resultWord);
    }
    bool isUntouched() const { return result == 0xABCD; }
};

const char* const kQuery = "func=delete&sid=sid123";
const std::string kName = "[WFM] WFMDeletePathwithCheckProfile: ";

HeaderList form(const std::string& parent, const std::string& name, const HeaderList& profile) {
    return joined({{"file_name", name}, {"file_total", "1"}, {"path", parent}}, profile);
}
HeaderList fileForm(const std::string& parent, const std::string& name) {
    return form(parent, name, fileProfile(parent + "%2F" + name, "5000000000", "1700000000"));
}

class WFMDeletePathwithCheckProfileWire : public testing::Test {
protected:
    SessionPtr session = pathRouteSession();
    LogCapture log;
};

}  // namespace

TEST_F(WFMDeletePathwithCheckProfileWire, PostsAFileWithItsSizeAndTime) {
    expectPostOnEveryRoute(kQuery, fileForm("%2Fhome%2Fb%20c%26d", "100%25%20%E6%96%87"),
                           [](_WFM_AUTH_CONTEXT* context, uint32_t port, const wchar_t* slaveID) {
                               CheckedDeleteCall call;
                               call.path = L"/home/b c&d/100% \x6587";
                               call.slaveID = slaveID;
                               call.run(context, port);
                           });
}

TEST_F(WFMDeletePathwithCheckProfileWire, PostsAFolderWithNeitherSizeNorTime) {
    expectPostOnEveryRoute(kQuery, form("%2Fhome", "d", folderProfile("%2Fhome%2Fd")),
                           [](_WFM_AUTH_CONTEXT* context, uint32_t port, const wchar_t* slaveID) {
                               CheckedDeleteCall call;
                               call.path = L"/home/d";
                               call.isFolder = true;
                               call.slaveID = slaveID;
                               call.run(context, port);
                           });
}

TEST_F(WFMDeletePathwithCheckProfileWire, TheWishToCleanThumbnailsComesLast) {
    for (const bool isFolder : {false, true}) {
        RawServer server({answered("1")});
        CheckedDeleteCall call;
        call.isFolder = isFolder;
        call.cleanThumbnails = true;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        const HeaderList profile =
            isFolder ? folderProfile("%2Fhome%2Fa") : fileProfile("%2Fhome%2Fa", "5000000000", "1700000000");
        expectForm(server.onlyRequest(), joined(form("%2Fhome", "a", profile), {{"clean_thumb", "1"}}));
    }
}

TEST_F(WFMDeletePathwithCheckProfileWire, SizeAndTimeAreDecimalWhateverTheyAre) {
    constexpr int64_t least = std::numeric_limits<int64_t>::min();
    constexpr int64_t most = std::numeric_limits<int64_t>::max();
    const struct {
        int64_t size, time;
        const char *sentSize, *sentTime;
    } rows[] = {{0, 1, "0", "1"},
                {-1, -1, "-1", "-1"},
                {most, least, "9223372036854775807", "-9223372036854775808"},
                {least, most, "-9223372036854775808", "9223372036854775807"}};
    for (const auto& row : rows) {
        RawServer server({answered("1")});
        CheckedDeleteCall call;
        call.size = row.size;
        call.time = row.time;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        expectForm(server.onlyRequest(),
                   form("%2Fhome", "a", fileProfile("%2Fhome%2Fa", row.sentSize, row.sentTime)));
    }
}

TEST_F(WFMDeletePathwithCheckProfileWire, ThePathIsDeletedAndCheckedAtItsPlaceAndNode) {
    for (const PathRoute& route : pathRoutes()) {
        if (*route.sent == '\0' || *route.sentName == '\0') continue;  // below
        SCOPED_TRACE(route.what);
        RawServer server({answered("1")});
        const SessionPtr routed = route.session();
        const std::wstring path = route.path();
        CheckedDeleteCall call;
        call.path = path.c_str();
        call.slaveID = route.slaveID;
        EXPECT_EQ(call.run(routed.get(), server.port()), 0u);
        EXPECT_EQ(call.result, 0u);
        expectPost(server, server.onlyRequest(), route.cgi() + "?" + kQuery,
                   fileForm(route.sent, route.sentName));
    }
}

TEST_F(WFMDeletePathwithCheckProfileWire, APathThatIsNotMappedIsCheckedAsGiven) {
    RawServer server({answered("1")});
    CheckedDeleteCall call;
    call.path = L"home/d/a";
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    expectForm(server.request(0),
               form("%2Fhome%2Fd", "a", fileProfile("home%2Fd%2Fa", "5000000000", "1700000000")));
    call.path = L"vtf://S/d/a";
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    expectForm(server.request(1), fileForm("vtf%3A%2F%2FS%2Fd", "a"));
}

TEST_F(WFMDeletePathwithCheckProfileWire, APathWhoseTeamFolderHasNoPlaceIsCheckedAsGiven) {
    RawServer server({answered("1")});
    const SessionPtr team = makeTeamSession({{L"/home/.Torvi/T/", L""}});
    CheckedDeleteCall call;
    call.path = L"home/.Torvi/T/a";
    EXPECT_EQ(call.run(team.get(), server.port()), 0u);
    expectForm(server.request(0), form("%2Fhome%2F.Torvi%2FT", "a",
                                       fileProfile("home%2F.Torvi%2FT%2Fa", "5000000000", "1700000000")));
}

TEST_F(WFMDeletePathwithCheckProfileWire, TheCheckPathIsTheMappedParentASlashAndTheName) {
    RawServer server({answered("1")});
    const SessionPtr team = makeTeamSession();
    CheckedDeleteCall call;
    call.path = L"/home/.Torvi/T/d///a";
    EXPECT_EQ(call.run(team.get(), server.port()), 0u);
    expectForm(server.request(0), form("vtf%3A%2F%2FS%2Fd%2F", "a",
                                       fileProfile("vtf%3A%2F%2FS%2Fd%2F%2Fa", "5000000000", "1700000000")));
}

TEST_F(WFMDeletePathwithCheckProfileWire, ATeamFoldersRootIsNotSupported) {
    for (const wchar_t* path : {L"/home/.Torvi/T", L"/home/.Torvi/T/", L"home/.Torvi/T"})
        for (const bool isFolder : {false, true}) {
            RawServer server({answered("1")});
            CheckedDeleteCall call;
            call.path = path;
            call.isFolder = isFolder;
            log.clear();
            EXPECT_EQ(call.run(session.get(), server.port()), 14u);
            EXPECT_EQ(call.result, 50u);
            EXPECT_EQ(server.connectionCount(), 0u);
            log.expectLines({kName + "Not support to delete team folder root folder(vtf://S)",
                             summaryLine("WFMDeletePathwithCheckProfile", server.port(), 14)});
        }
}

TEST_F(WFMDeletePathwithCheckProfileWire, AShareIs5WithoutARequestOrALine) {
    for (const wchar_t* path : {L"/share", L"share", L"/", L"/home/", L"/home/.Torvi/T/a/"}) {
        SCOPED_TRACE(testing::PrintToString(path));
        RawServer server({answered("1")});
        CheckedDeleteCall call;
        call.path = path;
        EXPECT_EQ(call.run(session.get(), server.port()), 5u);
        EXPECT_EQ(call.result, 0xFFFFFFFFu);
        EXPECT_EQ(server.connectionCount(), 0u);
    }
    log.expectNoLines();
}

TEST_F(WFMDeletePathwithCheckProfileWire, WhatTheServerSaysDecidesTheResult) {
    const std::string path = "vtf://S/d&/\xE6\x96\x87 %";
    const auto told = [&](int code) { return kName + path + " (dwResult=" + std::to_string(code) + ")"; };
    const auto invalid = [&](int code) {
        return kName + "ERROR_INVALID_DATA(" + path + ")(" + std::to_string(code) + ")";
    };
    const struct {
        const char* status;
        bool isFolder;
        int32_t result;
        std::vector<LogLine> lines;
    } rows[] = {{"1", false, 0, {}},
                {"1", true, 0, {}},
                {"4", false, 5, {told(-3), kName + "ERROR_ACCESS_DENIED(" + path + ")"}},
                {"4", true, 5, {told(-3), kName + "ERROR_ACCESS_DENIED(" + path + ")"}},
                {"-40", true, 0, {told(-32)}},
                {"-40", false, 13, {told(-32), invalid(-32)}},
                {"-41", false, 13, {told(-33), invalid(-33)}},
                {"-42", false, 13, {told(-34), invalid(-34)}},
                {"-43", false, 13, {told(-35), invalid(-35)}},
                {"-41", true, 13, {told(-33), invalid(-33)}},
                {"-42", true, 13, {told(-34), invalid(-34)}},
                {"-43", true, 13, {told(-35), invalid(-35)}},
                {"-19", false, -1, {told(-36)}},
                {"-18", false, -1, {told(-30)}},
                {"-44", false, -1, {told(-1)}},
                {"0", false, -1, {told(-2)}},
                {"5", false, -1, {told(-4)}},
                {"5", true, -1, {told(-4)}},
                {"null", false, -1, {told(-1)}}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.status) + (row.isFolder ? " on a folder" : " on a file"));
        RawServer server({answered(row.status)});
        CheckedDeleteCall call;
        call.path = L"/home/.Torvi/T/d&/\x6587 %";
        call.isFolder = row.isFolder;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(static_cast<int32_t>(call.result), row.result);
        EXPECT_EQ(log.lines(), row.lines);
    }
}

TEST_F(WFMDeletePathwithCheckProfileWire, WithoutSuccessTheReplyIsNotUnderstood) {
    for (const UselessReply& row : uselessReplies()) {
        SCOPED_TRACE(row.reply);
        RawServer server({Reply::json(row.reply)});
        CheckedDeleteCall call;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 14u);
        EXPECT_EQ(call.result, 0xFFFFFFFFu);
        log.expectLines(
            {kName + "WFM_PARSE_XML_FAIL nParseResult(" + std::to_string(row.parsed) + ") Result(0)",
             summaryLine("WFMDeletePathwithCheckProfile", server.port(), 14)});
    }
}

TEST_F(WFMDeletePathwithCheckProfileWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    expectRefusals<CheckedDeleteCall>(
        log, session.get(), "WFMDeletePathwithCheckProfile",
        {[](CheckedDeleteCall& call) { call.path = nullptr; },
         [](CheckedDeleteCall& call) { call.path = L""; }, [](CheckedDeleteCall& call) { call.time = 0; },
         [](CheckedDeleteCall& call) {
             call.time = 0;
             call.isFolder = true;
         },
         [](CheckedDeleteCall& call) { call.resultWord = nullptr; }});
}
