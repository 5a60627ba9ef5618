// WFMIsPathPresent: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "lines.h"
#include "refusals.h"
#include "routes.h"
#include "support/logcapture.h"
#include "support/rawserver.h"
#include "support/session.h"
#include "support/wire.h"
#include "teamfolders.h"

using namespace wire;

namespace {

struct IsPresentCall {
    const wchar_t* slaveID = nullptr;
    const wchar_t* path = L"/home/a";
    bool wantFolder = false;
    bool serverSidePath = false;
    uint32_t result = 0xABCD;
    bool isPresent = true;
    uint32_t* resultWord = &result;
    bool* out = &isPresent;

    IsPresentCall() = default;
    IsPresentCall(const IsPresentCall&) = delete;
    IsPresentCall& operator=(const IsPresentCall&) = delete;

    uint32_t run(_WFM_AUTH_CONTEXT* session, uint32_t port) {
        return WFMIsPathPresent(session, kServer, port, slaveID, path, wantFolder, serverSidePath, nullptr,
                                resultWord, out);
    }
    bool isUntouched() const { return result == 0xABCD && isPresent; }
};

// The lines carry the other function's name.
std::string failedLine(int dwStatus, int result) {
    return "[WFM] WFMGetFolderInformation: WFMGetFolderInformation failed(dwParseStatus=" +
           std::to_string(dwStatus) + ")(dwResult=" + std::to_string(result) + ")";
}

const char* const kFile = R"({"total":1,"datas":[{"filename":"a","exist":1}]})";
const char* const kFolder = R"({"total":1,"datas":[{"filename":"a","isfolder":1,"exist":1}]})";
const char* const kShares = R"([{"text":"Other","iconCls":"folder"},{"text":"Public","iconCls":"folder"}])";

class WFMIsPathPresentWire : public testing::Test {
protected:
    SessionPtr session = makeTeamSession();
    LogCapture log;
};

}  // namespace

TEST_F(WFMIsPathPresentWire, AsksForAPathByAStat) {
    for (const wchar_t* path : {L"/home/b c/a", L"home/b c/a"})
        expectOnEveryRoute(
            "func=stat&path=%2Fhome%2Fb%20c&file_total=1&file_name=a&sid=sid123",
            [path](_WFM_AUTH_CONTEXT* context, uint32_t port, const wchar_t* slaveID) {
                IsPresentCall call;
                call.path = path;
                call.slaveID = slaveID;
                call.run(context, port);
            },
            routes("torvisrv.fcgi"));
}

TEST_F(WFMIsPathPresentWire, AsksForAShareAmongTheShares) {
    for (const wchar_t* path : {L"/Public", L"Public"})
        expectOnEveryRoute("func=get_tree&sid=sid123&is_iso=0&node=share_root",
                           [path](_WFM_AUTH_CONTEXT* context, uint32_t port, const wchar_t* slaveID) {
                               IsPresentCall call;
                               call.path = path;
                               call.slaveID = slaveID;
                               call.run(context, port);
                           });
}

TEST_F(WFMIsPathPresentWire, LeavesTheMappingToTheStatUnlessThePathIsTheServers) {
    const struct {
        const wchar_t* path;
        bool serverSidePath;
        const char* sent;
    } rows[] = {
        {L"/home/.Torvi/T/b/a", false, "/Node/cgi-bin/torvi/torvisrv.cgi?func=stat&path=vtf%3A%2F%2FS%2Fb"},
        {L"/home/.Torvi/T/b/a", true, "/cgi-bin/torvi/torvisrv.cgi?func=stat&path=%2Fhome%2F.Torvi%2FT%2Fb"},
        {L"vtf://S/b/a", true, "/cgi-bin/torvi/torvisrv.cgi?func=stat&path=vtf%3A%2F%2FS%2Fb"},
        // A team folder's root splits inside the scheme.
        {L"vtf://a", true, "/cgi-bin/torvi/torvisrv.cgi?func=stat&path=%2Fvtf%3A%2F"}};
    RawServer server({Reply::json(kFile)});
    size_t count = 0;
    for (const auto& row : rows) {
        IsPresentCall call;
        call.path = row.path;
        call.serverSidePath = row.serverSidePath;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_TRUE(call.isPresent);
        expectRequestLine(server.request(count++),
                          "GET " + std::string(row.sent) + "&file_total=1&file_name=a&sid=sid123 HTTP/1.1");
    }
}

TEST_F(WFMIsPathPresentWire, APathIsPresentAsTheTypeThatIsWanted) {
    const struct {
        const char* reply;
        bool wantFolder;
        uint32_t result;
        bool isPresent;
    } rows[] = {{kFile, false, 0, true},
                {kFile, true, 3, false},
                {kFolder, true, 0, true},
                {kFolder, false, 3, false},
                {R"({"status":5})", false, 3, false},
                {R"({"total":1,"datas":[{"filename":"a","exist":0}]})", false, 3, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        RawServer server({Reply::json(row.reply)});
        IsPresentCall call;
        call.wantFolder = row.wantFolder;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(call.result, row.result);
        EXPECT_EQ(call.isPresent, row.isPresent);
    }
    log.expectNoLines();
}

TEST_F(WFMIsPathPresentWire, AShareIsPresentWhateverTypeIsWantedAndEvenIfItIsDenied) {
    for (const char* reply : {kShares, R"({"status":4})"})
        for (const bool wantFolder : {false, true}) {
            SCOPED_TRACE(reply);
            RawServer server({Reply::json(reply)});
            IsPresentCall call;
            call.path = L"/Public";
            call.wantFolder = wantFolder;
            EXPECT_EQ(call.run(session.get(), server.port()), 0u);
            EXPECT_EQ(call.result, reply == kShares ? 0u : 5u);
            EXPECT_TRUE(call.isPresent);
        }
    log.expectNoLines();
}

TEST_F(WFMIsPathPresentWire, AShareThatIsNotThereIsLogged) {
    for (const wchar_t* path : {L"/Nowhere", L"/public"}) {
        RawServer server({Reply::json(kShares)});
        IsPresentCall call;
        call.path = path;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(call.result, 3u);
        EXPECT_FALSE(call.isPresent);
        log.expectLines({failedLine(0, 3)});
    }
}

TEST_F(WFMIsPathPresentWire, AShareLooksAbsentOnceTheSessionHasEndedAndIsLogged) {
    RawServer server({Reply::json(R"({"status":3})")});
    IsPresentCall call;
    call.path = L"/Public";
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    EXPECT_EQ(call.result, 3u);
    EXPECT_FALSE(call.isPresent);
    log.expectLines({failedLine(0, 3)});
}

TEST_F(WFMIsPathPresentWire, AShareUnderAnotherNameIs14) {
    // The name is a wildcard to the parser, so that another one comes back.
    RawServer server({Reply::json(R"([{"text":"Public","iconCls":"folder"}])")});
    IsPresentCall call;
    call.path = L"/*";
    EXPECT_EQ(call.run(session.get(), server.port()), 14u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_FALSE(call.isPresent);
    log.expectLines(
        {"[WFM] WFMGetFolderInformation: WFMGetFolderInformation path not "
         "sync(PathInfo.szPathName=Public)(DestPathName=*)"});
}

TEST_F(WFMIsPathPresentWire, NeitherFolderNorNameIs14WithoutALineOrARequest) {
    IsPresentCall call;
    call.path = L"/";
    EXPECT_EQ(call.run(session.get(), 80), 14u);
    EXPECT_EQ(call.result, 0xFFFFFFFFu);
    EXPECT_FALSE(call.isPresent);
    log.expectNoLines();
}

TEST_F(WFMIsPathPresentWire, OtherOutcomesAreNotPresentAndAreLogged) {
    struct Row {
        const wchar_t* path;
        const char* reply;
        uint32_t dwStatus;
        int32_t result;
        std::vector<LogLine> before;
    };
    const Row rows[] = {
        {L"/home/a", R"({"status":4})", 0, 5, {}},
        {L"/home/a", R"({"status":3})", 0, -1, {"[WFM] WFMGetPathInformation: ERROR_UNKNOWN Status(-29)"}},
        {L"/share", "5", 14, -1, {"[WFM] WFMGetFolderInformation: WFM_PARSE_XML_FAIL", "summary"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.reply);
        RawServer server({Reply::json(row.reply)});
        IsPresentCall call;
        call.path = row.path;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), row.dwStatus);
        EXPECT_EQ(static_cast<int32_t>(call.result), row.result);
        EXPECT_FALSE(call.isPresent);
        std::vector<LogLine> expected = row.before;
        if (row.dwStatus != 0) expected.back() = summaryLine("WFMGetFolderInformation", server.port(), 14);
        expected.emplace_back(failedLine(static_cast<int>(row.dwStatus), row.result));
        EXPECT_EQ(log.lines(), expected);
    }
}

TEST_F(WFMIsPathPresentWire, ASlashAtTheEndIsRefusedByTheStat) {
    IsPresentCall call;
    call.path = L"/home/a/";
    EXPECT_EQ(call.run(session.get(), 80), 8u);
    EXPECT_EQ(call.result, 0xFFFFFFFFu);
    EXPECT_FALSE(call.isPresent);
    log.expectLines({refusedLine("WFMGetPathInformation", 80), failedLine(8, -1)});
}

TEST_F(WFMIsPathPresentWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    expectRefusals<IsPresentCall>(
        log, session.get(), "WFMIsPathPresent",
        {[](IsPresentCall& call) { call.path = nullptr; }, [](IsPresentCall& call) { call.path = L""; },
         [](IsPresentCall& call) { call.resultWord = nullptr; },
         [](IsPresentCall& call) { call.out = nullptr; }});
}
