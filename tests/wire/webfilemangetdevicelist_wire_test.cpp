// WebFileManGetDeviceList: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "configreplies.h"
#include "recordlist.h"
#include "refusals.h"
#include "routes.h"
#include "sessioncall.h"
#include "support/configrecords.h"

using namespace wire;

namespace {

using Lines = std::vector<std::string>;

const char* const kFunction = "WebFileManGetDeviceList";

struct DeviceListCall : SessionCall<DeviceListCall> {
    const wchar_t* user = L"ann";
    uint32_t lower = 0;
    uint32_t upper = 50;
    uint32_t total = 0xABCD;
    uint32_t* totalOut = &total;
    uint32_t count = 3;
    uint32_t* countInOut = &count;
    CallersList<_WFM_TORVI_DEVICE_INFORMATION> devices;
    _WFM_TORVI_DEVICE_INFORMATION** list = devices.data();

    using SessionCall::SessionCall;
    uint32_t call() {
        return WebFileManGetDeviceList(session, kServer, port, user, lower, upper, nullptr, totalOut,
                                       countInOut, list, resultWord);
    }
    bool isUntouched() const {
        return result == 0xABCD && total == 0xABCD && count == 3 && devices.isUntouched();
    }
    bool isCleared() const { return total == 0 && count == 0 && devices.isUntouched(); }
};

/// A reply with that many devices, "d1", "d2" and so on.
std::string listOf(int count) {
    std::string devices;
    for (int i = 1; i <= count; ++i)
        devices += std::string(i > 1 ? "," : "") + R"({"device_uid":"d)" + std::to_string(i) + R"("})";
    return R"({"total":9,"device":[)" + devices + "]}";
}

}  // namespace

// ---- The request ----

TEST(WebFileManGetDeviceListWire, AsksTheSessionsServiceAndNamesNoNode) {
    expectOnEveryRoute(
        "func=nubo_get_device_config_list&sid=sid123&user=a%20%26%E6%96%87%2F&lower=0&upper=50",
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
            DeviceListCall call;
            call.user = L"a &\x6587/";
            call.run(session, port);
        },
        routesWithoutNode());
}

TEST(WebFileManGetDeviceListWire, ThePageIsPassedOnAsItIs) {
    RawServer server({Reply::json(listOf(0))});
    DeviceListCall call(server);
    call.lower = 0xFFFFFFFF;
    call.upper = 7;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(server.onlyRequest().queryText(),
              "func=nubo_get_device_config_list&sid=sid123&user=ann&lower=-1&upper=7");
}

// ---- The reply ----

TEST(WebFileManGetDeviceListWire, TheDevicesAreCopiedIntoTheCallersRecords) {
    RawServer server({Reply::json(R"({"total":70,"device":[
        {"device_name":"laptop \u6587","device_uid":"d-1","ip":"192.0.2.7","modify_time":"1700000000"},
        {"device_uid":"d-2","modify_time":99999999999}]})")});
    DeviceListCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.total, 70u);
    EXPECT_EQ(call.count, 2u);
    EXPECT_EQ(call.devices.texts(), (Lines{"name=laptop \xE6\x96\x87 uid=d-1 ip=192.0.2.7 time=1700000000",
                                           "uid=d-2 time=99999999999", "untouched"}));
    log.expectNoLines();
}

TEST(WebFileManGetDeviceListWire, AListThatIsTooSmallIs122AndTellsWhatItNeeds) {
    const struct {
        uint32_t capacity;
        int devices;
        bool fits;
    } rows[] = {{3, 3, true}, {3, 2, true}, {0, 0, true}, {3, 4, false}, {2, 3, false}, {0, 1, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.devices) + " devices for " + std::to_string(row.capacity));
        RawServer server({Reply::json(listOf(row.devices))});
        DeviceListCall call(server);
        call.count = row.capacity;
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.total, 9u);
        EXPECT_EQ(call.count, static_cast<uint32_t>(row.devices));
        if (row.fits) {
            EXPECT_EQ(call.result, 0u);
            log.expectNoLines();
        } else {
            EXPECT_EQ(call.result, 122u);
            EXPECT_TRUE(call.devices.isUntouched());
            log.expectLines({"[WFMShare] WebFileManGetDeviceList: ERROR_INSUFFICIENT_BUFFER"});
        }
    }
}

TEST(WebFileManGetDeviceListWire, ADeviceWithoutARecordIsSkipped) {
    RawServer server({Reply::json(listOf(3))});
    DeviceListCall call(server);
    call.list[1] = nullptr;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.count, 2u);
    EXPECT_EQ(call.devices.texts(), (Lines{"uid=d1", "untouched", "uid=d3"}));
}

TEST(WebFileManGetDeviceListWire, ThereMayBeNoDevices) {
    expectReplies<DeviceListCall>(
        {{"{}", 0, 0, {}}, {R"({"total":-5,"device":[]})", 0, 0, {}}, {R"({"device":null})", 0, 0, {}}},
        [](const DeviceListCall& call) { EXPECT_TRUE(call.isCleared()); });
}

TEST(WebFileManGetDeviceListWire, OnlyAReplyWithoutAStatusIsASuccess) {
    expectConfigStatuses<DeviceListCall>(kFunction, {},
                                         [](const DeviceListCall& call) { EXPECT_TRUE(call.isCleared()); });
}

TEST(WebFileManGetDeviceListWire, AFailedCallLeavesTheRecordsAlone) {
    for (const Reply& reply : {Reply::status(503), Reply::json(R"({"total":9,"device":"none"})"),
                               Reply::json(R"({"total":9,"device":[{"ip":"a"},{"ip":[]}]})")}) {
        RawServer server({reply});
        DeviceListCall call(server);
        EXPECT_NE(call.run(), 0u);
        EXPECT_EQ(call.signedResult(), -1);
        EXPECT_TRUE(call.isCleared());
    }
}

TEST(WebFileManGetDeviceListWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<DeviceListCall>(
        log, session.get(), kFunction,
        {[](DeviceListCall& call) { call.user = nullptr; }, [](DeviceListCall& call) { call.user = L""; },
         [](DeviceListCall& call) { call.totalOut = nullptr; },
         [](DeviceListCall& call) { call.countInOut = nullptr; },
         [](DeviceListCall& call) { call.list = nullptr; },
         [](DeviceListCall& call) { call.resultWord = nullptr; }},
        kSharePrefix);
}
