#include <gtest/gtest.h>

#include "directory.h"

using namespace wire;

namespace {

struct CountArgs : DirectoryArgs {
    uint32_t result = 0xABCD;
    int32_t count = 0xABCD;
    uint32_t* resultWord = &result;
    int32_t* countOut = &count;

    uint32_t run() {
        return ZenoAPIGetAllDeviceCount(server, agent, appVersion, clientID, token, secure, 0, nullptr,
                                        nullptr, nullptr, nullptr, resultWord, countOut);
    }
    bool isUntouched() const { return result == 0xABCD && count == 0xABCD; }
};

class ZenoAPIGetAllDeviceCountWire : public CloudTest<> {};

}  // namespace

TEST_F(ZenoAPIGetAllDeviceCountWire, AsksWithItsTokenAndHandsOutTheCount) {
    for (const bool secure : {false, true}) {
        CloudServer server({Reply::json(R"({"code":0,"result":3})")}, secure);
        CountArgs args;
        args.secure = secure;
        LogCapture log(63);
        EXPECT_EQ(args.run(), 0u);
        EXPECT_EQ(args.result, 0u);
        EXPECT_EQ(args.count, 3);
        expectTokenRequest(server, "/v1.1/device/count");
        log.expectNoLines();
    }
}

TEST_F(ZenoAPIGetAllDeviceCountWire, ARefusalIsItsStatusAndNoCount) {
    for (const RefusalCode& code : refusalCodes()) {
        CloudServer server({Reply::json(code.reply)});
        CountArgs args;
        LogCapture log;
        EXPECT_EQ(args.run(), 0u);
        EXPECT_EQ(args.result, static_cast<uint32_t>(code.status)) << code.reply;
        EXPECT_EQ(args.count, 0);
        log.expectNoLines();
    }
}

TEST_F(ZenoAPIGetAllDeviceCountWire, AFailedCallLeavesNoCount) {
    CloudServer server({Reply::status(404, R"({"code":0,"result":3})")});
    CountArgs args;
    LogCapture log;
    EXPECT_EQ(args.run(), 6u);
    EXPECT_EQ(args.result, static_cast<uint32_t>(-1));
    EXPECT_EQ(args.count, 0);
    log.expectLines({"[WFM] ZenoAPIGetAllDeviceCount: FAIL(httpStatusCode=404)",
                     "[WFM] ZenoAPIGetAllDeviceCount: failed dwStatus(6)"});
}

TEST_F(ZenoAPIGetAllDeviceCountWire, RefusesBadArgumentsAndTouchesNothing) {
    expectRefusesEach<CountArgs>(
        "ZenoAPIGetAllDeviceCount",
        {[](CountArgs& args) { args.token = nullptr; }, [](CountArgs& args) { args.token = L""; },
         [](CountArgs& args) { args.resultWord = nullptr; },
         [](CountArgs& args) { args.countOut = nullptr; }});
}
