// WFMMovePathwithCheckProfile: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "lines.h"
#include "moves.h"
#include "refusals.h"
#include "renames.h"

using namespace wire;

namespace {

HeaderList form(const std::string& from, const std::string& name, const std::string& to,
                const HeaderList& profile) {
    return joined({{"source_file", name},
                   {"source_total", "1"},
                   {"source_path", from},
                   {"dest_path", to},
                   {"mode", "0"}},
                  profile);
}
HeaderList fileForm(const std::string& from, const std::string& name, const std::string& to) {
    return form(from, name, to, fileProfile(from + "%2F" + name, "5000000000", "1700000000"));
}

class WFMMovePathwithCheckProfileWire : public MoveTestOf<CheckedMoveCall> {
protected:
    /// A line that names both, in the form of the lines before any request.
    Lines early(const std::string& text) {
        return {"[WFM] " + name() + "(127.0.0.1:{port}): " + text, summary(14)};
    }
};

}  // namespace

// ---- The request ----

TEST_F(WFMMovePathwithCheckProfileWire, PostsAFileWithItsSizeAndTimeAndWithoutAJob) {
    expectPostOnEveryRoute(
        "func=move&sid=sid123&no_fork=1",
        fileForm("%2Fhome%2Fb%20c%26d", "100%25%20%E6%96%87", "%2Fhome%2Fx%3Dy"),
        [](_WFM_AUTH_CONTEXT* context, uint32_t port, const wchar_t* slaveID) {
            CheckedMoveCall once;
            once.source = L"/home/b c&d/100% \x6587";
            once.destination = L"/home/x=y/new/";
            once.slaveID = slaveID;
            once.run(context, port);
        },
        "func=move&sid=sid123");
}

TEST_F(WFMMovePathwithCheckProfileWire, PostsAFolderWithNeitherSizeNorTimeAndAsAJob) {
    expectPostOnEveryRoute(
        "func=move&sid=sid123&no_fork=0", form("%2Fhome", "d", "%2Fhome%2Fe", folderProfile("%2Fhome%2Fd")),
        [](_WFM_AUTH_CONTEXT* context, uint32_t port, const wchar_t* slaveID) {
            CheckedMoveCall once;
            once.source = L"/home/d/";
            once.destination = L"/home/e/d";
            once.isFolder = true;
            once.slaveID = slaveID;
            once.run(context, port);
        },
        "func=move&sid=sid123");
}

TEST_F(WFMMovePathwithCheckProfileWire, SizeAndTimeAreDecimalWhateverTheyAre) {
    constexpr int64_t least = std::numeric_limits<int64_t>::min();
    const std::pair<int64_t, const char*> rows[] = {{0, "0"}, {-1, "-1"}, {least, "-9223372036854775808"}};
    session = makeSession();
    for (const auto& [size, sent] : rows) {
        RawServer server({Reply::json("{}")});
        call.size = size;
        call.time = -5;
        call.run(session.get(), server.port());
        expectForm(server.onlyRequest(),
                   form("%2Fhome%2Fa", "old", "%2Fhome%2Fb", fileProfile("%2Fhome%2Fa%2Fold", sent, "-5")));
    }
}

TEST_F(WFMMovePathwithCheckProfileWire, AParentThatEndsInASlashGetsNoSecondOneInTheProfile) {
    session = makeSession();
    RawServer server({Reply::json("{}")});
    call.source = L"//old";
    call.run(session.get(), server.port());
    expectForm(server.onlyRequest(),
               form("%2F", "old", "%2Fhome%2Fb", fileProfile("%2Fold", "5000000000", "1700000000")));
}

TEST_F(WFMMovePathwithCheckProfileWire, BothPathsAreMappedToTheirNode) {
    const struct {
        const wchar_t *source, *destination, *slaveID;
        const char* prefix;
        HeaderList form;
    } rows[] = {{L"/home/.Torvi/T/d/x/", L"/home/.Torvi/T/e/x", L"n5", "/n2",
                 fileForm("vtf%3A%2F%2FS%2Fd", "x", "vtf%3A%2F%2FS%2Fe")},
                // The same node in other letters; the destination's spelling goes out.
                {L"/home/.Torvi/T/x", L"/home/.Torvi/V/x", L"n5", "/N2",
                 fileForm("vtf%3A%2F%2FS", "x", "vtf%3A%2F%2FV")},
                {L"/home/.Torvi/V/x", L"/home/.Torvi/T/x", L"n5", "/n2",
                 fileForm("vtf%3A%2F%2FV", "x", "vtf%3A%2F%2FS")},
                {L"/home/x", L"/home/d/x", L"n5", "/n5", fileForm("%2Fhome", "x", "%2Fhome%2Fd")},
                {L"/home/x", L"/home/d/x", L"NODE1", "", fileForm("%2Fhome", "x", "%2Fhome%2Fd")},
                {L"home/x", L"other/x", nullptr, "", fileForm("home", "x", "other")},
                {L"vtf://S/x", L"vtf://U/x", L"n5", "/n5", fileForm("vtf%3A%2F%2FS", "x", "vtf%3A%2F%2FU")}};
    session = clusterSession();
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.source));
        RawServer server({Reply::json("{}")});
        call.source = row.source;
        call.destination = row.destination;
        call.slaveID = row.slaveID;
        call.run(session.get(), server.port());
        expectPost(server, server.onlyRequest(),
                   std::string(row.prefix) + "/cgi-bin/torvi/torvisrv.cgi?func=move&sid=sid123&no_fork=1",
                   row.form, "agent");
    }
}

TEST_F(WFMMovePathwithCheckProfileWire, TheFileManagerMapsNothing) {
    session = clusterSession();
    useFileManager(*session);
    RawServer server({Reply::json("{}")});
    call.source = L"/home/.Torvi/T/x";
    call.destination = L"/home/.Torvi/U/x";
    call.slaveID = L"n5";
    call.run(session.get(), server.port());
    expectPost(server, server.onlyRequest(), "/cgi-bin/filemanager/utilRequest.cgi?func=move&sid=sid123",
               fileForm("%2Fhome%2F.Torvi%2FT", "x", "%2Fhome%2F.Torvi%2FU"), "agent");
}

// ---- Ends before the first request ----

TEST_F(WFMMovePathwithCheckProfileWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    session = makeSession();
    expectRefusals<CheckedMoveCall>(log, session.get(), "WFMMovePathwithCheckProfile",
                                    {[](CheckedMoveCall& spoilt) { spoilt.source = nullptr; },
                                     [](CheckedMoveCall& spoilt) { spoilt.source = L""; },
                                     [](CheckedMoveCall& spoilt) { spoilt.destination = nullptr; },
                                     [](CheckedMoveCall& spoilt) { spoilt.destination = L""; },
                                     [](CheckedMoveCall& spoilt) { spoilt.time = 0; },
                                     [](CheckedMoveCall& spoilt) {
                                         spoilt.time = 0;
                                         spoilt.isFolder = true;
                                     },
                                     [](CheckedMoveCall& spoilt) { spoilt.resultWord = nullptr; }});
}

TEST_F(WFMMovePathwithCheckProfileWire, BetweenNodesIs34AndSendsNothing) {
    const struct {
        const wchar_t *source, *destination;
        const char* texts;
    } rows[] = {
        {L"/home/.Torvi/T/d/x", L"/home/.Torvi/U/e/y", "(vtf://S/d/x)(vtf://U/e/y)"},
        {L"/home/.Torvi/U/x/", L"/home/.Torvi/V/x/", "(vtf://U/x)(vtf://V/x)"},
        {L"/home/.Torvi/T/x", L"/home/d/x", "(vtf://S/x)(/home/d/x)"},
        {L"/home/d/x", L"/home/.Torvi/T/x", "(/home/d/x)(vtf://S/x)"},
        // It comes before the look at the slashes.
        {L"/home/.Torvi/T/x", L"/x", "(vtf://S/x)(/x)"},
    };
    for (const char* ownNode : {"node1", "n2", ""})
        for (const auto& row : rows) {
            SCOPED_TRACE(std::string(ownNode) + row.texts);
            session = clusterSession();
            if (*ownNode == '\0')
                session = makeTeamSession({{L"/home/.Torvi/T/", L"vtf://S/", L"n2"},
                                           {L"/home/.Torvi/U/", L"vtf://U/", L"n3"},
                                           {L"/home/.Torvi/V/", L"vtf://V/", L"N2"}},
                                          ownNode);
            call.source = row.source;
            call.destination = row.destination;
            expectNoRequest(14, 34, early(std::string("ERROR_WRONG_DISK") + row.texts));
        }
}

TEST_F(WFMMovePathwithCheckProfileWire, WithoutNodesTeamFoldersAreOfOneDisk) {
    session = makeSession();
    std::wstring clientPath = L"/home/.Torvi/T/", serverPath = L"vtf://S/";
    wchar_t* clientPaths[] = {clientPath.data()};
    wchar_t* serverPaths[] = {serverPath.data()};
    WFMUpdateTeamFolderInfo(session.get(), 1, clientPaths, serverPaths, nullptr);
    call.source = L"/home/.Torvi/T/old";
    call.destination = L"/home/b/old";
    sourceFolder = "vtf%3A%2F%2FS";
    expectEnd({{Step::Move, answered("1")}}, {0, 0, {}, {}});
}

TEST_F(WFMMovePathwithCheckProfileWire, APathAtTheTopOrWithoutANameIsDenied) {
    for (const DeniedPaths& row : deniedPaths()) {
        SCOPED_TRACE(row.texts);
        call.source = row.oldPath;
        call.destination = row.newPath;
        expectNoRequest(14, 5, early(std::string("ERROR_ACCESS_DENIED") + row.texts));
    }
}

TEST_F(WFMMovePathwithCheckProfileWire, TheSameParentIs87) {
    session = clusterSession();
    const struct {
        const wchar_t *source, *destination;
        const char* texts;
    } rows[] = {{L"/home/a", L"/home/b", "(/home/a)(/home/b)"},
                {L"/home/a", L"/home/a/", "(/home/a)(/home/a)"},
                {L"/home/.Torvi/T/d/a", L"/home/.Torvi/T/d/b", "(vtf://S/d/a)(vtf://S/d/b)"},
                // Without any "/" in the destination both parents are empty.
                {L"/home/a/old", L"new", "(/home/a/old)(new)"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.texts);
        call.source = row.source;
        call.destination = row.destination;
        expectNoRequest(14, 87, early(std::string("ERROR_INVALID_PARAMETER") + row.texts));
    }
}

// ---- The answer, and where the next requests go; movesteps_wire_test.cpp has the rest ----

TEST_F(WFMMovePathwithCheckProfileWire, AReplyWithNeitherSuccessNorPidIsNotUnderstood) {
    const struct {
        const char* reply;
        int parsed, result, pid;
    } rows[] = {{"{}", 1, 0, 0},
                {R"({"status":1,"success":"false"})", 1, 0, 0},
                {R"({"status":1,"success":"false","pid":0})", 1, 0, 0},
                {R"({"status":4})", 1, 0, 0},
                {"no", -1, 0, 0},
                {"[]", -1, 0, 0},
                {R"({"status":1,"success":"true","pid":99999999999})", -1, 1, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        expectEnd({{Step::Move, Reply::json(row.reply)}},
                  {14,
                   -1,
                   {word("WFM_PARSE_XML_FAIL nParseResult(" + std::to_string(row.parsed) + ") Result(" +
                         std::to_string(row.result) + ") Pid(" + std::to_string(row.pid) + ")"),
                    summary(14)},
                   {}});
    }
}

TEST_F(WFMMovePathwithCheckProfileWire, WhatTheServerSaysToTheMoveDecides) {
    session = clusterSession();
    call.source = L"/home/.Torvi/T/d&/old";
    call.destination = L"/home/.Torvi/T/\x6587/new/";
    sourceFolder = "vtf%3A%2F%2FS%2Fd%26";
    folder = "vtf%3A%2F%2FS%2F%E6%96%87";
    moveNode = "n2/";
    const std::string paths = "(vtf://S/d&/old)(vtf://S/\xE6\x96\x87/new)";
    const auto line = [&](const char* text, int code) {
        return Lines{word(text + paths + "(" + std::to_string(code) + ")")};
    };
    const char* const invalid = "ERROR_INVALID_DATA";
    const char* const unknown = "ERROR_UNKNOWN";
    const struct {
        const char* reply;
        int32_t result;
        Lines lines;
    } rows[] = {{R"({"status":4,"success":"true"})", 5, {word("ERROR_ACCESS_DENIED" + paths)}},
                {R"({"status":4,"pid":7})", 5, {word("ERROR_ACCESS_DENIED" + paths)}},
                {R"({"status":-40,"success":"true"})", 13, line(invalid, -32)},
                {R"({"status":-41,"pid":7})", 13, line(invalid, -33)},
                {R"({"status":-42,"success":"true"})", 13, line(invalid, -34)},
                {R"({"status":-43,"pid":7})", 13, line(invalid, -35)},
                {R"({"status":-19,"pid":7})", -1, line(unknown, -36)},
                {R"({"status":-18,"pid":7})", -1, line(unknown, -30)},
                {R"({"status":-44,"pid":7})", -1, line(unknown, -1)},
                {R"({"status":2,"pid":7})", -1, line(unknown, -15)},
                {R"({"status":5,"success":"true"})", -1, line(unknown, -4)},
                {R"({"status":3,"pid":7})", -1, line(unknown, -29)},
                {R"({"pid":7})", -1, line(unknown, -1)}};
    for (const bool isFolder : {false, true})
        for (const auto& row : rows) {
            SCOPED_TRACE(std::string(row.reply) + (isFolder ? " to a folder" : " to a file"));
            call.isFolder = isFolder;
            expectEnd({{Step::Move, Reply::json(row.reply)}}, {0, row.result, row.lines, {}});
        }
}

TEST_F(WFMMovePathwithCheckProfileWire, TheFileManagersSuccessNeedsAJob) {
    fileManager = true;
    for (const bool isFolder : {false, true})
        for (const char* reply : {R"({"status":1,"success":"true"})",
                                  R"({"status":1,"success":"true","pid":-7})", R"({"status":1,"pid":-7})"}) {
            SCOPED_TRACE(reply);
            call.isFolder = isFolder;
            expectEnd({{Step::Move, Reply::json(reply)}},
                      {0, -1, {word("ERROR_UNKNOWN(/home/a/old)(/home/b/new)(0)")}, {}});
        }
}

TEST_F(WFMMovePathwithCheckProfileWire, AFileUnderItsNameIsMovedAtOnce) {
    keepName();
    for (const Reply& reply :
         {answered("1"), started(), Reply::json(R"({"status":1,"pid":7})"),
          Reply::json(R"({"status":1,"success":"true","pid":0})"), Reply::json(R"({"status":1,"pid":-7})")})
        expectEnd({{Step::Move, reply}}, {0, 0, {}, {}});
}

TEST_F(WFMMovePathwithCheckProfileWire, ACancelDoesNotStopAFileThatWasMovedAtOnce) {
    call.cancelled = true;
    expectEnd({{Step::Move, answered("1")}, {Step::Rename, answered("1")}}, {0, 0, toRename(), {}});
}

TEST_F(WFMMovePathwithCheckProfileWire, AFolderIsPolledEvenWithoutAPid) {
    call.isFolder = true;
    keepName();
    pid = "0";
    expectEnd({{Step::Move, answered("1")}, {Step::Poll, done()}}, {0, 0, {}, {500}});
    pid = "-7";
    expectEnd({{Step::Move, Reply::json(R"({"success":"true","status":1,"pid":-7})")}, {Step::Poll, done()}},
              {0, 0, {}, {500}});
}

TEST_F(WFMMovePathwithCheckProfileWire, TheFileManagerPollsAndClearsTheJobOfAFileToo) {
    fileManager = true;
    keepName();
    for (const bool isFolder : {false, true}) {
        call.isFolder = isFolder;
        expectEnd({{Step::Move, started()}, {Step::Poll, done()}, {Step::Clear, answered("1")}},
                  {0, 0, {}, {500}});
    }
}

TEST_F(WFMMovePathwithCheckProfileWire, GoesThroughItsRealWait) {
    session = makeSession();
    call.isFolder = true;
    keepName();
    RawServer server({started(), done()});
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(server.requestCount(), 2u);
}

TEST_F(WFMMovePathwithCheckProfileWire, AFileGetsAnotherNameByARenameInTheDestination) {
    expectEnd({{Step::Move, answered("1")}, {Step::Rename, answered("1")}}, {0, 0, toRename(), {}});
}

TEST_F(WFMMovePathwithCheckProfileWire, ARenameThatIsRefusedRemovesWhatWasMoved) {
    const Lines denied = {"[WFM] WFMRenamePath: ERROR_ACCESS_DENIED(/home/b/old)(/home/b/new)"};
    expectEnd({{Step::Move, answered("1")}, {Step::Rename, answered("2")}, {Step::Remove, answered("1")}},
              {0, -1, toRename() + removed(0, 5003), {}});
    expectEnd({{Step::Move, answered("1")}, {Step::Rename, answered("4")}, {Step::Remove, answered("1")}},
              {0, -1, toRename() + denied + removed(0, 5), {}});
}

TEST_F(WFMMovePathwithCheckProfileWire, ThePollGoesToTheMovesNodeAndWhatFollowsToTheCallers) {
    session = clusterSession();
    call.isFolder = true;
    call.source = L"/home/.Torvi/T/d/old";
    call.destination = L"/home/.Torvi/T/e/new";
    call.slaveID = L"n5";
    sourceFolder = "vtf%3A%2F%2FS%2Fd";
    folder = "vtf%3A%2F%2FS%2Fe";
    movedTo = "vtf://S/e/";
    moveNode = "n2/";
    callersNode = "n5/";
    expectEnd({{Step::Move, started()},
               {Step::Poll, unavailable()},
               {Step::Poll, done()},
               {Step::Rename, answered("2")},
               {Step::Remove, answered("1")}},
              {0, -1, failedPoll(12) + retry() + toRename() + removed(0, 5003), {500}});
}

TEST_F(WFMMovePathwithCheckProfileWire, ThePollOfAPathThatIsNotMappedGoesToTheCallersNode) {
    session = clusterSession();
    call.isFolder = true;
    call.slaveID = L"n5";
    moveNode = callersNode = "n5/";
    expectEnd({{Step::Move, started()}, {Step::Poll, done()}, {Step::Rename, answered("1")}},
              {0, 0, toRename(), {500}});
}
