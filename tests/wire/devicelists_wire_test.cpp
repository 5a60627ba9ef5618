// The calls that list devices, ZenoAPIGetAllDeviceInfo and ZenoAPIGetDeviceInfoByName: what they ask and hand
// out. ZenoFreeDeviceInfo takes the lists back.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "directory.h"
#include "support/devicerecords.h"

using namespace wire;

namespace {

using Device = _NAS_DEVICE_INFORMATION_API_V11;
using Lines = std::vector<std::string>;

Device** const kNoList = reinterpret_cast<Device**>(0xABCD);

struct ListArgs : DirectoryArgs {
    const wchar_t* deviceName = L"attic";
    uint32_t result = 0xABCD;
    int32_t count = 0xABCD;
    Device** devices = kNoList;
    uint32_t* resultWord = &result;
    int32_t* countOut = &count;
    Device*** devicesOut = &devices;

    ~ListArgs() {
        if (devices != kNoList) ZenoFreeDeviceInfo(count, &devices);
    }
    bool isUntouched() const { return result == 0xABCD && count == 0xABCD && devices == kNoList; }
    bool isEmpty() const { return count == 0 && devices == nullptr; }
};

struct AllArgs : ListArgs {
    uint32_t run() {
        return ZenoAPIGetAllDeviceInfo(server, agent, appVersion, clientID, token, secure, 0, nullptr,
                                       nullptr, nullptr, nullptr, resultWord, countOut, devicesOut);
    }
};

struct ByNameArgs : ListArgs {
    uint32_t run() {
        return ZenoAPIGetDeviceInfoByName(server, agent, appVersion, clientID, token, deviceName, secure, 0,
                                          nullptr, nullptr, nullptr, nullptr, resultWord, countOut,
                                          devicesOut);
    }
};

struct ListCall {
    const char* name;
    const char* target;
    uint32_t (*run)(ListArgs& args);
    void (*expectRefuses)(const std::string& function);
};

template <class Args>
uint32_t runAs(ListArgs& args) {
    Args own;
    own.server = args.server;
    own.deviceName = args.deviceName;
    own.secure = args.secure;
    own.resultWord = &args.result;
    own.countOut = &args.count;
    own.devicesOut = &args.devices;
    return own.run();
}

template <class Args>
void expectRefuses(const std::string& function) {
    expectRefusesEach<Args>(
        function, {[](Args& args) { args.token = nullptr; }, [](Args& args) { args.token = L""; },
                   [](Args& args) { args.resultWord = nullptr; }, [](Args& args) { args.countOut = nullptr; },
                   [](Args& args) { args.devicesOut = nullptr; }});
}

const ListCall kCalls[] = {
    {"ZenoAPIGetAllDeviceInfo", "/v1.1/device", runAs<AllArgs>, expectRefuses<AllArgs>},
    {"ZenoAPIGetDeviceInfoByName", "/v1.1/device/search?device_name=attic", runAs<ByNameArgs>,
     expectRefuses<ByNameArgs>}};

void PrintTo(const ListCall& call, std::ostream* out) {
    *out << call.name;
}

class DeviceListWire : public CloudTest<testing::TestWithParam<ListCall>> {};

const char* const kTwoDevices = R"({"code":0,"message":"fine","result":[
    {"device_id":"d1","device_name":"attic","token":"t1",
     "info":{"model_name":"M-4","lan_gateway":{"ipv4":"10.0.0.1"},
             "lan_ips":[{"name":"eth0","ipv4":"10.0.0.2"},{"name":"eth1"}],"wan_ips":[{"ipv4":"203.0.113.7"}]},
     "local_services":[{"service_name":"web","external_port":8080,"published":true}],
     "local_users":[{"user_name":"anna"},{"user_name":"ben"}],
     "model_info":{"name":"M-4"},"permissions":{"basic_info":"rw"}},
    {"device_id":"d2"}]})";

/// The result word and the lines of a call that isn't answered with a list.
void expectNoList(const ListCall& call, Reply reply, uint32_t dwStatus, uint32_t result, const Lines& lines) {
    CloudServer server({std::move(reply)});
    ListArgs args;
    LogCapture log;
    EXPECT_EQ(call.run(args), dwStatus);
    EXPECT_EQ(args.result, result);
    EXPECT_TRUE(args.isEmpty());
    EXPECT_EQ(log.texts(), lines);
}

}  // namespace

TEST_P(DeviceListWire, AsksWithItsToken) {
    CloudServer server({Reply::json(R"({"code":0})")});
    ListArgs args;
    EXPECT_EQ(GetParam().run(args), 0u);
    expectTokenRequest(server, GetParam().target);
}

TEST_P(DeviceListWire, SpeaksTlsAtItsPort) {
    CloudServer server({Reply::json(kTwoDevices)}, true);
    ListArgs args;
    args.secure = true;
    EXPECT_EQ(GetParam().run(args), 0u);
    expectTokenRequest(server, GetParam().target);
    EXPECT_EQ(args.count, 2);
}

TEST_P(DeviceListWire, HandsOutTheDevices) {
    CloudServer server({Reply::json(kTwoDevices)});
    ListArgs args;
    LogCapture log(63);
    EXPECT_EQ(GetParam().run(args), 0u);
    EXPECT_EQ(args.result, 0u);
    ASSERT_EQ(args.count, 2);
    const Device& first = *args.devices[0];
    EXPECT_EQ(describe(first), "device_id=d1 token=t1 device_name=attic");
    EXPECT_EQ(describe(first.info), "model_name=M-4");
    EXPECT_EQ(describe(first.info.lanGateway), "ipv4=10.0.0.1");
    EXPECT_EQ(describeList(first.info.lppLanIPs, first.info.nLanIPCount),
              (Lines{"name=eth0 ipv4=10.0.0.2", "name=eth1"}));
    EXPECT_EQ(describeList(first.info.lppWanIPs, first.info.nWanIPCount), Lines{"ipv4=203.0.113.7"});
    EXPECT_EQ(describeList(first.lppServices, first.nServiceCount),
              Lines{"service_name=web external_port=8080 published"});
    EXPECT_EQ(describeList(first.lppUsers, first.nUserCount), (Lines{"user_name=anna", "user_name=ben"}));
    EXPECT_EQ(describe(first.modelInfo), "name=M-4");
    EXPECT_EQ(describe(first.permissions), "basic_info=rw");
    const Device& second = *args.devices[1];
    EXPECT_EQ(describe(second), "device_id=d2");
    EXPECT_EQ(describeList(second.info.lppLanIPs, second.info.nLanIPCount), Lines{});
    EXPECT_EQ(describeList(second.lppServices, second.nServiceCount), Lines{});
    EXPECT_EQ(ZenoFreeDeviceInfo(args.count, &args.devices), 0u);
    EXPECT_EQ(args.devices, nullptr);
    log.expectNoLines();
}

TEST_P(DeviceListWire, AUserWithoutDevicesHasAnEmptyList) {
    for (const char* reply : {R"({"code":0,"result":[]})", R"({"code":0,"result":null})", R"({"code":0})"})
        expectNoList(GetParam(), Reply::json(reply), 0, 0, {});
}

TEST_P(DeviceListWire, ARefusalIsLoggedWithItsStatus) {
    for (const RefusalCode& code : refusalCodes())
        expectNoList(GetParam(), Reply::json(code.reply), 0, static_cast<uint32_t>(code.status),
                     {std::string("[WFM] ") + GetParam().name + ": API result not OK(" +
                      std::to_string(code.status) + ")"});
}

TEST_P(DeviceListWire, AReplyThatIsNotUnderstoodLeavesAnEmptyList) {
    const std::string name = std::string("[WFM] ") + GetParam().name;
    for (const char* reply : {"", "[]", R"({"code":0,"result":{}})", R"({"code":99999999999})",
                              R"({"code":0,"result":[{"device_id":"d1"},{"device_id":[]}]})"})
        expectNoList(GetParam(), Reply::json(reply), 14, static_cast<uint32_t>(-1),
                     {name + " WFM_PARSE_XML_FAIL", name + ": failed dwStatus(14)"});
}

TEST_P(DeviceListWire, AMissingServiceIs10AndAnyOtherErrorLeavesAnEmptyListToo) {
    const std::string name = std::string("[WFM] ") + GetParam().name;
    expectNoList(GetParam(), Reply::status(404, kTwoDevices), 10, static_cast<uint32_t>(-1),
                 {name + ": WFM_PARSE_XML_CGI_NOT_FOUND", name + ": failed dwStatus(10)"});
    expectNoList(GetParam(), Reply::status(401, kTwoDevices), 6, static_cast<uint32_t>(-1),
                 {name + ": FAIL(httpStatusCode=401)", name + ": failed dwStatus(6)"});
}

TEST_P(DeviceListWire, RefusesBadArgumentsAndTouchesNothing) {
    GetParam().expectRefuses(GetParam().name);
}

INSTANTIATE_TEST_SUITE_P(, DeviceListWire, testing::ValuesIn(kCalls),
                         [](const auto& info) { return std::string(info.param.name); });

class ZenoAPIGetDeviceInfoByNameWire : public CloudTest<> {};

TEST_F(ZenoAPIGetDeviceInfoByNameWire, SendsTheNameAsItStands) {
    CloudServer server({Reply::json(R"({"code":0})")});
    ByNameArgs args;
    args.deviceName = L"my%20attic&x=1";
    EXPECT_EQ(args.run(), 0u);
    EXPECT_EQ(server.onlyRequest().line, "GET /v1.1/device/search?device_name=my%20attic&x=1 HTTP/1.1");
}

TEST_F(ZenoAPIGetDeviceInfoByNameWire, RefusesAMissingName) {
    expectRefusesEach<ByNameArgs>("ZenoAPIGetDeviceInfoByName",
                                  {[](ByNameArgs& args) { args.deviceName = nullptr; },
                                   [](ByNameArgs& args) { args.deviceName = L""; }});
}

TEST(ZenoFreeDeviceInfoWire, NullIsSafe) {
    EXPECT_EQ(ZenoFreeDeviceInfo(3, nullptr), 0u);
    Device** list = nullptr;
    EXPECT_EQ(ZenoFreeDeviceInfo(3, &list), 0u);
    EXPECT_EQ(list, nullptr);
}

TEST(ZenoFreeDeviceInfoWire, FreesDevicesListsAndArrayAndIsSafeTwice) {
    auto** list = new Device* [3] {};
    list[0] = new Device{};
    list[0]->nUserCount = 2;
    list[0]->lppUsers = new _NAS_DEVICE_USER_INFO* [2] {
        new _NAS_DEVICE_USER_INFO {}
    };
    list[0]->nServiceCount = 1;
    list[0]->lppServices = new _NAS_DEVICE_SERVICE_INFO* [1] {
        new _NAS_DEVICE_SERVICE_INFO {}
    };
    list[2] = new Device{};
    list[2]->info.nLanIPCount = 1;
    list[2]->info.lppLanIPs = new _NAS_DEVICE_IP_INFO* [1] {
        new _NAS_DEVICE_IP_INFO {}
    };
    list[2]->info.nWanIPCount = 1;
    list[2]->info.lppWanIPs = new _NAS_DEVICE_IP_INFO* [1] {};
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(ZenoFreeDeviceInfo(3, &list), 0u);
        EXPECT_EQ(list, nullptr);
    }
}

TEST(ZenoFreeDeviceInfoWire, WithoutACountItFreesTheArrayAlone) {
    for (const int count : {0, -1}) {
        Device device{};
        Device** list = new Device* [1] { &device };
        EXPECT_EQ(ZenoFreeDeviceInfo(count, &list), 0u);
        EXPECT_EQ(list, nullptr);
    }
}
