// WFMGetNodeList: what is its own. What every call shares stands in everycall_wire_test.cpp, and one page of
// it in getpath_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "lines.h"
#include "networkalive.h"
#include "nodelist.h"
#include "refusals.h"
#include "routes.h"
#include "support/logcapture.h"
#include "support/rawserver.h"
#include "support/session.h"
#include "support/wire.h"
#include "teamfolders.h"

using namespace wire;

namespace {

using Lines = std::vector<std::string>;

const char* const kGood = R"({"status":1,"total":3,"datas":[{"filename":"a","epochmt":"5"}]})";
const char* const kNothing = R"({"status":1,"total":0,"datas":[]})";

std::string getList(const std::string& path, int limit, int start, const std::string& behind) {
    return "func=get_list&sid=sid123&is_iso=0&list_mode=all&path=" + path +
           "&dir=DESC&limit=" + std::to_string(limit) + "&sort=mt&start=" + std::to_string(start) + behind;
}

/// The server's entries from `start` on, as many as the request's limit allows.
Reply pageOf(const std::vector<std::string>& names, const Request& request) {
    size_t start = 0, limit = 0;
    for (const Field& field : request.query()) {
        if (field.key == "start") start = std::stoul(field.value);
        if (field.key == "limit") limit = std::stoul(field.value);
    }
    std::string entries;
    for (size_t i = start; i < names.size() && i < start + limit; ++i)
        entries += (entries.empty() ? "" : ",") + (R"({"filename":")" + names[i] + R"(","epochmt":"5"})");
    return Reply::json(R"({"status":1,"total":)" + std::to_string(names.size()) + R"(,"datas":[)" + entries +
                       "]}");
}

const std::vector<TeamFolder> kThreeFolders = {
    {L"/home/.Torvi/A/", L"vtf://1/"}, {L"/home/.Torvi/B/", L"vtf://2/"}, {L"/home/.Torvi/C/", L"vtf://3/"}};

std::string teamRecord(const std::string& name) {
    return "name=" + name + " access=2 folder exists size=4096 nubo=8";
}

class WFMGetNodeListWire : public testing::Test {
protected:
    /// The lines of the call; the search for a network writes some to the debugger.
    Lines callLines() {
        Lines texts;
        for (const LogLine& line : log.lines())
            if (!line.level.empty()) texts.push_back(line.text);
        return texts;
    }

    LogCapture log;
    NodeListCall call;
};

}  // namespace

TEST_F(WFMGetNodeListWire, FilesAreAskedForWithoutAType) {
    for (const uint32_t typeFilter : {1u, 3u, 5u, 7u}) {
        SCOPED_TRACE(typeFilter);
        expectOnEveryRoute(getList("%2Fhome%2Fa%20b", 10, 7, "&no_sort=0"),
                           [&](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
                               NodeListCall page;
                               page.path = L"/home/a b";
                               page.typeFilter = typeFilter;
                               page.start = 7;
                               page.slaveID = slaveID;
                               page.run(session, port);
                           });
    }
}

TEST_F(WFMGetNodeListWire, FoldersAloneAreAskedForByType) {
    expectOnEveryRoute(getList("%2Fhome", 10, 0, "&type=4&no_sort=1"),
                       [&](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
                           NodeListCall page;
                           page.typeFilter = 2;
                           page.wantSort = false;
                           page.slaveID = slaveID;
                           page.run(session, port);
                       });
}

TEST_F(WFMGetNodeListWire, OnlyTheSyncServiceIsAskedWhetherFoldersHaveChildren) {
    const std::string query = getList("%2Fhome", 10, 0, "&type=4&no_sort=0");
    expectOnEveryRoute(
        query + "&check_child=4",
        [&](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
            NodeListCall page;
            page.typeFilter = 6;
            page.slaveID = slaveID;
            page.run(session, port);
        },
        routes(), query);
}

TEST_F(WFMGetNodeListWire, ATypeFilterWithoutFilesAndFoldersSendsNothing) {
    RawServer server({Reply::json(kGood)});
    const SessionPtr session = makeAgentSession();
    call.typeFilter = 4;
    call.expectNumbers(6, -1, session.get(), server.port());
    EXPECT_TRUE(call.records.isEmpty());
    EXPECT_EQ(server.connectionCount(), 0u);
    EXPECT_EQ(callLines(),
              (Lines{"[WFM] GetPath: FAIL(httpStatusCode=0)", summaryLine("GetPath", server.port(), 6),
                     summaryLine("WFMGetNodeList", server.port(), 6)}));
}

TEST_F(WFMGetNodeListWire, ThePathGetsASlashInFrontAndIsEncoded) {
    const struct {
        const wchar_t* path;
        const char* encoded;
    } rows[] = {{L"home", "%2Fhome"},
                {L"/home/", "%2Fhome%2F"},
                {L"/100%&=#", "%2F100%25%26%3D%23"},
                {L"/\x6587\U0001F600", "%2F%E6%96%87%F0%9F%98%80"},
                {L"home/.Torvi/TT", "%2Fhome%2F.Torvi%2FTT"}};
    RawServer server({Reply::json(kGood)});
    const SessionPtr session = makeTeamSession();
    size_t count = 0;
    for (const auto& row : rows) {
        call.path = row.path;
        call.start = 0;
        call.run(session.get(), server.port());
        call.records.take();
        EXPECT_EQ(server.request(count++).queryText(), getList(row.encoded, 10, 0, "&no_sort=0"));
    }
}

TEST_F(WFMGetNodeListWire, EveryArgumentThatMustBeGivenIsRefusedWithOneLineAndNothingIsTouched) {
    const SessionPtr session = makeAgentSession();
    expectRefusals<NodeListCall>(
        log, session.get(), "WFMGetNodeList",
        {[](NodeListCall& page) { page.pattern = nullptr; }, [](NodeListCall& page) { page.pattern = L""; },
         [](NodeListCall& page) { page.path = nullptr; }, [](NodeListCall& page) { page.path = L""; },
         [](NodeListCall& page) { page.typeFilter = 0; }, [](NodeListCall& page) { page.fieldMask = 0; },
         [](NodeListCall& page) { page.resultWord = nullptr; },
         [](NodeListCall& page) { page.startInOut = nullptr; },
         [](NodeListCall& page) { page.countOut = nullptr; },
         [](NodeListCall& page) { page.teamIndexInOut = nullptr; },
         [](NodeListCall& page) { page.teamCountInOut = nullptr; },
         [](NodeListCall& page) { page.listOut = nullptr; }});
}

TEST_F(WFMGetNodeListWire, CancelFlagTotalAndLimitNeedNotBeGiven) {
    RawServer server({Reply::json(kGood)});
    const SessionPtr session = makeAgentSession();
    call.totalOut = nullptr;
    call.limit = 0;
    call.expectNumbers(0, 0, session.get(), server.port());
    EXPECT_EQ(call.records.take(), Lines{"name=a exists child"});
    EXPECT_EQ(server.onlyRequest().queryText(), getList("%2Fhome", 0, 0, "&no_sort=0"));
    log.expectNoLines();
}

TEST_F(WFMGetNodeListWire, ASessionWithoutAnAgentCannotList) {
    RawServer server({Reply::json(kGood)});
    const SessionPtr session = makeSession();
    log.clear();
    call.start = 3;
    call.expectNumbers(8, -1, session.get(), server.port());
    EXPECT_TRUE(call.records.isEmpty());
    EXPECT_EQ(call.total, 0u);
    EXPECT_EQ(call.start, 3u);
    EXPECT_EQ(server.connectionCount(), 0u);
    log.expectLines({refusedLine("GetPath", server.port()), summaryLine("WFMGetNodeList", server.port(), 8)});
}

TEST_F(WFMGetNodeListWire, APageOfRecordsIs0AndMovesStartOnByTheWholePage) {
    RawServer server({Reply::json(R"({"status":1,"total":40,"datas":[
        {"filename":"a","isfolder":1,"epochmt":"1700000000","have_child":0,"privilege":700,"nubo_type":2,
         "nubo_share_id":"s1","filesize":"4096"},
        {"filename":"b.pdf","epochmt":"5"},
        {"filename":"c.txt","epochmt":"5","filesize":"5000000000","privilege":"500"}]})")});
    const SessionPtr session = makeAgentSession();
    call.pattern = L"?";
    call.fieldMask = 0x3ff;
    call.start = 7;
    call.expectNumbers(0, 0, session.get(), server.port());
    EXPECT_EQ(call.records.take(),
              Lines{"name=a access=2 folder exists size=4096 modified=1700000000 second=1700000000 nubo=2 "
                    "share=s1"});
    EXPECT_EQ(call.total, 40u);
    EXPECT_EQ(call.start, 10u);
    EXPECT_EQ(call.teamIndex, 0u);
    EXPECT_EQ(call.teamCount, 0u);

    call.pattern = L"*.TXT";
    call.expectNumbers(0, 0, session.get(), server.port());
    EXPECT_EQ(call.records.take(), Lines{"name=c.txt access=1 exists size=5000000000 modified=5 second=5"});
    EXPECT_EQ(call.start, 13u);
    log.expectNoLines();
}

TEST_F(WFMGetNodeListWire, AnEmptyFolderIs18AndSoAreAMissingAndADeniedOneAndAnEndedSession) {
    const SessionPtr session = makeAgentSession();
    for (const char* reply : {kNothing, "{}", R"({"status":5})", R"({"status":4,"total":1,"datas":[]})",
                              R"({"status":3})", "[]"}) {
        SCOPED_TRACE(reply);
        RawServer server({Reply::json(reply)});
        call.start = 5;
        call.expectNumbers(0, 18, session.get(), server.port());
        EXPECT_TRUE(call.records.isEmpty());
        EXPECT_EQ(call.total, 0u);
        EXPECT_EQ(call.start, 5u);
    }
    log.expectNoLines();
}

TEST_F(WFMGetNodeListWire, WithoutAConnectionTheResultSaysWhetherThereIsANetwork) {
    const SessionPtr session = makeAgentSession();
    const RefusedPort port;
    for (const bool alive : {true, false}) {
        SCOPED_TRACE(alive);
        log.clear();
        const NetworkIs network(alive);
        call.expectNumbers(2, alive ? 53 : 1231, session.get(), port.port());
        EXPECT_TRUE(call.records.isEmpty());
        EXPECT_EQ(callLines(),
                  (Lines{"[WFM] GetPath: FAIL(httpStatusCode=0)", summaryLine("GetPath", port.port(), 2),
                         summaryLine("WFMGetNodeList", port.port(), 2)}));
    }
}

TEST_F(WFMGetNodeListWire, AnyOtherFailureLeavesTheResultAlone) {
    const SessionPtr session = makeAgentSession();
    const NetworkIs network(false);
    const struct {
        Reply reply;
        uint32_t dwStatus;
    } rows[] = {
        {Reply::status(500), 6}, {Reply::status(503), 12}, {Reply::status(407), 11}, {Reply::json("no"), 14}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.dwStatus);
        RawServer server({row.reply});
        call.start = 5;
        call.expectNumbers(row.dwStatus, -1, session.get(), server.port());
        EXPECT_TRUE(call.records.isEmpty());
        EXPECT_EQ(call.start, 5u);
    }
}

TEST_F(WFMGetNodeListWire, APageOfWhichNothingIsKeptIsMinus1AndMovesStartOn) {
    RawServer server({Reply::json(kGood)});
    const SessionPtr session = makeAgentSession();
    call.pattern = L"b*";
    call.expectNumbers(0, -1, session.get(), server.port());
    EXPECT_TRUE(call.records.isEmpty());
    EXPECT_EQ(call.total, 3u);
    EXPECT_EQ(call.start, 1u);
    log.expectNoLines();
}

TEST_F(WFMGetNodeListWire, ACancelledListingIs1235AndBuildsNoList) {
    const SessionPtr session = makeAgentSession();
    bool cancel = true;
    call.cancel = &cancel;
    RawServer good({Reply::json(kGood)});
    call.expectNumbers(0, 1235, session.get(), good.port());
    EXPECT_TRUE(call.records.isEmpty());
    EXPECT_EQ(call.total, 3u);
    EXPECT_EQ(call.start, 1u);
    // It is asked all the same, and its failure shows.
    EXPECT_EQ(good.requestCount(), 1u);
    RawServer bad({Reply::status(500)});
    call.expectNumbers(6, 1235, session.get(), bad.port());
    RawServer empty({Reply::json(kNothing)});
    call.expectNumbers(0, 1235, session.get(), empty.port());
    cancel = false;
    call.expectNumbers(0, 18, session.get(), empty.port());
}

TEST_F(WFMGetNodeListWire, ACancelFlagThatIsSetWhileThePageComesCounts) {
    const SessionPtr session = makeTeamSession(kThreeFolders);
    bool cancel = false;
    RawServer server([&cancel](const Request&) {
        cancel = true;
        return Reply::json(kGood);
    });
    call.path = L"/home/.Torvi";
    call.cancel = &cancel;
    call.expectNumbers(0, 1235, session.get(), server.port());
    EXPECT_TRUE(call.records.isEmpty());
}

TEST_F(WFMGetNodeListWire, AFolderGoesToTheTeamFoldersPlaceAndNode) {
    const struct {
        const char* what;
        const char* ownSlaveID;
        const wchar_t* slaveID;
        const wchar_t* path;
        const char* prefix;
        const char* sent;
    } rows[] = {
        {"the root", "Own", L"Other", L"/home/.Torvi/T", "Node/", "vtf%3A%2F%2FS"},
        {"the root with its slash", "Own", nullptr, L"/home/.Torvi/T/", "Node/", "vtf%3A%2F%2FS"},
        {"below", "Own", L"Other", L"/home/.Torvi/T/a", "Node/", "vtf%3A%2F%2FS%2Fa"},
        {"deep below", "Own", L"Other", L"home/.Torvi/T/a/b c/", "Node/", "vtf%3A%2F%2FS%2Fa%2Fb%20c"},
        {"beside", "Own", L"Other", L"/home/.Torvi/TT", "Other/", "%2Fhome%2F.Torvi%2FTT"},
        {"on the own node", "Own", L"Other", L"/home/.Torvi/Mine", "", "vtf%3A%2F%2FM"},
        {"without a cluster", "", L"Other", L"/home/.Torvi/T/a", "", "vtf%3A%2F%2FS%2Fa"},
    };
    for (const auto& row : rows)
        // Whatever the type filter: only the area itself is listed otherwise.
        for (const uint32_t typeFilter : {1u, 3u}) {
            SCOPED_TRACE(row.what);
            RawServer server({Reply::json(kGood)});
            const SessionPtr session = makeTeamSession(
                {{L"/home/.Torvi/T/", L"vtf://S/"}, {L"/home/.Torvi/Mine/", L"vtf://M/", L"oWN"}},
                row.ownSlaveID);
            NodeListCall page;
            page.path = row.path;
            page.typeFilter = typeFilter;
            page.slaveID = row.slaveID;
            page.expectNumbers(0, 0, session.get(), server.port());
            EXPECT_EQ(page.records.take(), Lines{"name=a exists child"});
            EXPECT_EQ(page.start, 1u);
            expectGet(server.onlyRequest(),
                      "/" + std::string(row.prefix) + "cgi-bin/torvi/torvisrv.cgi?" +
                          getList(row.sent, 10, 0, "&no_sort=0"),
                      baseHeaders(server, "agent"));
        }
}

TEST_F(WFMGetNodeListWire, TheFileManagerIsAskedForTheClientSidePath) {
    RawServer server({Reply::json(kGood)});
    const SessionPtr session = makeTeamSession();
    useFileManager(*session);
    call.path = L"/home/.Torvi/T/a";
    call.run(session.get(), server.port());
    call.records.take();
    expectGet(
        server.onlyRequest(),
        "/cgi-bin/filemanager/utilRequest.cgi?" + getList("%2Fhome%2F.Torvi%2FT%2Fa", 10, 0, "&no_sort=0"),
        baseHeaders(server, "agent"));
}

TEST_F(WFMGetNodeListWire, TheTeamAreaBeginsWithTheTeamFolders) {
    for (const wchar_t* path : {L"/home/.Torvi", L"/home/.Torvi/", L"home/.Torvi"}) {
        RawServer server(
            {Reply::json(R"({"status":1,"total":2,"datas":[{"filename":"own","epochmt":"5"}]})")});
        const SessionPtr session = makeTeamSession(kThreeFolders);
        NodeListCall page;
        page.path = path;
        page.slaveID = L"Other";
        // Team folders are listed whatever the pattern keeps.
        page.pattern = L"o*";
        page.expectNumbers(0, 0, session.get(), server.port());
        EXPECT_EQ(page.records.take(),
                  (Lines{teamRecord("A"), teamRecord("B"), teamRecord("C"), "name=own exists child"}));
        EXPECT_EQ(page.total, 5u);
        EXPECT_EQ(page.start, 4u);
        EXPECT_EQ(page.teamIndex, 3u);
        EXPECT_EQ(page.teamCount, 3u);
        const std::string slash = std::wstring(path).back() == L'/' ? "%2F" : "";
        expectGet(
            server.onlyRequest(),
            "/Other/cgi-bin/torvi/torvisrv.cgi?" + getList("%2Fhome%2F.Torvi" + slash, 7, 0, "&no_sort=0"),
            baseHeaders(server, "agent"));
    }
    log.expectNoLines();
}

TEST_F(WFMGetNodeListWire, ALimitBelowTheTeamFoldersListsThemAloneAndTheNextPageGoesOn) {
    const std::vector<std::string> names = {"x", "y", "z"};
    RawServer server([&names](const Request& request) { return pageOf(names, request); });
    const SessionPtr session = makeTeamSession(kThreeFolders);
    call.path = L"/home/.Torvi";
    call.limit = 2;
    const struct {
        Lines records;
        const char* limitAndStart;
        uint32_t total, start, teamIndex, teamCount;
    } pages[] = {
        // The server is asked for nothing, and for its beginning.
        {{teamRecord("A"), teamRecord("B")}, "0/0", 6, 2, 2, 2},
        {{teamRecord("C"), "name=x exists child"}, "1/0", 6, 4, 3, 3},
        {{"name=y exists child", "name=z exists child"}, "2/1", 6, 6, 3, 3},
    };
    for (const auto& page : pages) {
        SCOPED_TRACE(page.limitAndStart);
        call.expectNumbers(0, 0, session.get(), server.port());
        EXPECT_EQ(call.records.take(), page.records);
        EXPECT_EQ(call.total, page.total);
        EXPECT_EQ(call.start, page.start);
        EXPECT_EQ(call.teamIndex, page.teamIndex);
        EXPECT_EQ(call.teamCount, page.teamCount);
        const std::string text = page.limitAndStart;
        EXPECT_EQ(server.requests().back().queryText(),
                  getList("%2Fhome%2F.Torvi", text[0] - '0', text[2] - '0', "&no_sort=0"));
    }
    // Behind the last one: a page without records, that moves nothing on.
    call.expectNumbers(0, -1, session.get(), server.port());
    EXPECT_TRUE(call.records.isEmpty());
    EXPECT_EQ(call.start, 6u);
    EXPECT_EQ(call.total, 6u);
    log.expectNoLines();
}

TEST_F(WFMGetNodeListWire, ALimitOf0ListsNoTeamFolder) {
    RawServer server({Reply::json(kNothing)});
    const SessionPtr session = makeTeamSession(kThreeFolders);
    call.path = L"/home/.Torvi";
    call.limit = 0;
    call.expectNumbers(0, -1, session.get(), server.port());
    EXPECT_EQ(call.total, 3u);
    EXPECT_EQ(call.start, 0u);
    EXPECT_EQ(call.teamIndex, 0u);
}

TEST_F(WFMGetNodeListWire, TeamFoldersWithoutAPlaceOrANameAreNotListed) {
    RawServer server({Reply::json(kNothing)});
    // A list ends at its first empty entry, so that the third folder has a path, but no place.
    const SessionPtr session = makeTeamSession(
        {{L"/home/.Torvi/A/", L"vtf://1/"}, {L"//", L"vtf://2/"}, {L"/home/.Torvi/C/", nullptr}});
    call.path = L"/home/.Torvi";
    call.expectNumbers(0, 0, session.get(), server.port());
    EXPECT_EQ(call.records.take(), Lines{teamRecord("A")});
    EXPECT_EQ(call.teamIndex, 3u);
    EXPECT_EQ(call.teamCount, 1u);
    // Behind the last team folder those that were listed count.
    EXPECT_EQ(call.total, 1u);
    EXPECT_EQ(server.onlyRequest().queryText(), getList("%2Fhome%2F.Torvi", 9, 0, "&no_sort=0"));
}

TEST_F(WFMGetNodeListWire, TeamFoldersMakeAPageASuccessEvenIfTheServersHalfFailed) {
    const SessionPtr session = makeTeamSession(kThreeFolders);
    RawServer server({Reply::status(500)});
    call.path = L"/home/.Torvi";
    call.expectNumbers(0, 0, session.get(), server.port());
    EXPECT_EQ(call.records.take(), (Lines{teamRecord("A"), teamRecord("B"), teamRecord("C")}));
    EXPECT_EQ(call.total, 3u);
    EXPECT_EQ(call.start, 3u);
    log.expectLines({"[WFM] GetPath: FAIL(httpStatusCode=500)", summaryLine("GetPath", server.port(), 6)});
    log.clear();
    // The next page tells.
    call.expectNumbers(6, -1, session.get(), server.port());
    EXPECT_TRUE(call.records.isEmpty());
    EXPECT_EQ(call.start, 3u);
    log.expectLines({"[WFM] GetPath: FAIL(httpStatusCode=500)", summaryLine("GetPath", server.port(), 6),
                     summaryLine("WFMGetNodeList", server.port(), 6)});
}

TEST_F(WFMGetNodeListWire, ATeamFoldersChildrenAreLookedForWithALookIntoIt) {
    const char* const empty = kNothing;
    const char* const oneFolder = R"({"total":1,"datas":[{"filename":"in","isfolder":1,"epochmt":"5"}]})";
    const char* const oneFile = R"({"total":1,"datas":[{"filename":"in","epochmt":"5"}]})";
    RawServer server({Reply::json(oneFolder), Reply::json(empty), Reply::json(oneFile), Reply::json(empty)});
    const SessionPtr session = makeTeamSession(kThreeFolders);
    call.path = L"/home/.Torvi";
    call.slaveID = L"Other";
    call.typeFilter = 6;
    call.wantSort = false;
    call.start = 9;
    call.fieldMask = 0x01;
    call.expectNumbers(0, 0, session.get(), server.port());
    EXPECT_EQ(call.records.take(), (Lines{"name=A access=2 folder exists child size=4096 nubo=8",
                                          teamRecord("B"), teamRecord("C")}));
    ASSERT_EQ(server.requestCount(), 4u);
    // Each look goes to the caller's node and takes the listing's limit as it was given.
    for (int i = 0; i < 3; ++i)
        expectGet(server.request(i),
                  "/Other/cgi-bin/torvi/torvisrv.cgi?" +
                      getList("vtf%3A%2F%2F" + std::to_string(i + 1) + "%2F", 10, 0, "&type=4&no_sort=1"),
                  baseHeaders(server, "agent"));
    expectGet(server.request(3),
              "/Other/cgi-bin/torvi/torvisrv.cgi?" +
                  getList("%2Fhome%2F.Torvi", 7, 6, "&type=4&no_sort=1&check_child=4"),
              baseHeaders(server, "agent"));
}

TEST_F(WFMGetNodeListWire, EachTeamFolderIsLookedIntoAlsoWhereFilesAreListed) {
    RawServer server({Reply::json(kNothing),
                      Reply::json(R"({"total":1,"datas":[{"filename":"in","isfolder":1,"epochmt":"5"}]})"),
                      Reply::json(kNothing), Reply::json(kGood)});
    const SessionPtr session = makeTeamSession(kThreeFolders);
    call.path = L"/home/.Torvi";
    call.typeFilter = 7;
    call.expectNumbers(0, 0, session.get(), server.port());
    EXPECT_EQ(call.records.take(),
              (Lines{teamRecord("A"), "name=B access=2 folder exists child size=4096 nubo=8", teamRecord("C"),
                     "name=a exists child"}));
    ASSERT_EQ(server.requestCount(), 4u);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(server.request(i).queryText(),
                  getList("vtf%3A%2F%2F" + std::to_string(i + 1) + "%2F", 10, 0, "&type=4&no_sort=0"));
    EXPECT_EQ(server.request(3).queryText(), getList("%2Fhome%2F.Torvi", 7, 0, "&no_sort=0"));
    log.expectNoLines();
}

TEST_F(WFMGetNodeListWire, ALookIntoATeamFolderThatFailsCountsAsNoChild) {
    RawServer server({Reply::status(500), Reply::json(kNothing)});
    const SessionPtr session = makeTeamSession();
    call.path = L"/home/.Torvi";
    call.typeFilter = 6;
    call.expectNumbers(0, 0, session.get(), server.port());
    EXPECT_EQ(call.records.take(), Lines{teamRecord("T")});
    log.expectLines({"[WFM] GetPath: FAIL(httpStatusCode=500)", summaryLine("GetPath", server.port(), 6)});
}

TEST_F(WFMGetNodeListWire, WithoutAnAgentTheTeamFoldersAreListedAllTheSameAndNothingIsSent) {
    RawServer server({Reply::json(kGood)});
    const SessionPtr session = makeSession();
    setTeamFolders(*session, kThreeFolders);
    log.clear();
    call.path = L"/home/.Torvi";
    call.expectNumbers(0, 0, session.get(), server.port());
    EXPECT_EQ(call.records.take(), (Lines{teamRecord("A"), teamRecord("B"), teamRecord("C")}));
    EXPECT_EQ(call.total, 3u);
    EXPECT_EQ(call.start, 3u);
    log.expectLines({refusedLine("GetPath", server.port())});
    log.clear();
    // The next page tells.
    call.expectNumbers(8, -1, session.get(), server.port());
    EXPECT_TRUE(call.records.isEmpty());
    log.expectLines({refusedLine("GetPath", server.port()), summaryLine("WFMGetNodeList", server.port(), 8)});
    EXPECT_EQ(server.connectionCount(), 0u);
}

TEST_F(WFMGetNodeListWire, ATeamCountLowersTheServersStartOutsideTheTeamAreaToo) {
    const struct {
        uint32_t start, teamCount;
        int asked;
    } rows[] = {{9, 4, 5}, {4, 4, 0}, {3, 4, 0}, {9, 0, 9}};
    const SessionPtr session = makeTeamSession(kThreeFolders);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.asked);
        RawServer server({Reply::json(kGood)});
        NodeListCall page;
        page.start = row.start;
        page.teamCount = row.teamCount;
        page.expectNumbers(0, 0, session.get(), server.port());
        EXPECT_EQ(page.records.take(), Lines{"name=a exists child"});
        EXPECT_EQ(server.onlyRequest().queryText(), getList("%2Fhome", 10, row.asked, "&no_sort=0"));
        // Only in the team area is it added again.
        EXPECT_EQ(page.start, static_cast<uint32_t>(row.asked) + 1);
        EXPECT_EQ(page.total, 3u);
        EXPECT_EQ(page.teamCount, row.teamCount);
        EXPECT_EQ(page.teamIndex, 0u);
    }
}

TEST_F(WFMGetNodeListWire, TheTeamAreaIsAnOrdinaryFolderWhereTheConditionsDoNotHold) {
    struct Case {
        const char* name;
        SessionPtr session;
        uint32_t typeFilter;
        const wchar_t* path;
    };
    SessionPtr fileManager = makeTeamSession(kThreeFolders);
    useFileManager(*fileManager);
    Case cases[] = {{"files only", makeTeamSession(kThreeFolders), 1, L"/home/.Torvi"},
                    {"the file manager", std::move(fileManager), 3, L"/home/.Torvi"},
                    {"no team folders", makeAgentSession(), 3, L"/home/.Torvi"},
                    {"two slashes", makeTeamSession(kThreeFolders), 3, L"/home/.Torvi//"},
                    {"another folder", makeTeamSession(kThreeFolders), 3, L"/home"}};
    for (Case& each : cases) {
        SCOPED_TRACE(each.name);
        RawServer server({Reply::json(kGood)});
        NodeListCall page;
        page.path = each.path;
        page.typeFilter = each.typeFilter;
        page.expectNumbers(0, 0, each.session.get(), server.port());
        EXPECT_EQ(page.records.take(), Lines{"name=a exists child"});
        EXPECT_EQ(page.total, 3u);
        EXPECT_EQ(page.start, 1u);
        EXPECT_EQ(page.teamIndex, 0u);
        EXPECT_EQ(server.requestCount(), 1u);
    }
}

TEST_F(WFMGetNodeListWire, OutsideAClusterTheTeamFoldersNeedNoNodes) {
    RawServer server({Reply::json(kNothing)});
    const SessionPtr session = makeTeamSession("");
    wchar_t* clientPath[] = {const_cast<wchar_t*>(L"/home/.Torvi/T/")};
    wchar_t* serverPath[] = {const_cast<wchar_t*>(L"vtf://S/")};
    ASSERT_EQ(WFMUpdateTeamFolderInfo(session.get(), 1, clientPath, serverPath, nullptr), 0u);
    call.path = L"/home/.Torvi";
    call.expectNumbers(0, 0, session.get(), server.port());
    EXPECT_EQ(call.records.take(), Lines{teamRecord("T")});
}

TEST_F(WFMGetNodeListWire, TheTeamFoldersNameIsTheLastOfItsClientSidePath) {
    RawServer server({Reply::json(kNothing)});
    const SessionPtr session = makeTeamSession({{L"/home/.Torvi/a\\b/", L"vtf://1/"},
                                                {L"/home/.Torvi/\x6587\U0001F600/", L"vtf://2/"},
                                                {L"plain", L"vtf://3/"}});
    call.path = L"/home/.Torvi";
    call.expectNumbers(0, 0, session.get(), server.port());
    EXPECT_EQ(call.records.take(),
              (Lines{teamRecord("b"), teamRecord("\xE6\x96\x87\xF0\x9F\x98\x80"), teamRecord("plain")}));
}

TEST_F(WFMGetNodeListWire, AHostileReplyIsRefusedOrKeptWithinTheRecord) {
    const SessionPtr session = makeAgentSession();
    const struct {
        std::string reply;
        uint32_t dwStatus;
        int32_t result;
        Lines records;
    } rows[] = {
        {R"({"total":2,"datas":[{"filename":"a","epochmt":"5"},{"filename":[]}]})", 14, -1, {}},
        {R"({"total":2,"datas":[5]})", 14, -1, {}},
        {R"({"total":2,"datas":"text"})", 0, -1, {}},
        {R"({"total":[],"datas":[]})", 0, 18, {}},
        {R"({"total":2,"datas":[{"filename":")" + std::string(5000, 'n') + R"(","epochmt":"5"}]})",
         0,
         -1,
         {}},
        {R"({"total":2,"datas":[{"filename":")" + std::string(2047, 'n') + R"(","epochmt":"5"}]})",
         0,
         0,
         {"name=" + std::string(2047, 'n') + " exists child"}},
        {"{\"total\":2,\"datas\":[{\"filename\":\"\xFF\xF0\x9F\x98\x80\",\"epochmt\":\"5\"}]}",
         0,
         0,
         {"name=\xEF\xBF\xBD\xF0\x9F\x98\x80 exists child"}},
        {R"({"total":1,"datas":[{"filename":"a\u0000b","epochmt":"5"}]})", 0, 0, {"name=a exists child"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply.substr(0, 80));
        RawServer server({Reply::json(row.reply)});
        call.expectNumbers(row.dwStatus, row.result, session.get(), server.port());
        EXPECT_EQ(call.records.isEmpty(), row.records.empty());
        EXPECT_EQ(call.records.take(), row.records);
    }
}
