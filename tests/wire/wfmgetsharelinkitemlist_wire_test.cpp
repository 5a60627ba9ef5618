// WFMGetShareLinkItemList: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "links.h"
#include "lists.h"

using namespace wire;

namespace {

using Lines = std::vector<std::string>;
using ItemRecord = Garbage<_WFM_SHARE_LINK_ITEM_INFO>;

struct ItemListCall : SessionCall<ItemListCall> {
    const wchar_t* path = nullptr;
    const wchar_t* ssid = L"s1";
    uint32_t total = 0xABCD;
    uint32_t* totalOut = &total;
    std::vector<ItemRecord> records{3};
    std::vector<_WFM_SHARE_LINK_ITEM_INFO*> pointers;
    uint32_t count = 3;
    uint32_t* countInOut = &count;
    _WFM_SHARE_LINK_ITEM_INFO** list;

    ItemListCall() {
        for (ItemRecord& record : records) pointers.push_back(&record.record);
        list = pointers.data();
    }
    explicit ItemListCall(const RawServer& at) : ItemListCall() { port = at.port(); }

    uint32_t call() {
        return WFMGetShareLinkItemList(session, kServer, port, path, slaveID, nullptr, ssid, totalOut,
                                       countInOut, list);
    }
    Lines texts() const {
        Lines all;
        for (const ItemRecord& record : records) all.push_back(record.text());
        return all;
    }
    bool isUntouched() const {
        return total == 0xABCD && count == 3 && texts() == Lines(3, "untouched");
    }
};

std::string replyOf(int count) {
    std::string items;
    for (int i = 1; i <= count; ++i)
        items += std::string(i > 1 ? "," : "") + R"({"filename":"f)" + std::to_string(i) + "\"}";
    return R"({"total":40,"datas":[)" + items + "]}";
}

}  // namespace

TEST(WFMGetShareLinkItemListWire, AsksTheLinksPublicAddressWithoutTheSession) {
    expectOnEveryRoute(
        "func=get_list&ssid=s1",
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
            ItemListCall call;
            call.slaveID = slaveID;
            call.run(session, port);
        },
        routesToFileManager("/share.cgi"));
}

TEST(WFMGetShareLinkItemListWire, TheIdIsEncoded) {
    RawServer server({Reply::json("{}")});
    ItemListCall call(server);
    call.ssid = L"a b&c=\x6587";
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(server.onlyRequest().target(), "/share.cgi?func=get_list&ssid=a%20b%26c%3D%E6%96%87");
}

TEST(WFMGetShareLinkItemListWire, ThePathTellsTheNodeAndIsNotSent) {
    for (const PathRoute& route : pathRoutes()) {
        SCOPED_TRACE(route.what);
        RawServer server({Reply::json("{}")});
        const SessionPtr session = route.session();
        const std::wstring path = route.path();
        ItemListCall call(server);
        call.session = session.get();
        call.path = path.c_str();
        call.slaveID = route.slaveID;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(server.onlyRequest().target(),
                  "/" + std::string(route.prefix) + "share.cgi?func=get_list&ssid=s1");
    }
}

TEST(WFMGetShareLinkItemListWire, TheRecordsAreFilled) {
    RawServer server({Reply::json(R"({"total":"7","datas":[{"filename":"書","isfolder":1},{"isfolder":1},
        {"filename":"b"}]})")});
    ItemListCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.total, 7u);
    EXPECT_EQ(call.count, 2u);
    EXPECT_EQ(call.texts(), (Lines{"file=書 folder", "file=b", "untouched"}));
    log.expectNoLines();
}

TEST(WFMGetShareLinkItemListWire, AListThatIsTooSmallIs7AndStaysEmptyButTheTotalIsTold) {
    const struct {
        int items;
        uint32_t capacity;
        bool fits;
    } rows[] = {{3, 3, true}, {2, 3, true}, {3, 2, false}, {1, 0, false}, {20, 3, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.items) + "/" + std::to_string(row.capacity));
        RawServer server({Reply::json(replyOf(row.items))});
        ItemListCall call(server);
        call.count = row.capacity;
        LogCapture log;
        EXPECT_EQ(call.run(), row.fits ? 0u : 7u);
        EXPECT_EQ(call.total, 40u);
        EXPECT_EQ(call.count, row.fits ? static_cast<uint32_t>(row.items) : 0u);
        if (row.fits) {
            log.expectNoLines();
            continue;
        }
        EXPECT_EQ(call.texts(), Lines(3, "untouched"));
        log.expectLines({"[WFMShare] WFMGetShareLinkItemList: WFM_PARSE_XML_BUFFER_NOT_ENOUGH",
                         summaryLine("WFMGetShareLinkItemList", server.port(), 7, kSharePrefix)});
    }
}

TEST(WFMGetShareLinkItemListWire, WithoutATotalThereAreNoItems) {
    for (const char* reply : {"{}", R"({"status":4})", R"({"total":0,"datas":[{"filename":"a"}]})",
                              R"({"datas":[{"filename":"a"}]})"}) {
        SCOPED_TRACE(reply);
        RawServer server({Reply::json(reply)});
        ItemListCall call(server);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.total, 0u);
        EXPECT_EQ(call.count, 0u);
        EXPECT_EQ(call.texts(), Lines(3, "untouched"));
    }
}

TEST(WFMGetShareLinkItemListWire, AFailedCallLeavesBothNumbersAt0) {
    const std::pair<Reply, uint32_t> rows[] = {
        {Reply::status(503), 12}, {Reply::json(R"({"total":40,"datas":5})"), 14}};
    for (const auto& [reply, dwStatus] : rows) {
        RawServer server({reply});
        ItemListCall call(server);
        EXPECT_EQ(call.run(), dwStatus);
        EXPECT_EQ(call.total, 0u);
        EXPECT_EQ(call.count, 0u);
        EXPECT_EQ(call.texts(), Lines(3, "untouched"));
    }
}

TEST(WFMGetShareLinkItemListWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<ItemListCall>(
        log, session.get(), "WFMGetShareLinkItemList",
        {[](ItemListCall& call) { call.ssid = nullptr; }, [](ItemListCall& call) { call.ssid = L""; },
         [](ItemListCall& call) { call.totalOut = nullptr; },
         [](ItemListCall& call) { call.countInOut = nullptr; },
         [](ItemListCall& call) { call.list = nullptr; }},
        kSharePrefix);
}
