#include "config/GetDeviceListJson.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parsing.h"
#include "support/configrecords.h"

namespace {

using Lines = std::vector<std::string>;

std::string listOf(const std::string& devices) {
    return R"({"total":1,"device":[)" + devices + "]}";
}

Lines devicesOf(const std::string& text) {
    CGetDeviceListJson reply;
    EXPECT_EQ(parse(reply, text), 1) << text.substr(0, 200);
    Lines lines;
    for (const _WFM_TORVI_DEVICE_INFORMATION& device : reply.devices) lines.push_back(describe(device));
    return lines;
}

}  // namespace

TEST(CGetDeviceListJson, ReadsEachFieldFromItsKey) {
    CGetDeviceListJson reply;
    EXPECT_EQ(parse(reply, R"({"total":"70","device":[]})"), 1);
    EXPECT_EQ(reply.GetStatus(), 0);
    EXPECT_EQ(reply.total, 70u);
    EXPECT_EQ(devicesOf(listOf(R"({"device_name":"laptop \u6587","device_uid":"d-1","ip":"192.0.2.7",
                                   "modify_time":1700000000},{"device_uid":"d-2","modify_time":"5"},{})")),
              (Lines{"name=laptop \xE6\x96\x87 uid=d-1 ip=192.0.2.7 time=1700000000", "uid=d-2 time=5", ""}));
}

TEST(CGetDeviceListJson, ATimeHas64Bits) {
    for (const char* sent : {"99999999999", "\"99999999999\""})
        EXPECT_EQ(devicesOf(listOf(R"({"modify_time":)" + std::string(sent) + "}")),
                  Lines{"time=99999999999"});
    EXPECT_EQ(devicesOf(listOf(R"({"modify_time":-5},{"modify_time":null},{"modify_time":"x"},
                                  {"modify_time":[]})")),
              (Lines{"time=-5", "", "", ""}));
}

TEST(CGetDeviceListJson, TextsAreCut) {
    for (const size_t length : {size_t{259}, size_t{260}, size_t{2047}, size_t{2048}}) {
        const std::string text = '"' + std::string(length, 'x') + '"';
        const std::string kept(length < 2048 ? 259 : 0, 'x');
        EXPECT_EQ(devicesOf(listOf(R"({"device_name":)" + text + R"(,"device_uid":)" + text + R"(,"ip":)" +
                                   text + "}")),
                  Lines{kept.empty() ? "" : "name=" + kept + " uid=" + kept + " ip=" + kept})
            << length;
    }
}

TEST(CGetDeviceListJson, BrokenUtf8IsReplaced) {
    EXPECT_EQ(devicesOf(listOf("{\"device_name\":\"a\xFF\"}")), Lines{"name=a\xEF\xBF\xBD"});
}

TEST(CGetDeviceListJson, WhatHasNoRoomIsCountedAlone) {
    CGetDeviceListJson reply;
    reply.room = 2;
    EXPECT_EQ(parse(reply, listOf(R"({},null,5,[],{"ip":"b"},{"ip":[]},{})")), 1);
    EXPECT_EQ(reply.number, 4u);
    ASSERT_EQ(reply.devices.size(), 2u);
    EXPECT_EQ(describe(reply.devices[1]), "ip=b");
}

TEST(CGetDeviceListJson, ThereMayBeNoDevices) {
    for (const char* text : {"{}", R"({"total":-5})", R"({"device":null})", R"({"total":0,"device":[]})"}) {
        CGetDeviceListJson reply;
        EXPECT_EQ(parse(reply, text), 1) << text;
        EXPECT_EQ(reply.total, 0u) << text;
        EXPECT_TRUE(reply.devices.empty());
    }
}

TEST(CGetDeviceListJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CGetDeviceListJson>(
        {R"({"total":99999999999})", R"({"device":{}})", R"({"device":"x"})", listOf(R"({"device_name":[]})"),
         listOf(R"({"device_uid":{}})"), listOf(R"({"ip":[]})"),
         listOf(R"({"modify_time":99999999999999999999})"), listOf(R"({"modify_time":1e300})")});
}
