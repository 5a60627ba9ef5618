// WFMFixTeamFolderLink: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>

#include "WebFileManShareAPI.h"
#include "refusals.h"
#include "routes.h"
#include "sessioncall.h"

using namespace wire;

namespace {

constexpr uint32_t kOnSyncService = 4;
constexpr uint32_t kOnFileManager = 8;

struct FixLinkCall : SessionCall<FixLinkCall> {
    uint32_t type = kOnSyncService;
    const wchar_t* path = L"/home/T x/\x6587";
    uint32_t fixed = 0xABCD;
    uint32_t* out = &fixed;

    using SessionCall::SessionCall;
    uint32_t call() { return WFMFixTeamFolderLink(session, kServer, port, nullptr, type, path, out); }
    bool isUntouched() const { return fixed == 0xABCD; }
};

const char* const kDone = R"({"status":1,"success":"true"})";

}  // namespace

TEST(WFMFixTeamFolderLinkWire, AsksTheSessionsServiceAndNamesNoNode) {
    const std::string query = "func=nubo_fix_team_folder_link&sid=sid123&path=%2Fhome%2FT%20x%2F%E6%96%87";
    expectOnEveryRoute(
        query + "&type=4",
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
            bool usesSyncService = false;
            EXPECT_EQ(WFMGetUseNuboCGI(session, &usesSyncService), 0u);
            FixLinkCall call;
            call.type = usesSyncService ? kOnSyncService : kOnFileManager;
            EXPECT_EQ(call.run(session, port), 0u);
        },
        routesWithoutNode(), query);
}

TEST(WFMFixTeamFolderLinkWire, ATypeOfTheOtherServiceIsRefused) {
    const std::pair<bool, uint32_t> rows[] = {{false, kOnFileManager}, {false, 0}, {false, 5}, {false, 12},
                                              {true, kOnSyncService},  {true, 0},  {true, 9}};
    for (const auto& [fileManager, type] : rows) {
        SCOPED_TRACE(type);
        RawServer server({Reply::json(kDone)});
        FixLinkCall call(server);
        if (fileManager) useFileManager(*call.own);
        call.type = type;
        LogCapture log;
        EXPECT_EQ(call.run(), 8u);
        EXPECT_TRUE(call.isUntouched());
        EXPECT_EQ(server.connectionCount(), 0u);
        log.expectLines({refusedLine("WFMFixTeamFolderLink", server.port(), kSharePrefix)});
    }
}

TEST(WFMFixTeamFolderLinkWire, ALinkThatWasFixedIs1WithALine) {
    for (const char* reply : {kDone, R"({"status":"1","success":true})"}) {
        RawServer server({Reply::json(reply)});
        FixLinkCall call(server);
        LogCapture log(32 | 4);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.fixed, 1u);
        log.expectLines({LogLine(
            "Debug",
            "[WFMShare] WFMFixTeamFolderLink: Team folder link had been fixed(/home/T x/\xE6\x96\x87)")});
    }
}

TEST(WFMFixTeamFolderLinkWire, OtherwiseTheOutWordStaysAsItWas) {
    for (const char* reply :
         {R"({"status":0,"success":"true"})", R"({"status":2,"success":"true"})", R"({"success":"true"})",
          R"({"status":1,"success":"false"})", R"({"status":1})", "{}", "[]"}) {
        SCOPED_TRACE(reply);
        RawServer server({Reply::json(reply)});
        FixLinkCall call(server);
        LogCapture log(32 | 4);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_TRUE(call.isUntouched());
        log.expectNoLines();
    }
}

TEST(WFMFixTeamFolderLinkWire, AFailedCallLeavesTheOutWordAlone) {
    for (const Reply& reply : {Reply::status(503, kDone), Reply::json("no"), Reply::closeBeforeReply()}) {
        RawServer server({reply});
        FixLinkCall call(server);
        EXPECT_NE(call.run(), 0u);
        EXPECT_TRUE(call.isUntouched());
    }
}

TEST(WFMFixTeamFolderLinkWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<FixLinkCall>(
        log, session.get(), "WFMFixTeamFolderLink",
        {[](FixLinkCall& call) { call.path = nullptr; }, [](FixLinkCall& call) { call.path = L""; },
         [](FixLinkCall& call) { call.out = nullptr; }},
        kSharePrefix);
}
