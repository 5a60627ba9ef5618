// WFMGetPathInformation: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "lines.h"
#include "lists.h"
#include "refusals.h"
#include "routes.h"
#include "support/logcapture.h"
#include "support/rawserver.h"
#include "support/session.h"
#include "support/wire.h"
#include "teamfolders.h"

using namespace wire;

namespace {

struct PathInformationCall {
    const wchar_t* slaveID = nullptr;
    const wchar_t* name = L"a";
    const wchar_t* parent = L"/home";
    uint32_t fieldMask = 0x3f;
    uint32_t typeFilter = 0;
    bool serverSidePath = false;
    uint32_t result = 0xABCD;
    GarbageRecord out;
    uint32_t* resultWord = &result;
    _WFM_PATH_INFORMATION* information = &out.record;

    PathInformationCall() = default;
    PathInformationCall(const PathInformationCall&) = delete;
    PathInformationCall& operator=(const PathInformationCall&) = delete;

    uint32_t run(_WFM_AUTH_CONTEXT* session, uint32_t port) {
        return WFMGetPathInformation(session, kServer, port, slaveID, name, parent, fieldMask, typeFilter,
                                     serverSidePath, nullptr, resultWord, information);
    }
    bool isUntouched() const { return result == 0xABCD && out.isUntouched(); }
};

/// A stat reply with one entry of that name.
std::string stat(const std::string& name, const std::string& keys = R"(,"epochmt":"5")") {
    return R"({"status":1,"total":1,"datas":[{"filename":")" + name + "\"" + keys + "}]}";
}

std::string query(const std::string& path, const std::string& name, const std::string& switches = {}) {
    return "func=stat&path=" + path + "&file_total=1&file_name=" + name + switches + "&sid=sid123";
}

class WFMGetPathInformationWire : public testing::Test {
protected:
    SessionPtr session = makeTeamSession();
    LogCapture log{63};
};

}  // namespace

TEST_F(WFMGetPathInformationWire, AsksForOnePathEncodedOnEveryRoute) {
    const struct {
        uint32_t fieldMask;
        const char* switches;
    } rows[] = {{0x01, ""},
                {0x27f, ""},
                {0x80, "&get_privilege=1"},
                {0x100, "&get_privilege=1&check_upload=1"},
                {0x3ff, "&get_privilege=1&check_upload=1"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.fieldMask);
        expectOnEveryRoute(
            query("%2Fhome%2Fb%20c", "d%26e.txt", row.switches),
            [&row](_WFM_AUTH_CONTEXT* context, uint32_t port, const wchar_t* slaveID) {
                PathInformationCall call;
                call.parent = L"/home/b c";
                call.name = L"d&e.txt";
                call.fieldMask = row.fieldMask;
                call.slaveID = slaveID;
                call.run(context, port);
            },
            routes("torvisrv.fcgi"));
    }
}

TEST_F(WFMGetPathInformationWire, ThePathGoesToTheTeamFoldersPlaceAndNode) {
    expectOnEveryPathRoute(
        [](const std::string& folder, const std::string& name) { return query(folder, name); },
        [](_WFM_AUTH_CONTEXT* context, uint32_t port, const PathRoute& route) {
            PathInformationCall call;
            call.parent = route.folder;
            call.name = route.name;
            call.slaveID = route.slaveID;
            call.run(context, port);
        });
}

TEST_F(WFMGetPathInformationWire, TheParentGetsASlashUnlessItIsAServerSidePath) {
    const struct {
        const wchar_t* parent;
        bool serverSidePath;
        const char* sent;
    } rows[] = {{L"home", false, "%2Fhome"},
                {L"/home/", false, "%2Fhome%2F"},
                {L"vtf:/S", true, "%2Fvtf%3A%2FS"},
                {L"vtf://S/x", true, "vtf%3A%2F%2FS%2Fx"},
                {L"vtf://S/x", false, "vtf%3A%2F%2FS%2Fx"},
                {L"home/.Torvi/T", false, "vtf%3A%2F%2FS"},
                // The flag keeps a path from the mapping.
                {L"/home/.Torvi/T", true, "%2Fhome%2F.Torvi%2FT"}};
    RawServer server({Reply::json("{}")});
    size_t count = 0;
    for (const auto& row : rows) {
        PathInformationCall call;
        call.parent = row.parent;
        call.serverSidePath = row.serverSidePath;
        call.run(session.get(), server.port());
        EXPECT_EQ(server.request(count++).queryText(), query(row.sent, "a"));
    }
}

TEST_F(WFMGetPathInformationWire, OnePathThatExistsIsCopiedOut) {
    RawServer server({Reply::json(stat("a", R"(,"isfolder":1,"epochmt":"1700000000","privilege":700,
        "privilege_ex":2,"filesize":"5000000000","nubo_type":3,"nubo_share_id":"s","have_child":1)"))});
    const struct {
        uint32_t fieldMask;
        const char* expected;
    } rows[] = {{0x08, "folder exists"},
                {0x40, "exists"},
                {0x80, "privilege=2 exists"},
                {0x200, "exists"},
                {0x3ff,
                 "name=a access=2 privilege=2 folder exists size=5000000000 modified=1700000000 "
                 "second=1700000000"}};
    for (const auto& row : rows) {
        PathInformationCall call;
        call.fieldMask = row.fieldMask;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.out.text(), row.expected);
    }
    log.expectNoLines();
}

TEST_F(WFMGetPathInformationWire, ATypeFilterOf0MeansFilesAndFolders) {
    const struct {
        uint32_t typeFilter;
        bool isFolder;
        uint32_t result;
    } rows[] = {{0, true, 0},  {0, false, 0}, {3, true, 0}, {1, true, 3},
                {1, false, 0}, {2, true, 0},  {2, false, 3}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.typeFilter);
        RawServer server(
            {Reply::json(stat("a", row.isFolder ? R"(,"epochmt":"5","isfolder":1)" : R"(,"exist":1)"))});
        PathInformationCall call;
        call.typeFilter = row.typeFilter;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(call.result, row.result);
    }
}

TEST_F(WFMGetPathInformationWire, APathThatDoesNotExistIs3AndTellsItsPrivilegeOnlyIfAnUploadWasAskedFor) {
    const struct {
        uint32_t fieldMask;
        const char* expected;
    } rows[] = {{0x3f, ""}, {0x80, ""}, {0xff, ""}, {0x100, "privilege=1"}, {0x3ff, "privilege=1"}};
    for (const char* keys : {R"(,"exist":0,"epochmt":"5","privilege_ex":1)", R"(,"privilege_ex":1)"}) {
        RawServer server({Reply::json(stat("a", keys))});
        for (const auto& row : rows) {
            SCOPED_TRACE(row.fieldMask);
            PathInformationCall call;
            call.fieldMask = row.fieldMask;
            EXPECT_EQ(call.run(session.get(), server.port()), 0u);
            EXPECT_EQ(call.result, 3u);
            EXPECT_EQ(call.out.text(), row.expected);
        }
    }
    log.expectNoLines();
}

TEST_F(WFMGetPathInformationWire, AnyOtherNumberOfPathsThanOneIs14) {
    const struct {
        const char* reply;
        const char* number;
    } rows[] = {{R"({"status":1})", "0"},
                {R"({"status":1,"total":0,"datas":[]})", "0"},
                {"{}", "0"},
                {R"({"total":2,"datas":[{"filename":"a","exist":1},{"filename":"a","exist":1}]})", "2"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        RawServer server({Reply::json(row.reply)});
        PathInformationCall call;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 14u);
        EXPECT_EQ(call.result, 0xFFFFFFFFu);
        EXPECT_EQ(call.out.text(), "");
        log.expectLines({"[WFM] WFMGetPathInformation: Get path num (" + std::string(row.number) + ") != 1",
                         summaryLine("WFMGetPathInformation", server.port(), 14)});
    }
}

TEST_F(WFMGetPathInformationWire, WhatTheServerRefusesDecidesTheResult) {
    const char* const denied = R"({"status":4})";
    const struct {
        const char* what;
        const wchar_t* parent;
        const char* reply;
        int32_t result;
        std::vector<LogLine> lines;
    } rows[] = {
        {"denied", L"/home", denied, 5, {{"Debug", "[WFM] WFMGetPathInformation: WFM_PERMISSION_DENY"}}},
        {"denied in a team folder",
         L"/home/.Torvi/T",
         denied,
         3,
         {"[WFM] WFMGetPathInformation: IsTeamFolder&&Permission deny"}},
        {"denied beside the team folders",
         L"/home/.Torvi/TT",
         denied,
         5,
         {{"Debug", "[WFM] WFMGetPathInformation: WFM_PERMISSION_DENY"}}},
        {"status 5", L"/home", R"({"status":5})", 3, {}},
        {"status -3", L"/home", R"({"status":-3})", 3, {}},
        {"another name", L"/home", R"({"total":1,"datas":[{"filename":"A","exist":1}]})", 3, {}},
        {"no session",
         L"/home",
         R"({"status":3})",
         -1,
         {"[WFM] WFMGetPathInformation: ERROR_UNKNOWN Status(-29)"}},
        {"an unknown status",
         L"/home",
         R"({"status":34,"total":1,"datas":[{"filename":"a","exist":1}]})",
         -1,
         {"[WFM] WFMGetPathInformation: ERROR_UNKNOWN Status(-1)"}}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        RawServer server({Reply::json(row.reply)});
        PathInformationCall call;
        call.parent = row.parent;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(static_cast<int32_t>(call.result), row.result);
        EXPECT_EQ(call.out.text(), "");
        EXPECT_EQ(log.lines(), row.lines);
    }
}

TEST_F(WFMGetPathInformationWire, ATeamFolderWithoutAPlaceIsStillATeamFolder) {
    // A list ends at its first empty entry.
    setTeamFolders(*session, {{L"/home/.Torvi/T/", L"vtf://S/"}, {L"/home/.Torvi/U/", nullptr}});
    RawServer server({Reply::json(R"({"status":4})")});
    PathInformationCall call;
    call.parent = L"/home/.Torvi/U";
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    EXPECT_EQ(call.result, 3u);
    EXPECT_EQ(server.onlyRequest().queryText(), query("%2Fhome%2F.Torvi%2FU", "a"));
    EXPECT_EQ(log.texts(),
              std::vector<std::string>{"[WFM] WFMGetPathInformation: IsTeamFolder&&Permission deny"});
}

TEST_F(WFMGetPathInformationWire, ATeamFoldersRootIsLookedForByItsPlaceBehindTheScheme) {
    const struct {
        const wchar_t* serverPath;
        const char* sent;
        const char* replyName;
        uint32_t result;
    } rows[] = {{L"vtf://S/", "vtf%3A%2F%2FS", "S", 0},
                {L"vtf://owner/S/", "vtf%3A%2F%2Fowner%2FS", "owner/S", 0},
                {L"vtf://S/", "vtf%3A%2F%2FS", "T", 3},
                {L"vtf://S/", "vtf%3A%2F%2FS", "vtf://S", 3}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.replyName);
        setTeamFolders(*session, {{L"/home/.Torvi/T/", row.serverPath}});
        RawServer server({Reply::json(stat(row.replyName))});
        PathInformationCall call;
        call.parent = L"/home/.Torvi";
        call.name = L"T";
        call.fieldMask = 0x20;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(call.result, row.result);
        EXPECT_EQ(call.out.text(), row.result == 0 ? "name=" + std::string(row.replyName) + " exists" : "");
        EXPECT_EQ(server.onlyRequest().queryText(), query(row.sent, ""));
    }
}

TEST_F(WFMGetPathInformationWire, APlaceShorterThanItsSchemeHasNoNameToLookFor) {
    setTeamFolders(*session, {{L"/home/.Torvi/T/", L"v/"}});
    RawServer server({Reply::json(stat(""))});
    PathInformationCall call;
    call.parent = L"/home/.Torvi";
    call.name = L"T";
    EXPECT_EQ(call.run(session.get(), server.port()), 14u);
    EXPECT_EQ(call.out.text(), "");
    EXPECT_EQ(server.onlyRequest().queryText(), query("v", ""));
}

TEST_F(WFMGetPathInformationWire, WithoutATypeOrAFieldThatCountsTheReplyIsNotUnderstood) {
    const struct { uint32_t fieldMask, typeFilter; } rows[] = {{0, 3}, {0x20, 4}, {0x20, 8}};
    for (const auto& row : rows) {
        RawServer server({Reply::json(stat("a"))});
        PathInformationCall call;
        call.fieldMask = row.fieldMask;
        call.typeFilter = row.typeFilter;
        EXPECT_EQ(call.run(session.get(), server.port()), 14u);
        EXPECT_EQ(call.out.text(), "");
        EXPECT_EQ(server.requestCount(), 1u);
    }
}

TEST_F(WFMGetPathInformationWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    expectRefusals<PathInformationCall>(log, session.get(), "WFMGetPathInformation",
                                        {[](PathInformationCall& call) { call.name = nullptr; },
                                         [](PathInformationCall& call) { call.name = L""; },
                                         [](PathInformationCall& call) { call.parent = nullptr; },
                                         [](PathInformationCall& call) { call.parent = L""; },
                                         [](PathInformationCall& call) { call.resultWord = nullptr; },
                                         [](PathInformationCall& call) { call.information = nullptr; }});
}

TEST_F(WFMGetPathInformationWire, AFailedCallLeavesAZeroedRecord) {
    for (const Reply& reply :
         {Reply::status(500), Reply::json(stat("a", R"(,"epochmt":99999999999)")),
          Reply::json(R"({"total":1,"datas":[5]})"),
          Reply::json(stat("a", R"(,"exist":1,"filesize":[])")).closeAfterBodyBytes(9)}) {
        RawServer server({reply});
        PathInformationCall call;
        EXPECT_NE(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(call.result, 0xFFFFFFFFu);
        EXPECT_EQ(call.out.text(), "");
    }
}

TEST_F(WFMGetPathInformationWire, LongNamesAndNamesOfEveryPlaneAreFound) {
    const struct {
        std::wstring name;
        std::string onWire, sent;
    } rows[] = {{L"\x6587\U0001F600", "\xE6\x96\x87\xF0\x9F\x98\x80", "%E6%96%87%F0%9F%98%80"},
                {std::wstring(1800, L'n'), std::string(1800, 'n'), std::string(1800, 'n')}};
    for (const auto& row : rows) {
        RawServer server({Reply::json(stat(row.onWire))});
        PathInformationCall call;
        call.name = row.name.c_str();
        call.fieldMask = 0x20;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.out.text(), "name=" + row.onWire + " exists");
        EXPECT_EQ(server.onlyRequest().queryText(), query("%2Fhome", row.sent));
    }
}
