// WFMGetShareLinkList: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "links.h"
#include "recordlist.h"

using namespace wire;

namespace {

using Lines = std::vector<std::string>;

struct LinkListCall : SessionCall<LinkListCall> {
    int32_t limit = 20;
    int32_t start = 7;
    int32_t* startInOut = &start;
    uint32_t count = 3;
    uint32_t* countInOut = &count;
    CallersList<_WFM_SHARE_LINK_INFO> links;
    _WFM_SHARE_LINK_INFO** list = links.data();

    using SessionCall::SessionCall;
    uint32_t call() {
        return WFMGetShareLinkList(session, kServer, port, slaveID, limit, nullptr, startInOut, countInOut,
                                   list);
    }
    bool isUntouched() const { return start == 7 && count == 3 && links.isUntouched(); }
};

struct NegativeStartCall : LinkListCall {
    NegativeStartCall() { start = -1; }
    bool isUntouched() const { return start == -1 && count == 3 && links.isUntouched(); }
};

/// A reply with that many links.
std::string replyOf(int count, const std::string& keys = R"("status":1,"total":40)") {
    std::string links;
    for (int i = 1; i <= count; ++i)
        links += std::string(i > 1 ? "," : "") + R"({"filename":"f)" + std::to_string(i) + "\"}";
    return "{" + keys + R"(,"datas":[)" + links + "]}";
}

}  // namespace

TEST(WFMGetShareLinkListWire, AsksTheWebFileManagerByNameOnEitherService) {
    expectOnEveryRoute(
        "func=get_share_list&sid=sid123&dir=ASC&limit=20&sort=filename&start=7",
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
            LinkListCall call;
            call.slaveID = slaveID;
            call.run(session, port);
        },
        routesToFileManager());
}

TEST(WFMGetShareLinkListWire, LimitAndStartTravelAsGiven) {
    RawServer server({Reply::json("{}")});
    LinkListCall call(server);
    call.limit = 2147483647;
    call.start = 2147483646;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(server.onlyRequest().queryText(),
              "func=get_share_list&sid=sid123&dir=ASC&limit=2147483647&sort=filename&start=2147483646");

    RawServer least({Reply::json("{}")});
    LinkListCall first(least);
    first.limit = 1;
    first.start = 0;
    EXPECT_EQ(first.run(), 0u);
    EXPECT_EQ(least.onlyRequest().queryText(),
              "func=get_share_list&sid=sid123&dir=ASC&limit=1&sort=filename&start=0");
}

TEST(WFMGetShareLinkListWire, TheRecordsAreFilledAndStartBecomesTheTotal) {
    RawServer server({Reply::json(R"({"status":1,"max_share_file":9,"total":40,"datas":[
        {"ssid":"s1","filename":"書.txt","download_link":"http://nas/share.cgi?ssid=s1","creator":"ann",
         "link_name":"for bob","isfolder":0,"multiple":1},
        {"ssid":"s2","filename":"d","isfolder":1}]})")});
    LinkListCall call(server);
    call.start = 20;
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.start, 40);
    EXPECT_EQ(call.count, 2u);
    EXPECT_EQ(
        call.links.texts(),
        (Lines{"ssid=s1 file=書.txt link=http://nas/share.cgi?ssid=s1 creator=ann name=for bob multiple",
               "ssid=s2 file=d folder", "untouched"}));
    log.expectNoLines();
}

TEST(WFMGetShareLinkListWire, TheReservedTextStaysTheCallers) {
    RawServer server({Reply::json(replyOf(2))});
    LinkListCall call(server);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.links.texts(), (Lines{"file=f1", "file=f2", "untouched"}));
    const Garbage<_WFM_SHARE_LINK_INFO> given;
    for (const auto& link : call.links.records)
        EXPECT_EQ(
            std::memcmp(link.record.szReserved, given.record.szReserved, sizeof given.record.szReserved), 0);
}

TEST(WFMGetShareLinkListWire, ALinkWithoutAFileNameIsLeftOut) {
    RawServer server(
        {Reply::json(R"({"total":3,"datas":[{"ssid":"s1"},{"filename":"a"},{"filename":""}]})")});
    LinkListCall call(server);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.start, 3);
    EXPECT_EQ(call.count, 1u);
    EXPECT_EQ(call.links.texts(), (Lines{"file=a", "untouched", "untouched"}));
}

TEST(WFMGetShareLinkListWire, ALinkWithoutAFileNameNeedsRoomToo) {
    RawServer server(
        {Reply::json(R"({"total":40,"datas":[{"filename":"a"},{"ssid":"s1"},{"filename":"b"}]})")});
    LinkListCall call(server);
    call.count = 2;
    EXPECT_EQ(call.run(), 7u);
    EXPECT_EQ(call.start, 40);
    EXPECT_EQ(call.count, 0u);
    EXPECT_TRUE(call.links.isUntouched());
}

TEST(WFMGetShareLinkListWire, ANullEntryIsPassedOver) {
    RawServer server({Reply::json(replyOf(2))});
    LinkListCall call(server);
    call.list[0] = nullptr;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.count, 2u);
    EXPECT_EQ(call.links.texts(), (Lines{"untouched", "file=f1", "file=f2"}));

    // What finds no entry is lost.
    RawServer more({Reply::json(replyOf(3))});
    LinkListCall shorter(more);
    shorter.list[1] = nullptr;
    EXPECT_EQ(shorter.run(), 0u);
    EXPECT_EQ(shorter.count, 2u);
    EXPECT_EQ(shorter.links.texts(), (Lines{"file=f1", "untouched", "file=f2"}));
}

TEST(WFMGetShareLinkListWire, AListThatIsTooSmallIs7AndStaysEmptyButTheTotalIsTold) {
    const struct {
        int links;
        uint32_t capacity;
        bool fits;
    } rows[] = {{3, 3, true},   {2, 3, true},    {3, 2, false}, {1, 0, false},
                {20, 20, true}, {20, 19, false}, {20, 3, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.links) + "/" + std::to_string(row.capacity));
        RawServer server({Reply::json(replyOf(row.links))});
        LinkListCall call(server);
        CallersList<_WFM_SHARE_LINK_INFO> links(20);
        call.list = links.data();
        call.count = row.capacity;
        LogCapture log;
        EXPECT_EQ(call.run(), row.fits ? 0u : 7u);
        EXPECT_EQ(call.start, 40);
        EXPECT_EQ(call.count, row.fits ? static_cast<uint32_t>(row.links) : 0u);
        if (row.fits) {
            log.expectNoLines();
            continue;
        }
        EXPECT_TRUE(links.isUntouched());
        log.expectLines({"[WFMShare] WFMGetShareLinkList: WFM_PARSE_XML_BUFFER_NOT_ENOUGH",
                         summaryLine("WFMGetShareLinkList", server.port(), 7, kSharePrefix)});
    }
}

TEST(WFMGetShareLinkListWire, WithoutLinksTheCountIs0AndNoStatusIsAFailure) {
    const std::pair<const char*, int32_t> rows[] = {
        {"{}", 0},
        {R"({"status":1,"total":40})", 40},
        {R"({"status":1,"total":-40,"datas":[]})", 0},
        {R"({"status":4,"total":40,"datas":[]})", 40},
        {R"({"status":-3,"total":40,"datas":[{"filename":"a"}]})", 0}};
    for (const auto& [reply, total] : rows)
        for (const uint32_t capacity : {0u, 3u}) {
            SCOPED_TRACE(reply);
            RawServer server({Reply::json(reply)});
            LinkListCall call(server);
            call.count = capacity;
            LogCapture log;
            EXPECT_EQ(call.run(), 0u);
            EXPECT_EQ(call.start, total);
            EXPECT_EQ(call.count, 0u);
            log.expectNoLines();
        }
}

TEST(WFMGetShareLinkListWire, AFailedCallLeavesStartAloneAndTheCountAt0) {
    const std::pair<Reply, uint32_t> rows[] = {{Reply::status(503), 12},
                                               {Reply::json(R"({"total":40,"datas":5})"), 14}};
    for (const auto& [reply, dwStatus] : rows) {
        RawServer server({reply});
        LinkListCall call(server);
        EXPECT_EQ(call.run(), dwStatus);
        EXPECT_EQ(call.start, 7);
        EXPECT_EQ(call.count, 0u);
        EXPECT_TRUE(call.links.isUntouched());
    }
}

TEST(WFMGetShareLinkListWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<LinkListCall>(
        log, session.get(), "WFMGetShareLinkList",
        {[](LinkListCall& call) { call.limit = 0; }, [](LinkListCall& call) { call.limit = -1; },
         [](LinkListCall& call) { call.startInOut = nullptr; },
         [](LinkListCall& call) { call.countInOut = nullptr; },
         [](LinkListCall& call) { call.list = nullptr; }},
        kSharePrefix);
    expectRefusals<NegativeStartCall>(log, session.get(), "WFMGetShareLinkList", {[](NegativeStartCall&) {}},
                                      kSharePrefix);
}
