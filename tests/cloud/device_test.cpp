#include "cloudtest.h"

namespace {

class CloudDevice : public TorviCloudTest {
protected:
    Nas cellar{nasOptions(
        "anna", "Cellar", "cellar-1",
        {"--external-address", "198.51.100.4", "--external-port", "8080", "--external-tls-port", "8443",
         "--ddns-name", "cellar.example.org", "--device-description", "Below the stairs"})};
    Nas attic{nasOptions("anna", "Attic & roof", "attic-1", {"--no-remote-access"})};

    Json::Value resources(const std::string& id) {
        return get("/v1.1/device/" + id + "/network", tokenOf("anna")).json()["result"]["resources"];
    }
    static std::string described(const Json::Value& resource) {
        return resource["type"].asString() + " " + resource["protocol"].asString() + " " +
               resource["ipv4"].asString() + resource["host"].asString() + ":" +
               std::to_string(resource["port"].asInt());
    }
};

TEST_F(CloudDevice, AUserHasTheDevicesThatRegisteredForIt) {
    const Json::Value reply = get("/v1.1/device", tokenOf("anna")).json();
    EXPECT_EQ(0, reply["code"].asInt());
    ASSERT_EQ(2u, reply["result"].size());
    const Json::Value& device = reply["result"][0];
    EXPECT_EQ("cellar-1", device["device_id"].asString());
    EXPECT_EQ("Cellar", device["device_name"].asString());
    EXPECT_EQ("anna", device["user_id"].asString());
    EXPECT_EQ("Below the stairs", device["description"].asString());
    EXPECT_EQ("cellar.example.org", device["domain_name"].asString());
    EXPECT_FALSE(device["token"].asString().empty());
    EXPECT_FALSE(device["access_code"].asString().empty());
    EXPECT_EQ("127.0.0.1", device["info"]["lan_ips"][0]["ipv4"].asString());
    EXPECT_EQ("198.51.100.4", device["info"]["wan_ips"][0]["ipv4"].asString());
    EXPECT_EQ("anna", device["local_users"][0]["user_name"].asString());
    ASSERT_EQ(2u, device["local_services"].size());
    EXPECT_EQ(cellar.port(), device["local_services"][0]["internal_port"].asInt());
    EXPECT_EQ(8443, device["local_services"][1]["external_port"].asInt());
    EXPECT_EQ("attic-1", reply["result"][1]["device_id"].asString());
}

TEST_F(CloudDevice, CountsThem) {
    EXPECT_EQ(2, get("/v1.1/device/count", tokenOf("anna")).json()["result"].asInt());
    EXPECT_EQ(0, get("/v1.1/device/count", tokenOf("ben")).json()["result"].asInt());
}

TEST_F(CloudDevice, AUserWithoutDevicesHasAnEmptyList) {
    const Json::Value reply = get("/v1.1/device", tokenOf("ben")).json();
    EXPECT_EQ(0, reply["code"].asInt());
    EXPECT_TRUE(reply["result"].isArray());
    EXPECT_EQ(0u, reply["result"].size());
}

TEST_F(CloudDevice, ANameFindsItsDevice) {
    const std::string token = tokenOf("anna");
    const Json::Value reply = get("/v1.1/device/search?device_name=Attic%20%26%20roof", token).json();
    ASSERT_EQ(1u, reply["result"].size());
    EXPECT_EQ("attic-1", reply["result"][0]["device_id"].asString());
    EXPECT_EQ(0u, get("/v1.1/device/search?device_name=Shed", token).json()["result"].size());
}

TEST_F(CloudDevice, TheNetworkSettingsListEachAddressWithItsPorts) {
    const Json::Value list = resources("cellar-1");
    ASSERT_EQ(7u, list.size());
    EXPECT_EQ("lan_ip http 127.0.0.1:" + std::to_string(cellar.port()), described(list[0]));
    EXPECT_EQ("lan_ip https 127.0.0.1:" + std::to_string(cellar.tlsPort()), described(list[1]));
    EXPECT_EQ("wan_ip http 198.51.100.4:8080", described(list[2]));
    EXPECT_EQ("wan_ip https 198.51.100.4:8443", described(list[3]));
    EXPECT_EQ("ddns http cellar.example.org:8080", described(list[4]));
    EXPECT_EQ("ddns https cellar.example.org:8443", described(list[5]));
    EXPECT_EQ("cloud_link", list[6]["type"].asString());
    EXPECT_FALSE(list[6]["cloud_link_id"].asString().empty());
}

TEST_F(CloudDevice, WithoutRemoteAccessOnlyTheOwnNetworkIsListed) {
    const Json::Value list = resources("attic-1");
    ASSERT_EQ(2u, list.size());
    EXPECT_EQ("lan_ip", list[0]["type"].asString());
}

TEST_F(CloudDevice, AnotherUsersDeviceIsNoDevice) {
    const Json::Value reply = get("/v1.1/device/cellar-1/network", tokenOf("ben")).json();
    EXPECT_EQ(1070001, reply["code"].asInt());
    EXPECT_EQ(1070001, get("/v1.1/device/shed-1/network", tokenOf("anna")).json()["code"].asInt());
}

TEST_F(CloudDevice, AnApplicationsOwnTokenHasNoUser) {
    EXPECT_EQ(1013001, get("/v1.1/device", appToken()).json()["code"].asInt());
}

TEST_F(CloudDevice, ASuspendedUserSeesNoDevices) {
    const std::string token = tokenOf("anna");
    cloud.control("POST", "users/suspend", R"({"user":"anna"})");
    const Json::Value reply = get("/v1.1/device", token).json();
    EXPECT_EQ(1013002, reply["code"].asInt());
    EXPECT_FALSE(reply.isMember("result"));
}

TEST_F(CloudDevice, AnExpiredTokenIsRefusedByHttp) {
    const std::string token = tokenOf("anna");
    cloud.expireTokens();
    const NasReply reply = get("/v1.1/device", token);
    EXPECT_EQ(401, reply.http);
    EXPECT_EQ("invalid_token", reply.json()["error"].asString());
}

TEST_F(CloudDevice, EveryTokenIsToldItsPublicAddress) {
    const Json::Value reply = get("/v1.1/utility/geo/search", appToken()).json();
    EXPECT_EQ(0, reply["code"].asInt());
    EXPECT_EQ("203.0.113.7", reply["result"]["public_ip"].asString());
}

TEST_F(CloudDevice, ADeviceThatRegistersAgainKeepsItsPlaceAndItsLink) {
    const std::string link = resources("cellar-1")[6]["cloud_link_id"].asString();
    cellar.stop();
    cellar.startAgain();
    EXPECT_EQ(link, resources("cellar-1")[6]["cloud_link_id"].asString());
    const Json::Value reply = get("/v1.1/device", tokenOf("anna")).json();
    ASSERT_EQ(2u, reply["result"].size());
    EXPECT_EQ("cellar-1", reply["result"][0]["device_id"].asString());
}

TEST_F(CloudDevice, ANasForAnUnknownUserDoesNotStart) {
    EXPECT_THROW(Nas(nasOptions("nobody", "Shed", "shed-1")), std::runtime_error);
}

}  // namespace
