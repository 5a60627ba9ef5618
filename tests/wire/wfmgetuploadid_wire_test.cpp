#include <gtest/gtest.h>

#include <algorithm>

#include "refusals.h"
#include "replies.h"
#include "routes.h"
#include "sessioncall.h"

using namespace wire;

namespace {

const char* const kGood = R"({"status":0,"upload_id":"u-17"})";
const char* const kQuery = "func=start_chunked_upload&sid=sid123&upload_root_dir=%2Fhome%2F.up";

struct UploadIDCall : SessionCall<UploadIDCall> {
    const wchar_t* server = kServer;
    uint32_t capacity = 260;
    uint32_t* capacityInOut = &capacity;
    MarkedBuffer buffer;
    wchar_t* uploadID = buffer.data();
    const wchar_t* uploadRoot = L"/home/.up";
    const wchar_t* folder = L"/home/d";
    uint32_t detail = 0xABCD;
    uint32_t* detailWord = &detail;

    using SessionCall::SessionCall;
    uint32_t call() {
        return WFMGetUploadID(session, server, port, slaveID, capacityInOut, uploadID, uploadRoot, folder,
                              nullptr, resultWord, detailWord);
    }
    int32_t signedDetail() const { return static_cast<int32_t>(detail); }
    bool isUntouched() const {
        return result == 0xABCD && detail == 0xABCD && (capacity == 260 || capacity == 0) &&
               buffer.isUntouched();
    }
};

std::string errorStatus(int status) {
    return "[WFM] WFMGetUploadID: get error status = " + std::to_string(status);
}

}  // namespace

TEST(WFMGetUploadIDWire, AsksWithOneGetAndHandsOutTheId) {
    RawServer server({Reply::json(kGood)});
    UploadIDCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.detail, 0u);
    EXPECT_EQ(call.capacity, 260u);
    EXPECT_EQ(call.buffer.text(), L"u-17");
    log.expectNoLines();
    expectGet(server.onlyRequest(), std::string("/cgi-bin/torvi/torvisrv.cgi?") + kQuery,
              baseHeaders(server));
}

TEST(WFMGetUploadIDWire, GoesToTheSessionsServiceAndNode) {
    expectOnEveryRoute(kQuery, [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
        UploadIDCall call;
        call.slaveID = slaveID;
        call.run(session, port);
    });
}

TEST(WFMGetUploadIDWire, TheCallersNodeGoesBeforeTheTeamFolders) {
    struct {
        const char* what;
        const char* ownSlaveID;
        const wchar_t* slaveID;
        const wchar_t* folder;
        const char* prefix;
        bool fileManager = false;
    } const rows[] = {
        {"a plain folder", "node1", nullptr, L"/home/d", ""},
        {"a plain folder, another node", "node1", L"n5", L"/home/d", "n5/"},
        {"a team folder", "node1", nullptr, L"/home/.Torvi/T", "n2/"},
        {"a team folder with its slash", "node1", L"", L"/home/.Torvi/T/", "n2/"},
        {"deep in a team folder", "node1", nullptr, L"/home/.Torvi/T/d/e", "n2/"},
        {"the caller's node wins", "node1", L"n5", L"/home/.Torvi/T/d", "n5/"},
        {"the caller's node wins, though it is the own one", "node1", L"NODE1", L"/home/.Torvi/T", ""},
        {"a team folder of the own node", "node1", nullptr, L"/home/.Torvi/Own/d", ""},
        {"a name that only begins like a team folder", "node1", nullptr, L"/home/.Torvi/TT", ""},
        {"the team area itself", "node1", nullptr, L"/home/.Torvi", ""},
        {"another letter case", "node1", nullptr, L"/home/.torvi/T", ""},
        {"no cluster", "", nullptr, L"/home/.Torvi/T", ""},
        {"a node, but no cluster", "", L"n5", L"/home/.Torvi/T", ""},
        {"the web file manager", "node1", L"n5", L"/home/.Torvi/T", "", true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        PathRoute route = pathRoutes().front();
        route.ownSlaveID = row.ownSlaveID;
        route.fileManager = row.fileManager;
        route.prefix = row.prefix;
        RawServer server({Reply::json(kGood)});
        UploadIDCall call(server);
        const SessionPtr session = route.session();
        call.slaveID = row.slaveID;
        call.folder = row.folder;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        expectRequestLine(server.onlyRequest(), "GET " + route.cgi() + "?" + kQuery + " HTTP/1.1");
    }
}

TEST(WFMGetUploadIDWire, EncodesTheUploadRootAndDoesNotMapIt) {
    RawServer server({Reply::json(kGood)});
    UploadIDCall call(server);
    const SessionPtr session = pathRouteSession();
    call.uploadRoot = L"/home/.Torvi/T/100% & \x6587";
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    EXPECT_EQ(server.onlyRequest().queryText(),
              "func=start_chunked_upload&sid=sid123&upload_root_dir=%2Fhome%2F.Torvi%2FT%2F100%25%20%26%20"
              "%E6%96%87");
}

TEST(WFMGetUploadIDWire, TheServersOwnNumberDecides) {
    const std::string homeGone = "[WFM] WFMGetUploadID: WFM_HOME_FOLDER_NOT_AVAIL";
    expectReplies<UploadIDCall>(
        {
            {R"({"status":-4})", 0, -11, {errorStatus(-4)}},
            {R"({"status":"-4","upload_id":"u"})", 0, -11, {errorStatus(-4)}},
            {R"({"status":4})", 0, -3, {errorStatus(4)}},
            {R"({"status":7,"home_folder_available":false})", 0, -44, {errorStatus(7), homeGone}},
            {R"({"status":7,"home_folder_available":true})", 0, -5, {errorStatus(7)}},
            {R"({"status":7})", 0, -5, {errorStatus(7)}},
            {R"({"status":4,"home_folder_available":false})", 0, -3, {errorStatus(4)}},
            {R"({"status":1,"upload_id":"u"})", 0, -1, {errorStatus(1)}},
            {R"({"status":3})", 0, -1, {errorStatus(3)}},
            {R"({"status":5,"home_folder_available":false})", 0, -1, {errorStatus(5)}},
            {R"({"status":9})", 0, -1, {errorStatus(9)}},
            {R"({"status":-1})", 0, -1, {errorStatus(-1)}},
            {R"({"upload_id":"u"})", 0, -1, {errorStatus(-1)}},
            {"{}", 0, -1, {errorStatus(-1)}},
        },
        [](const UploadIDCall& call) {
            EXPECT_EQ(call.signedDetail(), -1);
            EXPECT_EQ(call.capacity, 260u);
            EXPECT_TRUE(call.buffer.isUntouched());
        });
}

TEST(WFMGetUploadIDWire, AnIdAsLongAsTheCapacityIsCopiedWithATerminatorBehind) {
    RawServer server({Reply::json(R"({"status":0,"upload_id":"12345678"})")});
    UploadIDCall call(server);
    call.capacity = 8;
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.detail, 0u);
    EXPECT_EQ(call.capacity, 8u);
    EXPECT_EQ(call.buffer.text(), L"12345678");
    log.expectNoLines();
}

TEST(WFMGetUploadIDWire, AnIdLongerThanTheCapacityIs122AndTellsTheCapacity) {
    RawServer server({Reply::json(R"({"status":0,"upload_id":"12345678"})")});
    UploadIDCall call(server);
    call.capacity = 7;
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.detail, 122u);
    EXPECT_EQ(call.capacity, 9u);
    EXPECT_TRUE(call.buffer.isUntouched());
    log.expectLines({"[WFM] WFMGetUploadID: ERROR_INSUFFICIENT_BUFFER"});
}

TEST(WFMGetUploadIDWire, ASuccessWithoutAnIdLeavesTheDetailWordAtMinus1) {
    for (const char* reply :
         {R"({"status":0})", R"({"status":0,"upload_id":""})", R"({"status":0,"upload_id":null})"}) {
        SCOPED_TRACE(reply);
        RawServer server({Reply::json(reply)});
        UploadIDCall call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.signedDetail(), -1);
        EXPECT_EQ(call.capacity, 260u);
        EXPECT_TRUE(call.buffer.isUntouched());
        log.expectNoLines();
    }
}

TEST(WFMGetUploadIDWire, AFailedCallLeavesBothWordsAtMinus1) {
    RawServer server({Reply::status(503)});
    UploadIDCall call(server);
    EXPECT_EQ(call.run(), 12u);
    EXPECT_EQ(call.signedResult(), -1);
    EXPECT_EQ(call.signedDetail(), -1);
    EXPECT_EQ(call.capacity, 260u);
    EXPECT_TRUE(call.buffer.isUntouched());
}

TEST(WFMGetUploadIDWire, AnIdOfAnotherTypeIs14) {
    expectReplies<UploadIDCall>({{R"({"status":0,"upload_id":["u"]})",
                                  14,
                                  -1,
                                  {"[WFM] WFMGetUploadID: WFM_PARSE_XML_FAIL",
                                   "[WFM] WFMGetUploadID(127.0.0.1:{port}) failed dwStatus(14)"}}},
                                [](const UploadIDCall& call) { EXPECT_TRUE(call.buffer.isUntouched()); });
}

TEST(WFMGetUploadIDWire, ThePortIsNotTested) {
    UploadIDCall call;
    call.port = 0;
    LogCapture log;
    EXPECT_EQ(call.run(), 2u);
    EXPECT_EQ(call.signedResult(), -1);
    EXPECT_EQ(call.signedDetail(), -1);
    log.expectLines({"[WFM] WFMGetUploadID: FAIL(httpStatusCode=0)", summaryLine("WFMGetUploadID", 0, 2)});
}

TEST(WFMGetUploadIDWire, AnEmptyServerIsAHostThatIsNotFound) {
    RawServer server({Reply::json(kGood)});
    UploadIDCall call(server);
    call.server = L"";
    LogCapture log;
    EXPECT_EQ(call.run(), 2u);
    EXPECT_EQ(call.signedResult(), -1);
    EXPECT_EQ(server.connectionCount(), 0u);
    log.expectLines({"[WFM] WFMGetUploadID: FAIL(httpStatusCode=0)",
                     "[WFM] WFMGetUploadID(:" + std::to_string(server.port()) + ") failed dwStatus(2)"});
}

TEST(WFMGetUploadIDWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<UploadIDCall>(
        log, session.get(), "WFMGetUploadID",
        {[](UploadIDCall& call) { call.resultWord = nullptr; },
         [](UploadIDCall& call) { call.uploadID = nullptr; },
         [](UploadIDCall& call) { call.capacityInOut = nullptr; },
         [](UploadIDCall& call) { call.capacity = 0; }, [](UploadIDCall& call) { call.detailWord = nullptr; },
         [](UploadIDCall& call) { call.uploadRoot = nullptr; },
         [](UploadIDCall& call) { call.uploadRoot = L""; }, [](UploadIDCall& call) { call.folder = nullptr; },
         [](UploadIDCall& call) { call.folder = L""; }});
}
