#include "cloud/ZenoGetAllDeviceInfoJson.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <string>
#include <vector>

#include "cloudcodes.h"
#include "support/devicerecords.h"

namespace {

using Lines = std::vector<std::string>;
using Device = _NAS_DEVICE_INFORMATION_API_V11;

CZenoGetAllDeviceInfoJson read(const std::string& devices, const std::string& code = "0") {
    CZenoGetAllDeviceInfoJson reply;
    EXPECT_EQ(parse(reply, R"({"code":)" + code + R"(,"result":[)" + devices + "]}"), 1)
        << devices.substr(0, 200);
    return reply;
}

/// The one device with these keys.
Lattice::DevicePtr deviceOf(const std::string& keys) {
    CZenoGetAllDeviceInfoJson reply = read("{" + keys + "}");
    EXPECT_EQ(reply.devices.size(), 1u);
    return std::move(reply.devices.at(0));
}

Lines lanIPsOf(const Device& device) {
    return describeList(device.info.lppLanIPs, device.info.nLanIPCount);
}
Lines wanIPsOf(const Device& device) {
    return describeList(device.info.lppWanIPs, device.info.nWanIPCount);
}
Lines servicesOf(const Device& device) {
    return describeList(device.lppServices, device.nServiceCount);
}
Lines usersOf(const Device& device) {
    return describeList(device.lppUsers, device.nUserCount);
}

/// Everything that a device tells, as one line.
std::string wholeOf(const Device& device) {
    std::string whole = describe(device) + describe(device.info) + describe(device.info.lanGateway) +
                        describe(device.modelInfo) + describe(device.permissions);
    for (const Lines& lines : {lanIPsOf(device), wanIPsOf(device), servicesOf(device), usersOf(device)})
        for (const std::string& line : lines) whole += line;
    return whole;
}

/// The text fields of a record by their keys, and where they stand.
struct Keys {
    const char* object;  ///< the key of the object that they are in
    Lines keys;
    std::string (*describe)(const Device&);
};

const std::vector<Keys>& textKeys() {
    static const std::vector<Keys> all = {
        {"",
         {"device_id", "token", "device_name", "access_code", "access_control_mode", "user_id", "description",
          "domain_name"},
         [](const Device& device) { return describe(device); }},
        {"info",
         {"device_type", "model_name", "fw_model_name", "hw_serial_number", "fw_serial_number", "mac_address",
          "host_name", "firmware_version", "firmware_build_number", "firmware_patch_version", "agent_version",
          "firmware_number"},
         [](const Device& device) { return describe(device.info); }},
        {"model_info",
         {"name", "latest_fw_version", "latest_fw_build_number", "latest_fw_patch_version", "img_url"},
         [](const Device& device) { return describe(device.modelInfo); }},
        {"permissions",
         {"basic_info", "remote_access", "public_local_service", "private_local_service",
          "public_package_services", "protected_package_services", "private_package_services"},
         [](const Device& device) { return describe(device.permissions); }},
    };
    return all;
}

/// A device whose text of that key is `value`, JSON as it stands.
std::string keysWith(const Keys& keys, const std::string& key, const std::string& value) {
    const std::string member = "\"" + key + "\":" + value;
    return *keys.object == '\0' ? member : "\"" + std::string(keys.object) + "\":{" + member + "}";
}

}  // namespace

TEST(CZenoGetAllDeviceInfoJson, TellsTheCode) {
    expectReadsCodes<CZenoGetAllDeviceInfoJson>();
}

TEST(CZenoGetAllDeviceInfoJson, EachTextComesFromItsKey) {
    for (const Keys& keys : textKeys())
        for (const std::string& key : keys.keys) {
            const auto device = deviceOf(keysWith(keys, key, "\"v 書\""));
            EXPECT_EQ(keys.describe(*device), key + "=v 書");
            EXPECT_EQ(wholeOf(*device), key + "=v 書");
        }
}

TEST(CZenoGetAllDeviceInfoJson, TextsAreCutToTheirFields) {
    const std::string cut(259, 'x');
    for (const Keys& keys : textKeys())
        for (const std::string& key : keys.keys)
            for (const size_t length : {size_t{259}, size_t{260}, size_t{2047}}) {
                const std::string text(length, 'x');
                EXPECT_EQ(wholeOf(*deviceOf(keysWith(keys, key, "\"" + text + "\""))), key + "=" + cut)
                    << length;
            }
    EXPECT_EQ(wholeOf(*deviceOf("\"token\":\"" + std::string(2048, 'x') + "\"")), "");
    const std::string address = "{\"ipv4\":\"" + std::string(260, 'x') + "\"}";
    const auto device =
        deviceOf("\"info\":{\"lan_gateway\":" + address + ",\"lan_ips\":[" + address + "],\"wan_ips\":[" +
                 address + "]},\"local_services\":[{\"uri\":\"" + std::string(260, 'x') +
                 "\"}],\"local_users\":[{\"user_name\":\"" + std::string(260, 'x') + "\"}]");
    EXPECT_EQ(describe(device->info.lanGateway), "ipv4=" + cut);
    EXPECT_EQ(lanIPsOf(*device), Lines{"ipv4=" + cut});
    EXPECT_EQ(wanIPsOf(*device), Lines{"ipv4=" + cut});
    EXPECT_EQ(std::wcslen(device->lppServices[0]->szUri), 259u);
    EXPECT_EQ(std::wcslen(device->lppUsers[0]->szUserName), 259u);
}

TEST(CZenoGetAllDeviceInfoJson, ATextMayBeANumberOrBrokenUtf8) {
    EXPECT_EQ(wholeOf(*deviceOf(R"("access_control_mode":2)")), "access_control_mode=2");
    EXPECT_EQ(wholeOf(*deviceOf("\"description\":\"a\xFF z\"")), "description=a\xEF\xBF\xBD z");
    EXPECT_EQ(wholeOf(*deviceOf(R"("permissions":{"basic_info":true})")), "basic_info=true");
}

TEST(CZenoGetAllDeviceInfoJson, ReadsTheAddresses) {
    const auto device = deviceOf(R"("info":{
        "lan_gateway":{"name":"gw","ipv4":"10.0.0.1","ipv6":"fe80::1"},
        "lan_ips":[{"name":"eth0","ipv4":"10.0.0.2","ipv6":"fe80::2"},{},{"ipv4":"10.0.0.3"}],
        "wan_ips":[{"name":"ppp0","ipv4":"203.0.113.7"}]})");
    EXPECT_EQ(describe(device->info.lanGateway), "name=gw ipv4=10.0.0.1 ipv6=fe80::1");
    EXPECT_EQ(lanIPsOf(*device), (Lines{"name=eth0 ipv4=10.0.0.2 ipv6=fe80::2", "", "ipv4=10.0.0.3"}));
    EXPECT_EQ(wanIPsOf(*device), Lines{"name=ppp0 ipv4=203.0.113.7"});
}

TEST(CZenoGetAllDeviceInfoJson, ReadsTheServices) {
    EXPECT_EQ(servicesOf(*deviceOf(R"("local_services":[
                  {"service_name":"web","protocol":"http","uri":"/","external_port":8080,"internal_port":80,
                   "published":true,"private":false},
                  {"external_port":"443","internal_port":"8443","published":0,"private":1},
                  {"published":"true","private":"false"},{}])")),
              (Lines{"service_name=web protocol=http uri=/ external_port=8080 internal_port=80 published",
                     "external_port=443 internal_port=8443 private", "published", ""}));
}

TEST(CZenoGetAllDeviceInfoJson, ReadsTheUsers) {
    EXPECT_EQ(usersOf(*deviceOf(R"("local_users":[{"user_name":"anna"},{"user_name":"ben","name":"x"}])")),
              (Lines{"user_name=anna", "user_name=ben"}));
}

TEST(CZenoGetAllDeviceInfoJson, WhatIsMissingOrAnotherTypeInADeviceIsEmpty) {
    for (const char* keys :
         {"", R"("device_id":null,"info":null,"local_services":null,"model_info":null)",
          R"("info":5,"model_info":"x","permissions":[],"local_users":{},"local_services":"x")",
          R"("info":{"lan_gateway":[],"lan_ips":{},"wan_ips":7},"local_users":[],"local_services":[])",
          R"("info":{"lan_ips":[null,5,"x",[]]},"local_users":[null,7],"local_services":["x",true])",
          R"("local_services":[{"external_port":[],"internal_port":null,"published":null}])"})
        EXPECT_EQ(wholeOf(*deviceOf(keys)), "") << keys;
}

TEST(CZenoGetAllDeviceInfoJson, DevicesKeepTheirOrderAndWhatIsNoObjectIsPassedOver) {
    const CZenoGetAllDeviceInfoJson reply =
        read(R"(null,{"device_id":"d1"},5,"x",[],{},{"device_id":"d2","local_users":[{"user_name":"a"}]})");
    Lines devices;
    for (const auto& device : reply.devices) devices.push_back(wholeOf(*device));
    EXPECT_EQ(devices, (Lines{"device_id=d1", "", "device_id=d2user_name=a"}));
}

TEST(CZenoGetAllDeviceInfoJson, AListMayBeMissing) {
    for (const char* keys : {R"("code":0)", R"("code":0,"result":null)", R"("code":0,"result":[])",
                             R"("code":0,"devices":[{}])"}) {
        CZenoGetAllDeviceInfoJson reply;
        EXPECT_EQ(parse(reply, "{" + std::string(keys) + "}"), 1) << keys;
        EXPECT_EQ(reply.GetStatus(), 0);
        EXPECT_TRUE(reply.devices.empty());
    }
}

TEST(CZenoGetAllDeviceInfoJson, ARefusalHasNoDevices) {
    EXPECT_TRUE(read(R"({"device_id":"d1"})", "1013002").devices.empty());
    CZenoGetAllDeviceInfoJson reply;
    EXPECT_EQ(parse(reply, R"({"code":1013001,"result":"none"})"), 1);
    EXPECT_EQ(reply.GetStatus(), 3);
}

TEST(CZenoGetAllDeviceInfoJson, RefusesWhatCannotBeRead) {
    const auto device = [](const std::string& keys) {
        return R"({"code":0,"result":[{"device_id":"d1","local_users":[{"user_name":"a"}]},{)" + keys + "}]}";
    };
    expectRefusesAllButObjects<CZenoGetAllDeviceInfoJson>(
        {R"({"code":99999999999})", R"({"code":0,"result":{}})", R"({"code":0,"result":"x"})",
         R"({"code":0,"result":7})", device(R"("token":[])"), device(R"("info":{"host_name":{}})"),
         device(R"("info":{"lan_gateway":{"name":[]}})"), device(R"("info":{"wan_ips":[{},{"ipv6":{}}]})"),
         device(R"("local_services":[{},{"external_port":99999999999}])"),
         device(R"("local_services":[{"published":99999999999}])"),
         device(R"("local_services":[{"private":[]}])"), device(R"("local_users":[{},{"user_name":[]}])"),
         device(R"("model_info":{"img_url":[]})"), device(R"("permissions":{"remote_access":{}})")});
}
