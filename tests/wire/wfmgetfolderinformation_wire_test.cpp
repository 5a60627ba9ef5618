// WFMGetFolderInformation: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

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

struct FolderInformationCall {
    const wchar_t* slaveID = nullptr;
    const wchar_t* parent = L"/home";
    const wchar_t* name = L"a";
    uint32_t fieldMask = 0x39;
    bool serverSidePath = false;
    uint32_t result = 0xABCD;
    GarbageRecord out;
    uint32_t* resultWord = &result;
    _WFM_PATH_INFORMATION* information = &out.record;

    FolderInformationCall() = default;
    FolderInformationCall(const FolderInformationCall&) = delete;
    FolderInformationCall& operator=(const FolderInformationCall&) = delete;

    uint32_t run(_WFM_AUTH_CONTEXT* session, uint32_t port) {
        return WFMGetFolderInformation(session, kServer, port, slaveID, parent, name, fieldMask,
                                       serverSidePath, nullptr, resultWord, information);
    }
    bool isUntouched() const { return result == 0xABCD && out.isUntouched(); }
};

const char* const kTree = R"([{"text":"A","iconCls":"folder","cls":"w"},
                              {"text":"a","iconCls":"folder","cls":"r"},
                              {"text":"f","iconCls":"file","cls":"w"},
                              {"text":"a","iconCls":"folder","cls":"w"}])";

class WFMGetFolderInformationWire : public testing::Test {
protected:
    SessionPtr session = makeTeamSession();
    LogCapture log{63};
};

}  // namespace

TEST_F(WFMGetFolderInformationWire, AsksForTheParentsFoldersEncoded) {
    expectOnEveryRoute("func=get_tree&sid=sid123&is_iso=0&node=%2Fhome%2Fb%20c",
                       [](_WFM_AUTH_CONTEXT* context, uint32_t port, const wchar_t* slaveID) {
                           FolderInformationCall call;
                           call.parent = L"/home/b c";
                           call.slaveID = slaveID;
                           call.run(context, port);
                       });
}

TEST_F(WFMGetFolderInformationWire, ThePathGoesToTheTeamFoldersPlaceAndNode) {
    expectOnEveryPathRoute(
        [](const std::string& folder, const std::string&) {
            return "func=get_tree&sid=sid123&is_iso=0&node=" + folder;
        },
        [](_WFM_AUTH_CONTEXT* context, uint32_t port, const PathRoute& route) {
            FolderInformationCall call;
            call.parent = route.folder;
            call.name = route.name;
            call.slaveID = route.slaveID;
            call.run(context, port);
        });
}

TEST_F(WFMGetFolderInformationWire, TheParentIsShareRootOrGetsASlashOrIsAServerSidePath) {
    const struct {
        const wchar_t* parent;
        bool serverSidePath;
        const char* node;
    } rows[] = {{L"/", false, "share_root"},
                {L"/", true, "share_root"},
                {L"home", false, "%2Fhome"},
                {L"/home/", false, "%2Fhome%2F"},
                {L"//", false, "%2F%2F"},
                {L"share_root", false, "%2Fshare_root"},
                {L"vtf://S/x", true, "vtf%3A%2F%2FS%2Fx"},
                {L"vtf://S/x", false, "vtf%3A%2F%2FS%2Fx"},
                // The flag keeps a path from the mapping.
                {L"/home/.Torvi/T", true, "%2Fhome%2F.Torvi%2FT"}};
    RawServer server({Reply::json(kTree)});
    size_t count = 0;
    for (const auto& row : rows) {
        FolderInformationCall call;
        call.parent = row.parent;
        call.serverSidePath = row.serverSidePath;
        call.run(session.get(), server.port());
        EXPECT_EQ(server.request(count++).queryText(),
                  "func=get_tree&sid=sid123&is_iso=0&node=" + std::string(row.node));
    }
}

TEST_F(WFMGetFolderInformationWire, FindsTheFirstFolderOfTheName) {
    RawServer server({Reply::json(kTree)});
    const struct {
        const wchar_t* name;
        const char* expected;
    } rows[] = {{L"a", "name=a access=1 folder exists"},
                {L"A", "name=A access=2 folder exists"},
                {L"/a", "name=a access=1 folder exists"}};
    for (const auto& row : rows) {
        FolderInformationCall call;
        call.name = row.name;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.out.text(), row.expected);
    }
    log.expectNoLines();
}

TEST_F(WFMGetFolderInformationWire, TheFieldMaskSelectsWhatIsFilled) {
    RawServer server({Reply::json(kTree)});
    const struct {
        uint32_t fieldMask;
        const char* expected;
    } rows[] = {{0, "exists"}, {0x01, "access=1 exists"}, {0x08, "folder exists"}, {0x20, "name=a exists"}};
    for (const auto& row : rows) {
        FolderInformationCall call;
        call.fieldMask = row.fieldMask;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(call.out.text(), row.expected);
    }
}

TEST_F(WFMGetFolderInformationWire, WithoutExactlyOneFolderThePathIsNotFound) {
    const struct {
        const wchar_t* name;
        const char* reply;
        int found;
    } rows[] = {{L"c", kTree, 0},
                {L"f", kTree, 0},
                {L"//a", kTree, 0},
                {L"/", kTree, 0},
                {L"a", "[]", 0},
                {L"a", "{}", 0},
                {L"a", R"({"status":1})", 0},
                {L"a", R"({"status":3})", 0},
                {L"a", R"({"status":5})", 0},
                {L"*", kTree, 3}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        RawServer server({Reply::json(row.reply)});
        FolderInformationCall call;
        call.name = row.name;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(call.result, 3u);
        EXPECT_EQ(call.out.text(), "");
        log.expectLines({{"Debug", "[WFM] WFMGetFolderInformation: ERROR_PATH_NOT_FOUND(PathInfo num=" +
                                       std::to_string(row.found) + ")"}});
    }
}

TEST_F(WFMGetFolderInformationWire, ADenialIs5AndLeavesTheRecordWithoutAccess) {
    RawServer server({Reply::json(R"({"status":4})")});
    FolderInformationCall call;
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    EXPECT_EQ(call.result, 5u);
    EXPECT_EQ(call.out.text(), "");
    log.expectNoLines();
}

TEST_F(WFMGetFolderInformationWire, TheRecordNeedNotBeGiven) {
    for (const auto& [reply, result] : {std::pair{kTree, 0u}, {R"({"status":4})", 5u}, {"[]", 3u}}) {
        RawServer server({Reply::json(reply)});
        FolderInformationCall call;
        call.information = nullptr;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(call.result, result);
    }
}

TEST_F(WFMGetFolderInformationWire, AFailedCallLeavesAZeroedRecord) {
    RawServer server({Reply::status(500)});
    FolderInformationCall call;
    EXPECT_EQ(call.run(session.get(), server.port()), 6u);
    EXPECT_EQ(call.result, 0xFFFFFFFFu);
    EXPECT_EQ(call.out.text(), "");
}

TEST_F(WFMGetFolderInformationWire, ATeamFoldersRootIsNoFolderInItself) {
    RawServer server({Reply::json(kTree)});
    FolderInformationCall call;
    call.parent = L"/home/.Torvi";
    call.name = L"T";
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    EXPECT_EQ(call.result, 3u);
    EXPECT_EQ(server.onlyRequest().queryText(), "func=get_tree&sid=sid123&is_iso=0&node=vtf%3A%2F%2FS");
}

TEST_F(WFMGetFolderInformationWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    expectRefusals<FolderInformationCall>(log, session.get(), "WFMGetFolderInformation",
                                          {[](FolderInformationCall& call) { call.parent = nullptr; },
                                           [](FolderInformationCall& call) { call.parent = L""; },
                                           [](FolderInformationCall& call) { call.name = nullptr; },
                                           [](FolderInformationCall& call) { call.name = L""; },
                                           [](FolderInformationCall& call) { call.resultWord = nullptr; }});
}

TEST_F(WFMGetFolderInformationWire, AHostileReplyIsRefused) {
    for (const char* reply :
         {"[5]", R"([{"text":[],"iconCls":"folder"}])", R"([{"text":"a","iconCls":"folder","cls":{}}])"}) {
        SCOPED_TRACE(reply);
        RawServer server({Reply::json(reply)});
        FolderInformationCall call;
        EXPECT_EQ(call.run(session.get(), server.port()), 14u);
        EXPECT_EQ(call.out.text(), "");
    }
}
