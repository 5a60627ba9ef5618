#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "checksumcalls.h"
#include "directory.h"
#include "lists.h"
#include "support/staterecords.h"

using namespace wire;

namespace {

using Device = _CLOUD_DEVICE_ID_INFORMATION;

constexpr int kDebugAndErrors = 4 | 32;

std::string describe(const Device& device) {
    return RecordWords()
        .number("code", device.nResponseCode)
        .text("id", device.szDeviceID)
        .text("message", device.szMessage)
        .joined();
}

struct DeviceIDArgs : DirectoryArgs {
    const wchar_t* userID = L"user-7";
    const wchar_t* secret = L"secret";
    Garbage<Device> garbage;
    Device* device = &garbage.record;

    uint32_t run() {
        return ZenoAPIGetDeviceID(server, agent, appVersion, clientID, userID, secret, secure, 0, nullptr,
                                  nullptr, nullptr, nullptr, device);
    }
    bool isUntouched() const { return garbage.isUntouched(); }
    std::string text() const { return isUntouched() ? "untouched" : describe(garbage.record); }
};

class ZenoAPIGetDeviceIDWire : public CloudTest<> {};

std::string replyWith(const std::string& message, const std::string& keys = {}) {
    return R"({"return":{"StatusCode":{"code":"200","message":")" + message + "\"}" + keys + "}}";
}

const std::string kGood = replyWith("Access successfully.", R"(,"deviceId":"d-1","actTime":"now")");

}  // namespace

TEST_F(ZenoAPIGetDeviceIDWire, AsksWithTheChecksumOfTheMoment) {
    DeviceIDArgs args;
    expectChecksums(kGood.c_str(), "/v1/users/deviceId/user-7", [&] { return args.run(); });
}

TEST_F(ZenoAPIGetDeviceIDWire, SendsTheUserAsItStands) {
    CloudServer server({Reply::json(kGood)});
    DeviceIDArgs args;
    args.userID = L"a+b%2Fc?d=e";
    args.run();
    EXPECT_EQ(server.request(0).line, "GET /v1/users/deviceId/a+b%2Fc?d=e HTTP/1.1");
}

TEST_F(ZenoAPIGetDeviceIDWire, HandsOutTheDeviceAndLogsIt) {
    CloudServer server({Reply::json(kGood)});
    DeviceIDArgs args;
    LogCapture log(kDebugAndErrors);
    EXPECT_EQ(args.run(), 0u);
    EXPECT_EQ(args.text(), "id=d-1 message=Access successfully.");
    log.expectLines(
        {{"Debug", "[WFM] ZenoAPIGetDeviceID DeviceID(d-1), Msg(Access successfully.), ResponseCode(0)"}});
}

TEST_F(ZenoAPIGetDeviceIDWire, ARefusalIsTheCodeOfItsMessage) {
    const std::pair<const char*, const char*> rows[] = {{"The device is not found.", "5"},
                                                        {"X-VEXA-TIME is invalid.", "2"},
                                                        {"The app id is not found.", "7"},
                                                        {"The checksum X-VEXA-CHECK is invalid.", "8"},
                                                        {"Not today.", "1"},
                                                        {"Get device failed.", "1"}};
    for (const auto& [message, code] : rows) {
        CloudServer server({Reply::json(replyWith(message))});
        DeviceIDArgs args;
        LogCapture log(kDebugAndErrors);
        EXPECT_EQ(args.run(), 0u);
        EXPECT_EQ(args.text(), "code=" + std::string(code) + " message=" + message);
        log.expectLines({{"Debug", "[WFM] ZenoAPIGetDeviceID DeviceID(), Msg(" + std::string(message) +
                                       "), ResponseCode(" + code + ")"}});
        EXPECT_EQ(server.requestCount(), 1u);
    }
}

TEST_F(ZenoAPIGetDeviceIDWire, AnAnswerThatSaysNothingIsAnyOtherRefusal) {
    for (const char* reply : {"{}", R"({"return":null})", R"({"return":{"StatusCode":{"code":200}}})"}) {
        CloudServer server({Reply::json(reply)});
        DeviceIDArgs args;
        EXPECT_EQ(args.run(), 0u);
        EXPECT_EQ(args.text(), "code=1") << reply;
    }
}

TEST_F(ZenoAPIGetDeviceIDWire, LongTextsAreCutToTheirFields) {
    CloudServer server(
        {Reply::json(replyWith(std::string(1000, 'm'), R"(,"deviceId":")" + std::string(1000, 'd') + "\""))});
    DeviceIDArgs args;
    EXPECT_EQ(args.run(), 0u);
    EXPECT_EQ(args.text(), "code=1 id=" + std::string(259, 'd') + " message=" + std::string(259, 'm'));
}

TEST_F(ZenoAPIGetDeviceIDWire, AFailureLeavesTheRecordEmpty) {
    for (const auto& [reply, dwStatus] : {std::pair(Reply::status(404, kGood), 6u),
                                          {Reply::json("[]"), 14u},
                                          {Reply::closeBeforeReply(), 2u}}) {
        CloudServer server({reply});
        DeviceIDArgs args;
        EXPECT_EQ(args.run(), dwStatus);
        EXPECT_EQ(args.text(), "");
    }
}

TEST_F(ZenoAPIGetDeviceIDWire, RefusesBadArgumentsAndTouchesNothing) {
    expectRefusesEach<DeviceIDArgs>(
        "ZenoAPIGetDeviceID",
        {[](DeviceIDArgs& args) { args.userID = nullptr; }, [](DeviceIDArgs& args) { args.userID = L""; },
         [](DeviceIDArgs& args) { args.secret = nullptr; }, [](DeviceIDArgs& args) { args.secret = L""; },
         [](DeviceIDArgs& args) { args.device = nullptr; }});
}
