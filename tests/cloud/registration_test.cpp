#include <functional>

#include "cloudtest.h"

namespace {

class CloudRegistration : public TorviCloudTest {
protected:
    void expectRefused(const Json::Value& entry, const std::string& why) {
        const NasReply reply = run(registerRequest(entry));
        EXPECT_EQ(400, reply.http) << why;
        EXPECT_EQ(why, reply.json()["error"].asString());
    }
    int countOfAnna() { return get("/v1.1/device/count", tokenOf("anna")).json()["result"].asInt(); }
};

TEST_F(CloudRegistration, ADeviceIsListed) {
    const NasReply reply = run(registerRequest(entry("anna", "shed-1")));
    ASSERT_EQ(200, reply.http) << reply.body;
    EXPECT_EQ("shed-1", reply.json()["device_id"].asString());
    EXPECT_EQ(1, countOfAnna());
}

TEST_F(CloudRegistration, AnIdMayHoldWhatIsEncodedInAPath) {
    ASSERT_EQ(200, run(registerRequest(entry("anna", "shed 1/\u00e9?"))).http);
    EXPECT_EQ(0, get("/v1.1/device/shed%201%2F%C3%A9%3F/network", tokenOf("anna")).json()["code"].asInt());
    EXPECT_EQ("Access successfully.",
              checked("/v1/services/vlink/shed%201%2f%c3%a9%3f")["StatusCode"]["message"].asString());
}

TEST_F(CloudRegistration, APortIsAPort) {
    for (const char* key : {"http_port", "tls_port", "external_http_port", "external_tls_port"}) {
        Json::Value wrong = entry("anna", "shed-1");
        for (const Json::Value& port :
             {Json::Value(-1), Json::Value(65536), Json::Value(Json::Int64(4294967376)), Json::Value("80"),
              Json::Value(true), Json::Value(80.5)}) {
            wrong[key] = port;
            expectRefused(wrong, std::string(key) + " is no port");
        }
        wrong[key] = 65535;
        EXPECT_EQ(200, run(registerRequest(wrong)).http) << key;
    }
}

TEST_F(CloudRegistration, AnAddressIsADevicesOwn) {
    for (const char* key : {"address", "external_address"}) {
        for (const std::string address : {"0.0.0.0", "nas.example", "192.0.2", "::1"}) {
            Json::Value wrong = entry("anna", "shed-1");
            wrong[key] = address;
            expectRefused(wrong, key + (" \"" + address + "\" is no IPv4 address of a device"));
        }
    }
    Json::Value nowhere = entry("anna", "shed-1");
    nowhere["address"] = "";
    EXPECT_EQ(400, run(registerRequest(nowhere)).http);
    EXPECT_EQ(0, countOfAnna());
}

TEST_F(CloudRegistration, ANasThatListensEverywhereSaysWhereItIs) {
    Nas::Options everywhere = nasOptions("anna", "Shed", "shed-1");
    everywhere.address = "0.0.0.0";
    EXPECT_THROW(Nas{everywhere}, std::runtime_error);
    everywhere.arguments.insert(everywhere.arguments.end(), {"--device-address", "192.0.2.9"});
    const Nas nas(everywhere);
    EXPECT_EQ("192.0.2.1", checked("/v1/services/vlink/shed-1")["lanGW"].asString());
}

TEST_F(CloudRegistration, AnotherUsersDeviceStaysItsOwn) {
    ASSERT_EQ(200, run(registerRequest(entry("anna", "shed-1"))).http);
    expectRefused(entry("ben", "shed-1"), "the device id \"shed-1\" is another user's");
    EXPECT_EQ(1, countOfAnna());
    EXPECT_EQ("The device is not found.",
              checked("/v1/users/deviceId/ben")["StatusCode"]["message"].asString());
}

TEST_F(CloudRegistration, WhatIsTakenOffTheListIsGone) {
    for (const char* id : {"shed-1", "shed-2"}) run(registerRequest(entry("anna", id)));
    cloud.control("DELETE", "devices", R"({"device_id":"shed-1"})");
    EXPECT_EQ("shed-2", checked("/v1/users/deviceId/anna")["deviceId"].asString());
    EXPECT_EQ("The device is not found.",
              checked("/v1/services/vlink/shed-1")["StatusCode"]["message"].asString());
    EXPECT_EQ(200, run(registerRequest(entry("ben", "shed-1"))).http);
}

TEST_F(CloudRegistration, AListHasAnEnd) {
    for (int i = 0; i < 10; ++i) {
        std::vector<NasRequest> requests;
        for (int k = 0; k < 100; ++k)
            requests.push_back(registerRequest(entry("anna", std::to_string(100 * i + k))));
        ASSERT_EQ(100, countOf(runInOneGo(requests), "HTTP/1.1 200"));
    }
    expectRefused(entry("ben", "shed-1"), "there is no room for more devices");
    EXPECT_EQ(200, run(registerRequest(entry("anna", "7"))).http);
    EXPECT_EQ(1000, countOfAnna());
}

TEST_F(CloudRegistration, WhatADeviceSaysHasAnEnd) {
    Json::Value wordy = entry("anna", "shed-1");
    wordy["description"] = std::string(70000, 'a');
    expectRefused(wordy, "a registration has 65536 bytes at most");
}

}  // namespace
