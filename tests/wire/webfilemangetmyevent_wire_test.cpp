// WebFileManGetMyEvent: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "recordlist.h"
#include "refusals.h"
#include "replies.h"
#include "sessioncall.h"
#include "shareroutes.h"
#include "support/teamrecords.h"

using namespace wire;

namespace {

using Lines = std::vector<std::string>;

const std::string kName = "[WFMShare] WebFileManGetMyEvent";

struct EventCall : SessionCall<EventCall> {
    uint32_t eventType = 4;
    uint32_t lower = 0;
    uint32_t upper = 50;
    uint32_t total = 0xABCD;
    uint32_t* totalOut = &total;
    uint32_t count = 3;
    uint32_t* countInOut = &count;
    CallersList<_WFM_TORVI_EVENT_INFORMATION> events;
    _WFM_TORVI_EVENT_INFORMATION** list = events.data();

    EventCall() { useFileManager(*session); }
    explicit EventCall(const RawServer& at) : EventCall() { port = at.port(); }

    uint32_t call() {
        return WebFileManGetMyEvent(session, kServer, port, eventType, lower, upper, nullptr, resultWord,
                                    totalOut, countInOut, list);
    }
    bool isUntouched() const {
        return result == 0xABCD && total == 0xABCD && count == 3 && events.isUntouched();
    }
    bool isCleared() const { return total == 0 && count == 0 && events.isUntouched(); }
};

/// An event with a file of that name, or without one.
std::string event(const std::string& file) {
    return file.empty() ? R"({"event_id":9})" : R"({"event_id":9,"file":")" + file + "\"}";
}

std::string listOf(const std::vector<std::string>& files,
                   const std::string& keys = R"("status":1,"total":50)") {
    std::string events;
    for (const std::string& file : files) events += (events.empty() ? "" : ",") + event(file);
    return "{" + keys + R"(,"event":[)" + events + "]}";
}

std::string statusLine(int raw, int translated) {
    return "[WFMShare] CShareGetEventJson: Status(" + std::to_string(raw) + ") m_nStatus(" +
           std::to_string(translated) + ")";
}

}  // namespace

// ---- The request ----

TEST(WebFileManGetMyEventWire, AsksTheFileManager) {
    expectOnEveryRoute(
        "func=nubo_get_my_event&sid=sid123&event_type=4&lower=0&upper=50",
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
            EventCall call;
            call.run(session, port);
        },
        shareRoutes(true));
}

TEST(WebFileManGetMyEventWire, ASessionOfTheSyncServiceIsRefused) {
    struct SyncCall : EventCall {
        explicit SyncCall(const RawServer& at) : EventCall(at) {
            own = makeSession();
            session = own.get();
        }
    };
    expectRefusedAtTheService<SyncCall>("WebFileManGetMyEvent", false);
}

TEST(WebFileManGetMyEventWire, NumbersTravelAsSignedOnes) {
    RawServer server({Reply::json(listOf({}))});
    EventCall call(server);
    call.eventType = 0xFFFFFFFF;
    call.lower = 0x80000000;
    call.upper = 0x7FFFFFFF;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(server.onlyRequest().queryText(),
              "func=nubo_get_my_event&sid=sid123&event_type=-1&lower=-2147483648&upper=2147483647");
}

// ---- The reply ----

TEST(WebFileManGetMyEventWire, TheEventsAreCopiedIntoTheCallersRecords) {
    RawServer server({Reply::json(R"({"status":1,"total":70,"event":[
        {"event_id":7,"target_name":"bob","event_type":4,"event_status":2,"share_id":"s-1","file":"/home/\u6587",
         "date":"2026-01-02","time":"03:04"},
        {"event_id":8},
        {"event_id":"9","file":"/b"}]})")});
    EventCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.total, 70u);
    EXPECT_EQ(call.count, 2u);
    EXPECT_EQ(call.events.texts(),
              (Lines{"id=7 target=bob type=4 status=2 share=s-1 file=/home/\xE6\x96\x87 date=2026-01-02 "
                     "time=03:04",
                     "id=9 file=/b", "untouched"}));
    log.expectNoLines();
}

TEST(WebFileManGetMyEventWire, AListThatIsTooSmallIs7AndFillsNothing) {
    const struct {
        uint32_t capacity;
        std::vector<std::string> files;
        bool fits;
    } rows[] = {{3, {"a", "b", "c"}, true},
                {0, {}, true},
                {3, {"a", "b", "c", "d"}, false},
                {0, {"a"}, false},
                // Those without a file count, too.
                {2, {"a", "", "b"}, false},
                {3, {"a", "", "b"}, true},
                {3, std::vector<std::string>(50, "a"), false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.files.size()) + " events for " + std::to_string(row.capacity));
        RawServer server({Reply::json(listOf(row.files))});
        EventCall call(server);
        call.count = row.capacity;
        LogCapture log;
        EXPECT_EQ(call.run(), row.fits ? 0u : 7u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.total, 50u);
        if (row.fits) {
            log.expectNoLines();
            continue;
        }
        EXPECT_EQ(call.count, 0u);
        EXPECT_TRUE(call.events.isUntouched());
        log.expectLines({kName + ": WFM_PARSE_XML_BUFFER_NOT_ENOUGH",
                         summaryLine("WebFileManGetMyEvent", server.port(), 7, kSharePrefix)});
    }
}

TEST(WebFileManGetMyEventWire, AnEventWithoutAFileLeavesNoGap) {
    RawServer server({Reply::json(listOf({"", "a", "", "b"}))});
    EventCall call(server);
    CallersList<_WFM_TORVI_EVENT_INFORMATION> four(4);
    call.list = four.data();
    call.count = 4;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.count, 2u);
    EXPECT_EQ(four.texts(), (Lines{"id=9 file=a", "id=9 file=b", "untouched", "untouched"}));
}

TEST(WebFileManGetMyEventWire, ANullInTheListIsNotSteppedOver) {
    for (const size_t at : {size_t{0}, size_t{1}, size_t{2}}) {
        RawServer server({Reply::json(listOf({"a", "b", "c"}))});
        EventCall call(server);
        call.list[at] = nullptr;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.count, at);
        Lines expected(3, "untouched");
        for (size_t i = 0; i < at; ++i) expected[i] = std::string("id=9 file=") + "abc"[i];
        EXPECT_EQ(call.events.texts(), expected);
    }
}

TEST(WebFileManGetMyEventWire, TextsAreCutAndAnIdThatDoesNotFitIsLeftOut) {
    const auto recordOf = [](const std::string& key, size_t length) {
        RawServer server({Reply::json(R"({"status":1,"total":1,"event":[{"file":"f",")" + key + R"(":")" +
                                      std::string(length, 'x') + "\"}]}")});
        EventCall call(server);
        EXPECT_EQ(call.run(), 0u);
        return call.events.texts()[0];
    };
    const auto texts = [](size_t length) { return std::string(length, 'x'); };
    EXPECT_EQ(recordOf("target_name", 31), "target=" + texts(31) + " file=f");
    EXPECT_EQ(recordOf("target_name", 32), "target=" + texts(31) + " file=f");
    EXPECT_EQ(recordOf("target_name", 2048), "file=f");
    EXPECT_EQ(recordOf("share_id", 259), "share=" + texts(259) + " file=f");
    EXPECT_EQ(recordOf("share_id", 260), "file=f");
    EXPECT_EQ(recordOf("date", 260), "file=f date=" + texts(259));
    EXPECT_EQ(recordOf("time", 260), "file=f time=" + texts(259));
    EXPECT_EQ(recordOf("date", 2048), "file=f");
    EXPECT_EQ(recordOf("time", 2048), "file=f");
}

TEST(WebFileManGetMyEventWire, AnEventWhoseFileIsTooLongIsDroppedButCounts) {
    const std::string longest(2047, 'x');
    for (const uint32_t capacity : {1u, 2u}) {
        RawServer server({Reply::json(listOf({longest + "x", longest}))});
        EventCall call(server);
        call.count = capacity;
        EXPECT_EQ(call.run(), capacity == 2 ? 0u : 7u);
        EXPECT_EQ(call.count, capacity == 2 ? 1u : 0u);
        EXPECT_EQ(call.events.texts()[0], capacity == 2 ? "id=9 file=" + longest : "untouched");
    }
}

TEST(WebFileManGetMyEventWire, AFailedCallLeavesBothNumbersAt0) {
    RawServer server({Reply::status(503)});
    EventCall call(server);
    EXPECT_EQ(call.run(), 12u);
    EXPECT_TRUE(call.isCleared());
}

TEST(WebFileManGetMyEventWire, TheTranslatedStatusIsTheResultAndFillsNothing) {
    expectReplies<EventCall>(
        {
            {listOf({"a"}, R"("status":4,"total":50)"), 0, -3, {statusLine(4, -3)}},
            {listOf({"a"}, R"("status":-3,"total":50)"), 0, -4, {statusLine(-3, -4)}},
            {listOf({"a"}, R"("status":0,"total":50)"), 0, -2, {statusLine(0, -2)}},
            {listOf({"a"}, R"("status":"34","total":50)"), 0, -1, {statusLine(34, -1)}},
            {"[]", 0, -1, {}},
        },
        [](const EventCall& call) { EXPECT_TRUE(call.isCleared()); });
}

TEST(WebFileManGetMyEventWire, AListMayBeEmpty) {
    expectReplies<EventCall>(
        {
            {"{}", 0, 0, {}},
            {listOf({"a"}, R"("status":1)"), 0, 0, {}},
            {listOf({"a"}, R"("total":0)"), 0, 0, {}},
            {listOf({"a"}, R"("total":-1)"), 0, 0, {}},
        },
        [](const EventCall& call) { EXPECT_TRUE(call.isCleared()); });
    RawServer server({Reply::json(R"({"status":1,"total":7,"event":null})")});
    EventCall call(server);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.total, 7u);
    EXPECT_EQ(call.count, 0u);
}

TEST(WebFileManGetMyEventWire, WhatCannotBeReadIs14AndFillsNothing) {
    const Lines lines = {kName + ": WFM_PARSE_XML_FAIL", kName + "(127.0.0.1:{port}) failed dwStatus(14)"};
    expectReplies<EventCall>(
        {
            {"sorry", 14, -1, lines},
            {R"({"status":1,"total":1,"event":"none"})", 14, -1, lines},
            {R"({"status":1,"total":1,"event":[{"file":[]}]})", 14, -1, lines},
            {R"({"status":1,"total":99999999999})", 14, -1, lines},
        },
        [](const EventCall& call) { EXPECT_TRUE(call.isCleared()); });
}

TEST(WebFileManGetMyEventWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    useFileManager(*session);
    LogCapture log;
    expectRefusals<EventCall>(
        log, session.get(), "WebFileManGetMyEvent",
        {[](EventCall& call) { call.totalOut = nullptr; }, [](EventCall& call) { call.countInOut = nullptr; },
         [](EventCall& call) { call.list = nullptr; }, [](EventCall& call) { call.resultWord = nullptr; }},
        kSharePrefix);
}
