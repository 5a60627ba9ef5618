// WFMTorviGetSyncLog: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "lists.h"
#include "refusals.h"
#include "replies.h"
#include "routes.h"
#include "sessioncall.h"
#include "support/staterecords.h"

using namespace wire;

namespace {

using Lines = std::vector<std::string>;
using LogRecord = Garbage<_WFM_SYNC_LOG_INFORMATION>;

struct SyncLogCall : SessionCall<SyncLogCall> {
    uint32_t number = 100;
    int64_t lower = 5;
    const wchar_t* folder = nullptr;
    std::vector<LogRecord> records{3};
    std::vector<_WFM_SYNC_LOG_INFORMATION*> pointers;
    uint32_t count = 3;
    uint32_t* countInOut = &count;
    _WFM_SYNC_LOG_INFORMATION** list;
    char endFlag = 0x5A;  // a bool, as garbage
    bool* isEnd = reinterpret_cast<bool*>(&endFlag);

    SyncLogCall() {
        for (LogRecord& record : records) pointers.push_back(&record.record);
        list = pointers.data();
    }
    explicit SyncLogCall(const RawServer& at) : SyncLogCall() { port = at.port(); }

    uint32_t call() {
        return WFMTorviGetSyncLog(session, kServer, port, slaveID, number, lower, folder, nullptr, countInOut,
                                  list, isEnd, resultWord);
    }
    Lines texts() const {
        Lines all;
        for (const LogRecord& record : records) all.push_back(record.text());
        return all;
    }
    bool isUntouched() const {
        return result == 0xABCD && (count == 3 || count == 0) && endFlag == 0x5A &&
               texts() == Lines(3, "untouched");
    }
};

/// A reply with that many records.
std::string logOf(int count, const std::string& keys = R"("status":0,"end":1)") {
    std::string entries;
    for (int i = 1; i <= count; ++i)
        entries += std::string(i > 1 ? "," : "") + R"({"filepath":"/f)" + std::to_string(i) +
                   R"(","log_id":")" + std::to_string(i) + R"(","action":8})";
    return "{" + keys + R"(,"number":)" + std::to_string(count) + R"(,"data":[)" + entries + "]}";
}

std::string errorStatus(int status) {
    return "[WFMShare] WFMTorviGetSyncLog: error status = " + std::to_string(status);
}

const char* const kInsufficientBuffer = "[WFMShare] WFMTorviGetSyncLog: WFM_INSUFFICIENT_BUFFER";

}  // namespace

// ---- The request ----

TEST(WFMTorviGetSyncLogWire, WithAFolderItGoesToTheNode) {
    expectOnEveryRoute(
        "func=nubo_get_sync_log&sid=sid123&lower=5&number=100&syncing_folder=%2Fhome%2Fb%20c%26d%2F%E6%96%87",
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
            SyncLogCall call;
            call.slaveID = slaveID;
            call.folder = L"/home/b c&d/\x6587";
            call.run(session, port);
        });
}

TEST(WFMTorviGetSyncLogWire, WithoutAFolderTheNodeDoesNotCount) {
    for (const wchar_t* folder : {static_cast<const wchar_t*>(nullptr), L""})
        expectOnEveryRoute(
            "func=nubo_get_sync_log&sid=sid123&lower=5&number=100",
            [folder](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
                SyncLogCall call;
                call.slaveID = slaveID;
                call.folder = folder;
                call.run(session, port);
            },
            routesWithoutNode());
}

TEST(WFMTorviGetSyncLogWire, TheNumberTravelsAsASignedOne) {
    for (const auto& [number, sent] :
         {std::pair{0x7FFFFFFFU, "2147483647"}, {0x80000000U, "-2147483648"}, {0xFFFFFFFFU, "-1"}})
        for (const wchar_t* folder : {L"", L"/a"}) {
            RawServer server({Reply::json("{}")});
            SyncLogCall call(server);
            call.number = number;
            call.folder = folder;
            call.run();
            EXPECT_NE((server.onlyRequest().target() + "&").find(std::string("&number=") + sent + "&"),
                      std::string::npos)
                << server.onlyRequest().target();
        }
}

TEST(WFMTorviGetSyncLogWire, TheLowerNumberTravelsWhole) {
    const std::pair<int64_t, const char*> rows[] = {
        {0, "0"},
        {-1, "-1"},
        {5000000000, "5000000000"},
        {std::numeric_limits<int64_t>::max(), "9223372036854775807"},
        {std::numeric_limits<int64_t>::min(), "-9223372036854775808"}};
    for (const auto& [lower, sent] : rows)
        for (const wchar_t* folder : {L"", L"a"}) {
            RawServer server({Reply::json("{}")});
            SyncLogCall call(server);
            call.lower = lower;
            call.number = 1;
            call.folder = folder;
            EXPECT_EQ(call.run(), 0u);
            EXPECT_EQ(server.onlyRequest().queryText(),
                      std::string("func=nubo_get_sync_log&sid=sid123&lower=") + sent + "&number=1" +
                          (*folder != L'\0' ? "&syncing_folder=a" : ""));
        }
}

// ---- The reply ----

TEST(WFMTorviGetSyncLogWire, TheRecordsAreCopiedIntoTheCallers) {
    RawServer server({Reply::json(R"({"status":0,"end":1,"number":2,"data":[
        {"filepath":"/home/b","old_filepath":"/home/a","device":"PC","log_id":"5000000000","isfolder":1,"action":10},
        {"old_filepath":"/no path"},
        {"filepath":"/home/c","log_id":5000000001,"isfolder":7,"action":99}]})")});
    SyncLogCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.count, 2u);
    EXPECT_EQ(call.endFlag, 1);
    EXPECT_EQ(call.texts(), (Lines{"path=/home/b old=/home/a device=PC id=5000000000 folder=1 action=3",
                                   "path=/home/c id=5000000001 action=-1", "untouched"}));
    log.expectNoLines();
}

TEST(WFMTorviGetSyncLogWire, ALogMayBeEmptyAndSaysWhetherItIsTheEnd) {
    const struct {
        const char* reply;
        char isEnd;
    } rows[] = {{"{}", 0},
                {R"({"status":0,"end":1})", 1},
                {R"({"status":0,"end":"1"})", 1},
                {R"({"status":0,"end":0,"number":0,"data":[{"filepath":"/a"}]})", 0},
                {R"({"status":0,"end":2,"number":-1,"data":[{"filepath":"/a"}]})", 1},
                {R"({"status":0,"end":1,"number":1})", 1},
                {R"({"status":0,"number":1,"data":[]})", 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        RawServer server({Reply::json(row.reply)});
        SyncLogCall call(server);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.count, 0u);
        EXPECT_EQ(call.endFlag, row.isEnd);
        EXPECT_EQ(call.texts(), Lines(3, "untouched"));
    }
}

TEST(WFMTorviGetSyncLogWire, ACapacityThatIsTooSmallIsFilledAndIsMinus23) {
    const struct {
        int records;
        uint32_t capacity, count;
        bool fits;
    } rows[] = {{3, 3, 3, true}, {2, 3, 2, true}, {3, 2, 2, false}, {3, 1, 1, false}, {500, 3, 3, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.records) + "/" + std::to_string(row.capacity));
        RawServer server({Reply::json(logOf(row.records))});
        SyncLogCall call(server);
        call.count = row.capacity;
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.signedResult(), row.fits ? 0 : -23);
        EXPECT_EQ(call.count, row.count);
        EXPECT_EQ(call.endFlag, 1);
        Lines expected(3, "untouched");
        for (uint32_t i = 0; i < row.count; ++i)
            expected[i] = "path=/f" + std::to_string(i + 1) + " id=" + std::to_string(i + 1) + " action=1";
        EXPECT_EQ(call.texts(), expected);
        EXPECT_EQ(log.texts(), row.fits ? Lines{} : Lines{kInsufficientBuffer});
    }
}

TEST(WFMTorviGetSyncLogWire, ANullInTheListStopsTheCopying) {
    RawServer server({Reply::json(logOf(3))});
    SyncLogCall call(server);
    call.pointers[1] = nullptr;
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.signedResult(), -23);
    EXPECT_EQ(call.count, 1u);
    EXPECT_EQ(call.endFlag, 1);
    EXPECT_EQ(call.texts(), (Lines{"path=/f1 id=1 action=1", "untouched", "untouched"}));
    log.expectLines({kInsufficientBuffer});

    RawServer again({Reply::json(logOf(3))});
    SyncLogCall first(again);
    first.pointers[0] = nullptr;
    EXPECT_EQ(first.run(), 0u);
    EXPECT_EQ(first.signedResult(), -23);
    EXPECT_EQ(first.count, 0u);
    EXPECT_EQ(first.endFlag, 1);
    EXPECT_EQ(first.texts(), Lines(3, "untouched"));

    // One that isn't reached doesn't matter.
    RawServer shorter({Reply::json(logOf(1))});
    SyncLogCall reached(shorter);
    reached.pointers[1] = nullptr;
    EXPECT_EQ(reached.run(), 0u);
    EXPECT_EQ(reached.result, 0u);
    EXPECT_EQ(reached.count, 1u);
}

TEST(WFMTorviGetSyncLogWire, TheServersOwnStatusIsTheResultAndFillsNothing) {
    const auto with = [](const std::string& status) { return logOf(1, R"("end":1,"status":)" + status); };
    expectReplies<SyncLogCall>(
        {
            {with("1"), 0, 1, {errorStatus(1)}},
            {with("\"4\""), 0, 4, {errorStatus(4)}},
            {with("-3"), 0, -3, {errorStatus(-3)}},
            {with("34"), 0, 34, {errorStatus(34)}},
            {with("99999999999"),
             14,
             -1,
             {"[WFMShare] WFMTorviGetSyncLog: WFM_PARSE_XML_FAIL",
              "[WFMShare] WFMTorviGetSyncLog(127.0.0.1:{port}) failed dwStatus(14)"}},
        },
        [](const SyncLogCall& call) {
            EXPECT_EQ(call.count, 0u);
            EXPECT_EQ(call.endFlag, 0);
            EXPECT_EQ(call.texts(), Lines(3, "untouched"));
        });
}

TEST(WFMTorviGetSyncLogWire, WhatCannotBeReadIs14AndFillsNothing) {
    for (const char* reply : {R"({"status":0,"number":1,"data":"x"})",
                              R"({"status":0,"number":2,"data":[{"filepath":"/a"},{"filepath":[]}]})",
                              R"({"status":0,"end":1,"number":99999999999})"}) {
        SCOPED_TRACE(reply);
        RawServer server({Reply::json(reply)});
        SyncLogCall call(server);
        EXPECT_EQ(call.run(), 14u);
        EXPECT_EQ(call.signedResult(), -1);
        EXPECT_EQ(call.count, 0u);
        EXPECT_EQ(call.endFlag, 0);
        EXPECT_EQ(call.texts(), Lines(3, "untouched"));
    }
}

TEST(WFMTorviGetSyncLogWire, PathsFillTheirFieldsAndNoMore) {
    const std::string longest(4095, 'p');
    RawServer server(
        {Reply::json(R"({"status":0,"number":2,"data":[
        {"filepath":")" +
                     longest + R"(","old_filepath":")" + longest + R"(","log_id":"1","action":8},
        {"filepath":")" +
                     longest + R"(p","log_id":"2","action":8},
        {"filepath":"/a","old_filepath":")" +
                     longest + R"(p","device":")" + longest + R"(","log_id":"3","action":8}]})")});
    SyncLogCall call(server);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.count, 2u);
    EXPECT_EQ(call.texts(), (Lines{"path=" + longest + " old=" + longest + " id=1 action=1",
                                   "path=/a id=3 action=1", "untouched"}));
}

TEST(WFMTorviGetSyncLogWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<SyncLogCall>(
        log, session.get(), "WFMTorviGetSyncLog",
        {[](SyncLogCall& call) { call.resultWord = nullptr; },
         [](SyncLogCall& call) { call.isEnd = nullptr; }, [](SyncLogCall& call) { call.list = nullptr; },
         [](SyncLogCall& call) { call.countInOut = nullptr; }, [](SyncLogCall& call) { call.count = 0; },
         [](SyncLogCall& call) { call.number = 0; }},
        kSharePrefix);
}
