// WFMGetShareLinkItemList: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "links.h"
#include "recordlist.h"

using namespace wire;

namespace {

using Lines = std::vector<std::string>;

struct ItemListCall : SessionCall<ItemListCall> {
    const wchar_t* path = nullptr;
    const wchar_t* ssid = L"s1";
    uint32_t total = 0xABCD;
    uint32_t* totalOut = &total;
    uint32_t count = 3;
    uint32_t* countInOut = &count;
    CallersList<_WFM_SHARE_LINK_ITEM_INFO> items;
    _WFM_SHARE_LINK_ITEM_INFO** list = items.data();

    using SessionCall::SessionCall;
    uint32_t call() {
        return WFMGetShareLinkItemList(session, kServer, port, path, slaveID, nullptr, ssid, totalOut,
                                       countInOut, list);
    }
    bool isUntouched() const { return total == 0xABCD && count == 3 && items.isUntouched(); }
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

TEST(WFMGetShareLinkItemListWire, ATeamFolderWhosePlaceIsNotKnownTellsItsNodeToo) {
    for (const TeamFolder& folder : teamFoldersOfNodes()) {
        SCOPED_TRACE(testing::PrintToString(folder.clientPath));
        RawServer server({Reply::json("{}")});
        const SessionPtr session = makeTeamSession(teamFoldersOfNodes());
        ItemListCall call;
        call.path = folder.clientPath;
        call.slaveID = L"Other";
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(server.onlyRequest().target(), "/Node/share.cgi?func=get_list&ssid=s1");
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
    EXPECT_EQ(call.items.texts(), (Lines{"file=書 folder", "file=b", "untouched"}));
    log.expectNoLines();
}

TEST(WFMGetShareLinkItemListWire, ItemsWithoutANameNeedRoomToo) {
    for (const uint32_t capacity : {2u, 3u}) {
        RawServer server(
            {Reply::json(R"({"total":40,"datas":[{"filename":"a"},{"isfolder":1},{"filename":"b"}]})")});
        ItemListCall call(server);
        call.count = capacity;
        EXPECT_EQ(call.run(), capacity == 3 ? 0u : 7u);
        EXPECT_EQ(call.total, 40u);
        EXPECT_EQ(call.count, capacity == 3 ? 2u : 0u);
        EXPECT_EQ(call.items.texts(),
                  capacity == 3 ? (Lines{"file=a", "file=b", "untouched"}) : Lines(3, "untouched"));
    }
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
        EXPECT_TRUE(call.items.isUntouched());
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
        EXPECT_TRUE(call.items.isUntouched());
    }
}

TEST(WFMGetShareLinkItemListWire, AFailedCallLeavesBothNumbersAt0) {
    const std::pair<Reply, uint32_t> rows[] = {{Reply::status(503), 12},
                                               {Reply::json(R"({"total":40,"datas":5})"), 14}};
    for (const auto& [reply, dwStatus] : rows) {
        RawServer server({reply});
        ItemListCall call(server);
        EXPECT_EQ(call.run(), dwStatus);
        EXPECT_EQ(call.total, 0u);
        EXPECT_EQ(call.count, 0u);
        EXPECT_TRUE(call.items.isUntouched());
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
