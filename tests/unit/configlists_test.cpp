// What the lists of device configuration come to when memory runs short.

#include <gtest/gtest.h>

#include <string>

#include "WebFileManShareAPI.h"
#include "core/authcontext.h"
#include "shortage.h"
#include "support/logcapture.h"
#include "support/rawserver.h"

namespace {

constexpr uint32_t kNotEnoughMemory = 8;

const char* const kTwoItems = R"({"config":[{"section":"Mails","key":"server name","value":"a"},
                                            {"section":"Mails","key":"server port","value":"25"}]})";
const char* const kTwoEvents = R"({"event":[{"event_id":"1"},{"event_id":"2"}]})";

}  // namespace

TEST(ConfigListShortage, ItemsAreHandedOutAllOrNone) {
    const auto context = Lattice::MakeAuthContext(L"sid");
    // The array, then text and item of each.
    for (int allocation = 0; allocation < 5; ++allocation) {
        SCOPED_TRACE(allocation);
        const RawServer server({Reply::json(kTwoItems)});
        WFM_TORVI_DEVICE_CONFIG_LIST list{1, nullptr};
        uint32_t result = 0;
        LogCapture log;
        {
            const FailAllocation failing(allocation);
            EXPECT_EQ(WFMGetDeviceConfigInfo(context.get(), L"127.0.0.1", server.port(), L"d-1", 0, false,
                                             nullptr, &result, &list),
                      0u);
        }
        EXPECT_EQ(result, kNotEnoughMemory);
        EXPECT_EQ(list.dwCount, 0u);
        EXPECT_EQ(list.lppItems, nullptr);
        log.expectLines(
            {"[WFMShare] WFMGetDeviceConfigInfo: new WFM_TORVI_GET_DEVICE_CONFIG_ITEM_INFO failed"});
    }
}

TEST(ConfigListShortage, ChangesAreHandedOutAllOrNone) {
    const auto context = Lattice::MakeAuthContext(L"sid");
    // The array, then each item.
    for (int allocation = 0; allocation < 3; ++allocation) {
        SCOPED_TRACE(allocation);
        const RawServer server({Reply::json(kTwoEvents)});
        WFM_TORVI_CONFIG_NOTIFY_LIST list{1, nullptr};
        uint32_t result = 0;
        LogCapture log;
        {
            const FailAllocation failing(allocation);
            EXPECT_EQ(WFMGetConfigNotifyInfo(context.get(), L"127.0.0.1", server.port(), nullptr, nullptr, 0,
                                             50, nullptr, &result, &list),
                      0u);
        }
        EXPECT_EQ(result, kNotEnoughMemory);
        EXPECT_EQ(list.dwCount, 0u);
        EXPECT_EQ(list.lppItems, nullptr);
        log.expectLines({"[WFMShare] WFMGetConfigNotifyInfo: new WFM_TORVI_CONFIG_NOTIFY_ITEM_INFO failed"});
    }
}
