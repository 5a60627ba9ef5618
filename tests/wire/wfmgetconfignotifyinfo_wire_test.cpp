// WFMGetConfigNotifyInfo: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "configlists.h"
#include "configreplies.h"
#include "refusals.h"
#include "routes.h"
#include "sessioncall.h"

using namespace wire;

namespace {

using Lines = std::vector<std::string>;

const char* const kFunction = "WFMGetConfigNotifyInfo";
const std::string kParser = "[WFMShare] CGetConfigNotifyItemInfoJson::Parser ";

struct NotifyCall : SessionCall<NotifyCall> {
    const wchar_t* user = nullptr;
    const wchar_t* deviceUID = nullptr;
    uint32_t lower = 0;
    uint32_t upper = 50;
    FilledList<WFM_TORVI_CONFIG_NOTIFY_LIST> list;
    WFM_TORVI_CONFIG_NOTIFY_LIST* out = &list.record;

    using SessionCall::SessionCall;
    uint32_t call() {
        return WFMGetConfigNotifyInfo(session, kServer, port, user, deviceUID, lower, upper, nullptr,
                                      resultWord, out);
    }
    bool isUntouched() const { return result == 0xABCD && list.isUntouched(); }
};

std::string queryOf(void (*change)(NotifyCall&)) {
    RawServer server({Reply::json("{}")});
    NotifyCall call(server);
    change(call);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    return server.onlyRequest().queryText();
}

const char* const kTwo = R"({"count":2,"event":[{"event_id":"1","event_user":"ann","event_duid":"d-1"},
                                                {"event_id":"2","event_user":"bob","event_duid":"d-2"}]})";

}  // namespace

// ---- The request ----

TEST(WFMGetConfigNotifyInfoWire, AsksTheSessionsServiceAndNamesNoNode) {
    expectOnEveryRoute(
        "func=nubo_query_notify&sid=sid123&lower=0&upper=50",
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
            NotifyCall call;
            call.run(session, port);
        },
        routesWithoutNode());
}

TEST(WFMGetConfigNotifyInfoWire, UserAndDeviceAreSentAsGivenWhereTheyAreGiven) {
    const std::string usual = "func=nubo_query_notify&sid=sid123&lower=0&upper=50";
    EXPECT_EQ(queryOf([](NotifyCall& call) { call.user = call.deviceUID = L""; }), usual);
    EXPECT_EQ(queryOf([](NotifyCall& call) { call.user = L"a/b%20\x6587"; }),
              usual + "&user=a/b%20%E6%96%87");
    EXPECT_EQ(queryOf([](NotifyCall& call) { call.deviceUID = L"d:1%2F"; }), usual + "&device_uid=d:1%2F");
    EXPECT_EQ(queryOf([](NotifyCall& call) {
                  call.user = L"ann";
                  call.deviceUID = L"d-1";
              }),
              usual + "&user=ann&device_uid=d-1");
}

TEST(WFMGetConfigNotifyInfoWire, ThePageIsPassedOn) {
    EXPECT_EQ(queryOf([](NotifyCall& call) { call.lower = call.upper = 7; }),
              "func=nubo_query_notify&sid=sid123&lower=7&upper=7");
    EXPECT_EQ(queryOf([](NotifyCall& call) {
                  call.lower = 0x7FFFFFFF;
                  call.upper = 0xFFFFFFFF;
              }),
              "func=nubo_query_notify&sid=sid123&lower=2147483647&upper=-1");
}

// ---- The reply ----

TEST(WFMGetConfigNotifyInfoWire, TheChangesAreHandedOut) {
    RawServer server({Reply::json(R"({"count":2,"event":[
        {"event_id":"7","event_user":"ann","event_duid":"d-1","event_action":"set","event_type":"item",
         "event_status":"new","event_time":"12:00","event_modifier":"bob","event_value":"v\u6587"},
        {"event_id":"-8"}]})")});
    NotifyCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.list.texts(),
              (Lines{"id=7 user=ann uid=d-1 action=set type=item status=new time=12:00 modifier=bob "
                     "value=v\xE6\x96\x87",
                     "id=-8"}));
    log.expectNoLines();
}

TEST(WFMGetConfigNotifyInfoWire, EachTextIsCut) {
    const struct {
        const char* key;
        const char* word;
    } rows[] = {{"event_user", "user="},   {"event_duid", "uid="},         {"event_action", "action="},
                {"event_type", "type="},   {"event_status", "status="},    {"event_time", "time="},
                {"event_value", "value="}, {"event_modifier", "modifier="}};
    for (const auto& row : rows)
        for (const size_t length : {size_t{259}, size_t{260}, size_t{2047}}) {
            RawServer server({Reply::json(R"({"event":[{"event_id":"1",")" + std::string(row.key) + R"(":")" +
                                          std::string(length, 'x') + R"("}]})")});
            NotifyCall call(server);
            EXPECT_EQ(call.run(), 0u);
            EXPECT_EQ(call.list.texts(), Lines{"id=1 " + std::string(row.word) + std::string(259, 'x')});
        }
}

TEST(WFMGetConfigNotifyInfoWire, WhatIsOfAnotherUserOrDeviceIsLoggedAndDropped) {
    const struct {
        const wchar_t* user;
        const wchar_t* deviceUID;
        Lines ids;
        Lines lines;
    } rows[] = {
        {nullptr, nullptr, {"id=1 user=ann uid=d-1", "id=2 user=bob uid=d-2"}, {}},
        {L"", L"", {"id=1 user=ann uid=d-1", "id=2 user=bob uid=d-2"}, {}},
        {L"ann", L"d-1", {"id=1 user=ann uid=d-1"}, {kParser + "username not match(bob)(ann)"}},
        {nullptr, L"d-2", {"id=2 user=bob uid=d-2"}, {kParser + "deviceUID not match(d-1)(d-2)"}},
        {L"ann",
         L"d-2",
         {},
         {kParser + "deviceUID not match(d-1)(d-2)", kParser + "username not match(bob)(ann)"}},
    };
    for (const auto& row : rows) {
        RawServer server({Reply::json(kTwo)});
        NotifyCall call(server);
        call.user = row.user;
        call.deviceUID = row.deviceUID;
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.list.texts(), row.ids);
        EXPECT_EQ(call.list.isEmpty(), row.ids.empty());
        EXPECT_EQ(log.texts(), row.lines);
    }
}

TEST(WFMGetConfigNotifyInfoWire, ThereMayBeNoChanges) {
    expectReplies<NotifyCall>(
        {{"{}", 0, 0, {}}, {R"({"count":3,"event":[]})", 0, 0, {}}, {R"({"event":null})", 0, 0, {}}},
        [](const NotifyCall& call) { EXPECT_TRUE(call.list.isEmpty()); });
}

TEST(WFMGetConfigNotifyInfoWire, OnlyAReplyWithoutAStatusIsASuccess) {
    expectConfigStatuses<NotifyCall>(kFunction, errorStatusLine(kFunction),
                                     [](const NotifyCall& call) { EXPECT_TRUE(call.list.isEmpty()); });
}

TEST(WFMGetConfigNotifyInfoWire, AnIdThatIsNoNumberIs14) {
    const std::string name = std::string(kSharePrefix) + kFunction;
    const Lines lines = {name + ": WFM_PARSE_XML_FAIL", name + "(127.0.0.1:{port}) failed dwStatus(14)"};
    expectReplies<NotifyCall>({{R"({"event":[{"event_id":"1"},{"event_id":"x"}]})", 14, -1, lines},
                               {R"({"event":[{"event_user":"ann"}]})", 14, -1, lines},
                               {R"({"event":[{"event_id":"99999999999"}]})", 14, -1, lines}},
                              [](const NotifyCall& call) { EXPECT_TRUE(call.list.isEmpty()); });
}

TEST(WFMGetConfigNotifyInfoWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<NotifyCall>(
        log, session.get(), kFunction,
        {[](NotifyCall& call) { call.lower = call.upper + 1; },
         [](NotifyCall& call) { call.lower = 0xFFFFFFFF; },
         [](NotifyCall& call) { call.resultWord = nullptr; }, [](NotifyCall& call) { call.out = nullptr; }},
        kSharePrefix);
}
