#include "sharing/ShareGetEventJson.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parsing.h"
#include "support/logcapture.h"
#include "support/teamrecords.h"

namespace {

using Lines = std::vector<std::string>;

std::string listOf(const std::string& events, const std::string& keys = R"("status":1,"total":1)") {
    return "{" + keys + R"(,"event":[)" + events + "]}";
}

Lines eventsOf(const std::string& text) {
    CShareGetEventJson reply;
    EXPECT_EQ(parse(reply, text), 1) << text.substr(0, 200);
    return describeAll(reply.events);
}

}  // namespace

TEST(CShareGetEventJson, BeginsWithNothingLearnt) {
    const CShareGetEventJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.total, 0u);
    EXPECT_TRUE(reply.events.empty());
}

TEST(CShareGetEventJson, ReadsEachFieldFromItsKey) {
    EXPECT_EQ(eventsOf(listOf(
                  R"({"event_id":7,"target_name":"bob","event_type":4,"event_status":2,"share_id":"s",
                      "file":"/\u6587","date":"d","time":"t"},
                     {"event_id":"8","event_type":"2"},{},5)")),
              (Lines{"id=7 target=bob type=4 status=2 share=s file=/\xE6\x96\x87 date=d time=t",
                     "id=8 type=2", ""}));
}

TEST(CShareGetEventJson, WhatHasNoRoomIsCountedAlone) {
    CShareGetEventJson reply;
    reply.room = 2;
    EXPECT_EQ(parse(reply, listOf(R"({"event_id":1},{},{"event_id":3},{},{})")), 1);
    EXPECT_EQ(reply.number, 5u);
    EXPECT_EQ(describeAll(reply.events), (Lines{"id=1", ""}));
}

TEST(CShareGetEventJson, ARefusalIsLoggedAndTheParseGoesOn) {
    LogCapture log;
    CShareGetEventJson reply;
    EXPECT_EQ(parse(reply, listOf(R"({"event_id":7})", R"("status":4,"total":1)")), 1);
    EXPECT_EQ(reply.GetStatus(), -3);
    EXPECT_EQ(reply.total, 1u);
    EXPECT_EQ(describeAll(reply.events), Lines{"id=7"});
    log.expectLines({"[WFMShare] CShareGetEventJson: Status(4) m_nStatus(-3)"});
}

TEST(CShareGetEventJson, AMissingStatusIsASuccess) {
    LogCapture log;
    for (const char* text : {"{}", R"({"status":null})", R"({"status":1})"}) {
        CShareGetEventJson reply;
        EXPECT_EQ(parse(reply, text), 1);
        EXPECT_EQ(reply.GetStatus(), 0) << text;
    }
    log.expectNoLines();
}

TEST(CShareGetEventJson, WithoutATotalThereIsNoEvent) {
    for (const char* keys : {R"("status":1)", R"("total":0)", R"("total":-1)", R"("total":"0")"})
        EXPECT_EQ(eventsOf(listOf(R"({"event_id":7})", keys)), Lines{}) << keys;
    EXPECT_EQ(eventsOf(R"({"total":3})"), Lines{});
    EXPECT_EQ(eventsOf(R"({"total":3,"event":null})"), Lines{});
}

TEST(CShareGetEventJson, WhatIsNoObjectIsUnderstoodWithNothingRead) {
    LogCapture log;
    for (const char* text : {"[]", "5", "null", "\"status\""}) {
        CShareGetEventJson reply;
        EXPECT_EQ(parse(reply, text), 1);
        EXPECT_EQ(reply.GetStatus(), -1) << text;
    }
    log.expectNoLines();
}

TEST(CShareGetEventJson, NothingThatTheJsonLibraryRaisesGetsOut) {
    for (const std::string& text :
         {std::string(), std::string("sorry"), std::string(R"({"status":1)"), std::string(5000, '{'),
          std::string(R"({"status":99999999999})"), std::string(R"({"total":1,"event":"x"})"),
          listOf(R"({"file":[]})"), listOf(R"({"event_id":99999999999})")}) {
        CShareGetEventJson reply;
        EXPECT_EQ(parse(reply, text), -1) << text.substr(0, 100);
    }
    CShareGetEventJson reply;
    EXPECT_EQ(reply.Parser(nullptr), -1);
}
