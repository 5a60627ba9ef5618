// WFMMovePath: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "lines.h"
#include "moves.h"
#include "refusals.h"
#include "renames.h"

using namespace wire;

namespace {

HeaderList form(const std::string& from, const std::string& name, const std::string& to) {
    return {{"source_file", name},
            {"source_total", "1"},
            {"source_path", from},
            {"dest_path", to},
            {"mode", "0"}};
}

using WFMMovePathWire = MoveTestOf<MoveCall>;

}  // namespace

// ---- The request ----

TEST_F(WFMMovePathWire, PostsFoldersAndNameAsAForm) {
    expectPostOnEveryRoute(
        "func=move&sid=sid123&no_fork=0",
        form("%2Fhome%2Fb%20c%26d", "100%25%20%E6%96%87", "%2Fhome%2Fx%3Dy"),
        [](_WFM_AUTH_CONTEXT* context, uint32_t port, const wchar_t* slaveID) {
            MoveCall once;
            once.source = L"/home/b c&d/100% \x6587";
            once.destination = L"/home/x=y/new/";
            once.slaveID = slaveID;
            once.run(context, port);
        },
        "func=move&sid=sid123");
}

TEST_F(WFMMovePathWire, BothPathsAreMappedAndTheSourceAloneNamesTheNode) {
    const struct {
        const wchar_t *source, *destination, *slaveID;
        const char* prefix;
        HeaderList form;
    } rows[] = {
        {L"/home/.Torvi/T/d/x/", L"/home/.Torvi/T/e/x", L"n5", "/n2",
         form("vtf%3A%2F%2FS%2Fd", "x", "vtf%3A%2F%2FS%2Fe")},
        // Between nodes it goes to the source's.
        {L"/home/.Torvi/T/x", L"/home/.Torvi/U/x", L"n5", "/n2", form("vtf%3A%2F%2FS", "x", "vtf%3A%2F%2FU")},
        {L"/home/.Torvi/T/x", L"/home/x", L"n5", "/n2", form("vtf%3A%2F%2FS", "x", "%2Fhome")},
        {L"/home/x", L"/home/.Torvi/U/d/x", L"n5", "/n5", form("%2Fhome", "x", "vtf%3A%2F%2FU%2Fd")},
        {L"/home/x", L"/home/.Torvi/U/d/x", nullptr, "", form("%2Fhome", "x", "vtf%3A%2F%2FU%2Fd")},
        {L"home/x", L"other/x", L"NODE1", "", form("home", "x", "other")},
        {L"vtf://S/x", L"vtf://U/x", L"n5", "/n5", form("vtf%3A%2F%2FS", "x", "vtf%3A%2F%2FU")},
        {L"/home/.Torvi/T", L"/home/d/T", L"n5", "/n2", form("vtf%3A%2F", "S", "%2Fhome%2Fd")}};
    session = clusterSession();
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.source));
        RawServer server({Reply::json("{}")});
        call.source = row.source;
        call.destination = row.destination;
        call.slaveID = row.slaveID;
        call.run(session.get(), server.port());
        expectPost(server, server.onlyRequest(),
                   std::string(row.prefix) + "/cgi-bin/torvi/torvisrv.cgi?func=move&sid=sid123&no_fork=0",
                   row.form, "agent");
    }
}

TEST_F(WFMMovePathWire, TheFileManagerMapsNothing) {
    session = clusterSession();
    useFileManager(*session);
    RawServer server({Reply::json("{}")});
    call.source = L"/home/.Torvi/T/x";
    call.destination = L"/home/.Torvi/U/x";
    call.slaveID = L"n5";
    call.run(session.get(), server.port());
    expectPost(server, server.onlyRequest(), "/cgi-bin/filemanager/utilRequest.cgi?func=move&sid=sid123",
               form("%2Fhome%2F.Torvi%2FT", "x", "%2Fhome%2F.Torvi%2FU"), "agent");
}

// ---- Ends before the first request ----

TEST_F(WFMMovePathWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    session = makeSession();
    expectRefusals<MoveCall>(
        log, session.get(), "WFMMovePath",
        {[](MoveCall& spoilt) { spoilt.source = nullptr; }, [](MoveCall& spoilt) { spoilt.source = L""; },
         [](MoveCall& spoilt) { spoilt.destination = nullptr; },
         [](MoveCall& spoilt) { spoilt.destination = L""; },
         [](MoveCall& spoilt) { spoilt.resultWord = nullptr; }});
}

TEST_F(WFMMovePathWire, APathAtTheTopOrWithoutANameIsDenied) {
    for (const DeniedPaths& row : deniedPaths()) {
        SCOPED_TRACE(row.texts);
        call.source = row.oldPath;
        call.destination = row.newPath;
        expectNoRequest(5, -1, {word("ERROR_ACCESS_DENIED"), summary(5)});
    }
}

TEST_F(WFMMovePathWire, TheSameParentIs87WithoutALine) {
    session = clusterSession();
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {L"/home/a", L"/home/b"},
        {L"/home/a", L"/home/a/"},
        {L"/home/.Torvi/T/d/a", L"vtf://S/d/b"},
        // Without any "/" in the destination both parents are empty.
        {L"/home/a/old", L"new"}};
    for (const auto& [source, destination] : rows) {
        SCOPED_TRACE(testing::PrintToString(destination));
        call.source = source;
        call.destination = destination;
        expectNoRequest(87, -1, {});
    }
}

// ---- The answer, and where the next requests go; movesteps_wire_test.cpp has the rest ----

TEST_F(WFMMovePathWire, AReplyWithNeitherSuccessNorPidIsNotUnderstood) {
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
                   {"[WFM] WFMMovePath WFM_PARSE_XML_FAIL nParseResult(" + std::to_string(row.parsed) +
                        "), Result(" + std::to_string(row.result) + "), Pid(" + std::to_string(row.pid) + ")",
                    summary(14)},
                   {}});
    }
}

TEST_F(WFMMovePathWire, WhatTheServerSaysToTheMoveDecides) {
    session = clusterSession();
    call.source = L"/home/.Torvi/T/d&/old";
    call.destination = L"/home/.Torvi/T/\x6587/new/";
    sourceFolder = "vtf%3A%2F%2FS%2Fd%26";
    folder = "vtf%3A%2F%2FS%2F%E6%96%87";
    moveNode = "n2/";
    const std::string paths = "(vtf://S/d&/old)(vtf://S/\xE6\x96\x87/new)";
    const auto unknown = [&](int code, int jobPid) {
        return Lines{word("ERROR_UNKNOWN" + paths + " dwResult(" + std::to_string(code) + ") nPid(" +
                          std::to_string(jobPid) + ")")};
    };
    const struct {
        const char* reply;
        int32_t result;
        Lines lines;
    } rows[] = {{R"({"status":4,"success":"true"})", 5, {word("ERROR_ACCESS_DENIED" + paths)}},
                {R"({"status":4,"pid":7})", 5, {word("ERROR_ACCESS_DENIED" + paths)}},
                // A success needs a job.
                {R"({"status":1,"success":"true"})", -1, unknown(0, 0)},
                {R"({"status":1,"success":"true","pid":-7})", -1, unknown(0, -7)},
                {R"({"status":1,"pid":-7})", -1, unknown(0, -7)},
                {R"({"status":2,"pid":7})", -1, unknown(-15, 7)},
                {R"({"status":5,"success":"true"})", -1, unknown(-4, 0)},
                {R"({"status":3,"pid":7})", -1, unknown(-29, 7)},
                {R"({"status":-40,"success":"true"})", -1, unknown(-32, 0)},
                {R"({"status":-41,"pid":7})", -1, unknown(-33, 7)},
                {R"({"status":-43,"pid":7})", -1, unknown(-35, 7)},
                {R"({"status":34,"pid":7})", -1, unknown(-1, 7)},
                {R"({"pid":7})", -1, unknown(-1, 7)}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        expectEnd({{Step::Move, Reply::json(row.reply)}}, {0, row.result, row.lines, {}});
    }
}

TEST_F(WFMMovePathWire, AJobNeedsNoSuccessBesideItsPid) {
    keepName();
    pid = "2147483647";
    expectEnd({{Step::Move, Reply::json(R"({"status":1,"pid":"2147483647"})")}, {Step::Poll, done()}},
              {0, 0, {}, {500}});
}

TEST_F(WFMMovePathWire, NamesThatDifferInLettersDiffer) {
    call.destination = L"/home/b/Old";
    expectEnd({{Step::Move, started()}, {Step::Poll, Reply::json(R"({"status":5})")}},
              {0, 3, {"[WFM] WFMGetProgress: GetStatus failed(old)(-4)"}, {500}});
    RawServer server([](const Request& request) {
        return request.body.find("source_file") != std::string::npos ? started()
               : request.method() == "GET"                           ? done()
                                                                     : answered("1");
    });
    const SleepCapture sleeps;
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    EXPECT_EQ(call.result, 0u);
    ASSERT_EQ(server.requestCount(), 3u);
    EXPECT_EQ(server.request(2).body, "path=%2Fhome%2Fb&source_name=old&dest_name=Old");
}

TEST_F(WFMMovePathWire, ThePollGoesToTheMovesNodeAndWhatFollowsToTheCallers) {
    session = clusterSession();
    call.source = L"/home/.Torvi/T/d/old";
    call.destination = L"/home/.Torvi/U/e/new";
    call.slaveID = L"n5";
    sourceFolder = "vtf%3A%2F%2FS%2Fd";
    folder = "vtf%3A%2F%2FU%2Fe";
    movedTo = "vtf://U/e/";
    moveNode = "n2/";
    callersNode = "n5/";
    expectEnd({{Step::Move, started()},
               {Step::Poll, unavailable()},
               {Step::Poll, done()},
               {Step::Rename, answered("2")},
               {Step::Remove, answered("1")}},
              {0, -1, failedPoll(12) + retry() + toRename() + removed(0, 5003), {500}});
}

TEST_F(WFMMovePathWire, ThePollOfAPathThatIsNotMappedGoesToTheCallersNode) {
    session = clusterSession();
    call.slaveID = L"n5";
    call.destination = L"/home/.Torvi/U/new";
    folder = "vtf%3A%2F%2FU";
    movedTo = "vtf://U/";
    moveNode = callersNode = "n5/";
    expectEnd({{Step::Move, started()}, {Step::Poll, done()}, {Step::Rename, answered("1")}},
              {0, 0, toRename(), {500}});
}
