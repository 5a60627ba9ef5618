#include "config/GetConfigNotifyItemInfoJson.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parsing.h"
#include "support/logcapture.h"

namespace {

const std::string kName = "[WFMShare] CGetConfigNotifyItemInfoJson::Parser ";

std::string listOf(const std::string& events) {
    return R"({"count":1,"event":[)" + events + "]}";
}

std::string event(const std::string& id, const std::string& user, const std::string& deviceUID) {
    return R"({"event_id":")" + id + R"(","event_user":")" + user + R"(","event_duid":")" + deviceUID +
           R"("})";
}

/// The ids of the events that are kept.
std::vector<int32_t> idsOf(const std::string& text, const std::wstring& user = {},
                           const std::wstring& deviceUID = {}) {
    CGetConfigNotifyItemInfoJson reply;
    reply.SetFilter(user, deviceUID);
    EXPECT_EQ(parse(reply, text), 1) << text.substr(0, 200);
    std::vector<int32_t> ids;
    for (const _GET_CONFIG_NOTIFY_ITEM_INFO& element : reply.events) ids.push_back(element.eventID);
    return ids;
}

using Ids = std::vector<int32_t>;

}  // namespace

TEST(CGetConfigNotifyItemInfoJson, ReadsEachFieldFromItsKey) {
    CGetConfigNotifyItemInfoJson reply;
    EXPECT_EQ(parse(reply, R"({"count":"9","event":[{"event_id":"7","event_user":"ann","event_duid":"d-1",
        "event_action":"set","event_type":"item","event_status":"new","event_time":"12:00",
        "event_modifier":"bob","event_value":"v\u6587"}]})"),
              1);
    EXPECT_EQ(reply.GetStatus(), 0);
    EXPECT_EQ(reply.count, 9);
    ASSERT_EQ(reply.events.size(), 1u);
    const _GET_CONFIG_NOTIFY_ITEM_INFO& read = reply.events[0];
    EXPECT_EQ(read.eventID, 7);
    EXPECT_EQ(read.user, L"ann");
    EXPECT_EQ(read.deviceUID, L"d-1");
    EXPECT_EQ(read.action, L"set");
    EXPECT_EQ(read.type, L"item");
    EXPECT_EQ(read.status, L"new");
    EXPECT_EQ(read.time, L"12:00");
    EXPECT_EQ(read.modifier, L"bob");
    EXPECT_EQ(read.value, L"v\x6587");
}

TEST(CGetConfigNotifyItemInfoJson, AnIdIsANumberInAText) {
    EXPECT_EQ(idsOf(listOf(R"({"event_id":"-5"},{"event_id":8},{"event_id":" 9x"},{"event_id":"2147483647"},
                              {"event_id":"-2147483648"},{"event_id":1.5})")),
              (Ids{-5, 8, 9, 2147483647, INT32_MIN, 1}));
}

TEST(CGetConfigNotifyItemInfoJson, WithoutANumberTheReplyIsNotUnderstood) {
    for (const char* id : {"\"\"", "\"x\"", "\"-\"", "null", "true", "[]", "{}", "\"2147483648\"",
                           "99999999999", "\"99999999999999999999\""}) {
        CGetConfigNotifyItemInfoJson reply;
        EXPECT_EQ(parse(reply, listOf(R"({"event_id":)" + std::string(id) + "}")), -1) << id;
    }
    CGetConfigNotifyItemInfoJson reply;
    EXPECT_EQ(parse(reply, listOf("{}")), -1);
    // Not even that of an event which is dropped.
    reply.SetFilter(L"ann", {});
    EXPECT_EQ(parse(reply, listOf(event("x", "bob", "d-1"))), -1);
}

TEST(CGetConfigNotifyItemInfoJson, EventsOfOthersAreLoggedAndDropped) {
    LogCapture log;
    EXPECT_EQ(idsOf(listOf(event("1", "ann", "d-1") + "," + event("2", "bob", "d-1") + "," +
                           event("3", "ann", "d-2") + "," + event("4", "Ann", "d-1") + "," +
                           event("5", "bob", "d-2") + R"(,{"event_id":"6"})"),
                    L"ann", L"d-1"),
              Ids{1});
    log.expectLines({kName + "username not match(bob)(ann)", kName + "deviceUID not match(d-2)(d-1)",
                     kName + "username not match(Ann)(ann)", kName + "username not match(bob)(ann)",
                     kName + "username not match()(ann)"});
}

TEST(CGetConfigNotifyItemInfoJson, WhatWasNotAskedForIsNotCompared) {
    const std::string events = listOf(event("1", "ann", "d-1") + "," + event("2", "bob", "d-2"));
    {
        LogCapture log;
        EXPECT_EQ(idsOf(events), (Ids{1, 2}));
        log.expectNoLines();
    }
    {
        LogCapture log;
        EXPECT_EQ(idsOf(events, L"bob"), Ids{2});
        log.expectLines({kName + "username not match(ann)(bob)"});
    }
    LogCapture log;
    EXPECT_EQ(idsOf(events, {}, L"d-1"), Ids{1});
    log.expectLines({kName + "deviceUID not match(d-2)(d-1)"});
}

TEST(CGetConfigNotifyItemInfoJson, TextsOf2048CharactersAreNone) {
    for (const size_t length : {size_t{2047}, size_t{2048}}) {
        CGetConfigNotifyItemInfoJson reply;
        EXPECT_EQ(
            parse(reply, listOf(R"({"event_id":"1","event_value":")" + std::string(length, 'x') + R"("})")),
            1);
        ASSERT_EQ(reply.events.size(), 1u);
        EXPECT_EQ(reply.events[0].value, std::wstring(length < 2048 ? length : 0, L'x'));
    }
}

TEST(CGetConfigNotifyItemInfoJson, BrokenUtf8IsReplaced) {
    CGetConfigNotifyItemInfoJson reply;
    EXPECT_EQ(parse(reply, listOf(event("1", "a\xFF", "\xC3"))), 1);
    ASSERT_EQ(reply.events.size(), 1u);
    EXPECT_EQ(reply.events[0].user, L"a\xFFFD");
    EXPECT_EQ(reply.events[0].deviceUID, L"\xFFFD");
}

TEST(CGetConfigNotifyItemInfoJson, ThereMayBeNoEvents) {
    for (const char* text :
         {"{}", R"({"event":null})", R"({"event":[]})", R"({"count":-1,"event":[null,5,[],"x"]})"})
        EXPECT_EQ(idsOf(text), Ids{}) << text;
    CGetConfigNotifyItemInfoJson reply;
    EXPECT_EQ(parse(reply, "{}"), 1);
    EXPECT_EQ(reply.count, 0);
}

TEST(CGetConfigNotifyItemInfoJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CGetConfigNotifyItemInfoJson>(
        {R"({"count":99999999999})", R"({"event":{}})", R"({"event":"x"})",
         listOf(R"({"event_id":"1","event_user":[]})"), listOf(R"({"event_id":"1","event_duid":{}})"),
         listOf(R"({"event_id":"1","event_action":[]})"), listOf(R"({"event_id":"1","event_type":[]})"),
         listOf(R"({"event_id":"1","event_status":[]})"), listOf(R"({"event_id":"1","event_time":[]})"),
         listOf(R"({"event_id":"1","event_modifier":[]})"), listOf(R"({"event_id":"1","event_value":[]})")});
}
