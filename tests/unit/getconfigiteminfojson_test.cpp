#include "config/GetConfigItemInfoJson.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "parsing.h"

namespace {

using Items = std::vector<std::pair<uint32_t, std::wstring>>;

std::string item(const std::string& section, const std::string& key, const std::string& value) {
    return R"({"section":")" + section + R"(","key":")" + key + R"(","value":)" + value + "}";
}

std::string listOf(const std::string& items) {
    return R"({"config":[)" + items + "]}";
}

Items itemsOf(const std::string& text) {
    CGetConfigItemInfoJson reply;
    EXPECT_EQ(parse(reply, text), 1) << text.substr(0, 200);
    Items items;
    for (const _GET_DEVICE_CONFIG_ITEM_INFO& element : reply.items)
        items.emplace_back(element.flag, element.value);
    return items;
}

}  // namespace

TEST(CGetConfigItemInfoJson, ReadsEachFieldFromItsKey) {
    CGetConfigItemInfoJson reply;
    EXPECT_EQ(parse(reply, R"({"device":"laptop \u6587","duid":"d-1","total":"2","config":[
        {"section":"Synchronize","key":"smart sync","value":"1"},
        {"section":"mails","key":"SERVER PORT","value":25}]})"),
              1);
    EXPECT_EQ(reply.GetStatus(), 0);
    EXPECT_EQ(reply.deviceName, L"laptop \x6587");
    EXPECT_EQ(reply.deviceUID, L"d-1");
    EXPECT_EQ(reply.total, 2);
    ASSERT_EQ(reply.items.size(), 2u);
    EXPECT_EQ(reply.items[0].flag, 0x1u);
    EXPECT_EQ(reply.items[0].value, L"1");
    EXPECT_EQ(reply.items[1].flag, 0x200u);
    EXPECT_EQ(reply.items[1].value, L"25");
}

TEST(CGetConfigItemInfoJson, UndoesTheEncodingsOfTheWire) {
    EXPECT_EQ(itemsOf(listOf(item("Policy", "black file filter", R"("*.tmp\\t~*\\t")") + "," +
                             item("Mails", "sender password", R"("cMOkw5/mloc=")") + "," +
                             item("Mails", "sender username", R"("a\\tb")"))),
              (Items{{0x4, L"*.tmp\t~*\t"}, {0x80, L"p\x00E4\x00DF\x6587"}, {0x40, L"a\\tb"}}));
}

TEST(CGetConfigItemInfoJson, WhatTheTableDoesNotKnowIsDropped) {
    EXPECT_EQ(itemsOf(listOf(item("Mails", "smart sync", R"("1")") + "," + item("Mails", "", R"("1")") + "," +
                             item("Policy", "new one", "[]") + R"(,{"section":"Mails"},{},null,5,[],"x",)" +
                             item("Config", "manual version", R"("2")"))),
              (Items{{0x2000, L"2"}}));
}

TEST(CGetConfigItemInfoJson, AnAbsentValueIsEmpty) {
    EXPECT_EQ(
        itemsOf(listOf(
            R"({"section":"Config","key":"official version"},)" + item("Config", "manual version", "null") +
            "," + item("Mails", "server name", R"("")") + "," + item("Mails", "sender password", "null"))),
        (Items{{0x1000, L""}, {0x2000, L""}, {0x100, L""}, {0x80, L""}}));
}

TEST(CGetConfigItemInfoJson, AValueMayHaveAnyLength) {
    for (const size_t length : {size_t{2047}, size_t{2048}, size_t{100000}})
        EXPECT_EQ(itemsOf(listOf(item("Mails", "server name", '"' + std::string(length, 'x') + '"'))),
                  (Items{{0x100, std::wstring(length, L'x')}}));
}

TEST(CGetConfigItemInfoJson, NamesThatAreTooLongAreNone) {
    CGetConfigItemInfoJson reply;
    const std::string text(2048, 'x');
    EXPECT_EQ(parse(reply, R"({"device":")" + text + R"(","duid":")" + text + R"("})"), 1);
    EXPECT_EQ(reply.deviceName + reply.deviceUID, L"");
}

TEST(CGetConfigItemInfoJson, BrokenUtf8IsReplacedAndInANameMatchesNothing) {
    EXPECT_EQ(itemsOf(listOf(item("Mails", "server name", "\"a\xFF\xC3\"") + "," +
                             item("Mails\xFF", "server name", R"("1")"))),
              (Items{{0x100, L"a\xFFFD\xFFFD"}}));
}

TEST(CGetConfigItemInfoJson, ADeviceMayHaveNoItems) {
    for (const char* text : {"{}", R"({"config":null})", R"({"config":[]})", R"({"total":-5,"config":[]})"})
        EXPECT_EQ(itemsOf(text), Items{}) << text;
    CGetConfigItemInfoJson reply;
    EXPECT_EQ(parse(reply, "{}"), 1);
    EXPECT_EQ(reply.total, 0);
}

TEST(CGetConfigItemInfoJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CGetConfigItemInfoJson>(
        {R"({"total":99999999999})", R"({"config":{}})", R"({"config":"x"})", R"({"config":5})",
         R"({"device":[]})", R"({"duid":{}})", listOf(R"({"section":[],"key":"x"})"),
         listOf(R"({"section":"Mails","key":{}})"), listOf(item("Mails", "server name", "[]"))});
}
