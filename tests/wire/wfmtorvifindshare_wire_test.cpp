// WFMTorviFindShare: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "lists.h"
#include "refusals.h"
#include "replies.h"
#include "routes.h"
#include "sessioncall.h"
#include "support/teamrecords.h"

using namespace wire;

namespace {

using Lines = std::vector<std::string>;

const std::string kName = "[WFMShare] WFMTorviFindShare";

struct FindCall : SessionCall<FindCall> {
    const wchar_t* file = L"/home/a";
    uint32_t lower = 0;
    uint32_t upper = 50;
    ListOf<_WFM_TORVI_SHARE_INFORMATION> found;
    uint32_t* countOut = &found.count;
    _WFM_TORVI_SHARE_INFORMATION*** listOut = &found.list;

    using SessionCall::SessionCall;
    uint32_t call() {
        return WFMTorviFindShare(session, kServer, port, file, lower, upper, resultWord, countOut, listOut);
    }
    bool isUntouched() const { return result == 0xABCD && found.isUntouched(); }
};

/// A share of that folder, with these keys in place of the usual ones.
std::string share(const std::string& file,
                  const std::string& keys = R"("event_type":4,"event_status":1,"share_id":"s")") {
    return R"({"file":")" + file + "\"," + keys + "}";
}

std::string listOf(const std::string& shares, const std::string& keys = R"("status":1,"total":50)") {
    return "{" + keys + R"(,"event":[)" + shares + "]}";
}

/// The shares that the call finds below a folder.
Lines found(const wchar_t* below, const std::string& shares) {
    RawServer server({Reply::json(listOf(shares))});
    FindCall call(server);
    call.file = below;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    return call.found.take();
}

}  // namespace

TEST(WFMTorviFindShareWire, AsksTheSessionsServiceAndNamesNoNode) {
    expectOnEveryRoute(
        "func=nubo_find_share&sid=sid123&file=%2Fhome%2Fa%20b%2F%E6%96%87&lower=-1&upper=50",
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
            FindCall call;
            call.file = L"/home/a b/\x6587";
            call.lower = 0xFFFFFFFF;
            call.run(session, port);
        },
        routesWithoutNode());
}

TEST(WFMTorviFindShareWire, TheSharesAreHandedOut) {
    RawServer server({Reply::json(
        listOf(share("/home/a/b", R"("event_type":4,"event_status":2,"share_id":"s-1")") + "," +
               share("/home/a/\\u6587", R"("event_type":"4","event_status":"-1","share_id":"s-2")")))});
    FindCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.found.count, 2u);
    EXPECT_EQ(call.found.take(), (Lines{"type=4 status=2 file=/home/a/b share=s-1",
                                        "type=4 status=-1 file=/home/a/\xE6\x96\x87 share=s-2"}));
    log.expectNoLines();
}

TEST(WFMTorviFindShareWire, OnlyWhatLiesBelowCountsWithoutRegardToCase) {
    const std::string one = "type=4 status=1 file=";
    EXPECT_EQ(found(L"/a/b", share("/A/B/c")), Lines{one + "/A/B/c share=s"});
    EXPECT_EQ(found(L"/a/b", share("/a/bc")), Lines{"untouched"});
    EXPECT_EQ(found(L"/a/b", share("/a/b")), Lines{"untouched"});
    EXPECT_EQ(found(L"/a/b", share("/x/a/b/c")), Lines{"untouched"});
    EXPECT_EQ(found(L"/a/b/", share("/a/b/c") + "," + share("/a/bc")), Lines{one + "/a/b/c share=s"});
    EXPECT_EQ(found(L"/\xC4", share("/\xC3\xA4/c")), Lines{one + "/\xC3\xA4/c share=s"});
}

TEST(WFMTorviFindShareWire, ARecordLacksNothing) {
    for (const char* keys :
         {R"("event_status":1,"share_id":"s")", R"("event_type":2,"event_status":1,"share_id":"s")",
          R"("event_type":null,"event_status":1,"share_id":"s")", R"("event_type":4,"share_id":"s")",
          R"("event_type":4,"event_status":null,"share_id":"s")", R"("event_type":4,"event_status":1)",
          R"("event_type":4,"event_status":1,"share_id":"")",
          R"("event_type":4,"event_status":1,"share_id":"--------")"})
        EXPECT_EQ(found(L"/home", share("/home/a", keys)), Lines{"untouched"}) << keys;
    EXPECT_EQ(found(L"/home", R"({"event_type":4,"event_status":1,"share_id":"s"},5,null)"),
              Lines{"untouched"});
}

TEST(WFMTorviFindShareWire, AnIdThatDoesNotFitIsNone) {
    const auto with = [](size_t length) {
        return found(L"/home", share("/home/a", R"("event_type":4,"event_status":1,"share_id":")" +
                                                    std::string(length, 's') + "\""));
    };
    EXPECT_EQ(with(259), Lines{"type=4 status=1 file=/home/a share=" + std::string(259, 's')});
    EXPECT_EQ(with(260), Lines{"untouched"});
}

TEST(WFMTorviFindShareWire, WithoutSharesCountAndListStayAsTheyAre) {
    const std::string one = share("/home/a/b");
    expectReplies<FindCall>(
        {
            {"{}", 0, 0, {}},
            {listOf(one, R"("status":1)"), 0, 0, {}},
            {listOf(one, R"("status":1,"total":0)"), 0, 0, {}},
            {R"({"status":1,"total":1,"event":null})", 0, 0, {}},
            {listOf("", R"("total":1)"), 0, 0, {}},
            {listOf(one, R"("status":4,"total":1)"), 0, -3, {kName + ": get error code(-3)"}},
            {listOf(one, R"("status":0,"total":1)"), 0, -2, {kName + ": get error code(-2)"}},
            {listOf(one, R"("status":34,"total":1)"), 0, -1, {kName + ": get error code(-1)"}},
        },
        [](const FindCall& call) { EXPECT_TRUE(call.found.isUntouched()); });
}

TEST(WFMTorviFindShareWire, AMissingStatusIsASuccess) {
    RawServer server({Reply::json(listOf(share("/home/a/b"), R"("total":-1)"))});
    FindCall call(server);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.found.take(), Lines{"type=4 status=1 file=/home/a/b share=s"});
}

TEST(WFMTorviFindShareWire, WhatCannotBeReadIs14AndNamesThePath) {
    const Lines lines = {kName + ": WFM_PARSE_XML_FAIL(path=/home/a)",
                         kName + "(127.0.0.1:{port}) failed dwStatus(14)"};
    expectReplies<FindCall>(
        {
            {"sorry", 14, -1, lines},
            {"[]", 14, -1, lines},
            {R"({"status":1,"total":1,"event":"none"})", 14, -1, lines},
            {listOf(share("/home/a/b") + R"(,{"file":[]})"), 14, -1, lines},
        },
        [](const FindCall& call) { EXPECT_TRUE(call.found.isUntouched()); });
}

TEST(WFMTorviFindShareWire, AFailedCallLeavesCountAndListAsTheyAre) {
    RawServer server({Reply::status(503)});
    FindCall call(server);
    EXPECT_EQ(call.run(), 12u);
    EXPECT_TRUE(call.found.isUntouched());
}

TEST(WFMTorviFindShareWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<FindCall>(
        log, session.get(), "WFMTorviFindShare",
        {[](FindCall& call) { call.file = nullptr; }, [](FindCall& call) { call.file = L""; },
         [](FindCall& call) { call.resultWord = nullptr; }, [](FindCall& call) { call.countOut = nullptr; },
         [](FindCall& call) { call.listOut = nullptr; }},
        kSharePrefix);
}
