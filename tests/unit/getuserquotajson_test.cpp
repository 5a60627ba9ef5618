#include "state/GetUserQuotaJson.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "parsing.h"
#include "support/staterecords.h"

namespace {

using Lines = std::vector<std::string>;

CGetUserQuotaJson read(const std::string& text) {
    CGetUserQuotaJson reply;
    EXPECT_EQ(parse(reply, text), 1) << text.substr(0, 200);
    return reply;
}

/// The records of a reply with these elements.
Lines quotasOf(const std::string& elements) {
    return describeAll(read(R"({"quota_enable":true,"quota":[)" + elements + "]}").quotas);
}

}  // namespace

TEST(CGetUserQuotaJson, BeginsWithNothingLearnt) {
    const CGetUserQuotaJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.volumeFree, 0);
    EXPECT_EQ(reply.volumeTotal, 0);
    EXPECT_FALSE(reply.quotaEnabled);
    EXPECT_TRUE(reply.quotas.empty());
}

TEST(CGetUserQuotaJson, TheReplysStatusIsNotRead) {
    for (const char* text : {"{}", R"({"status":4})", R"({"status":99999999999})", R"({"status":[]})"})
        EXPECT_EQ(read(text).GetStatus(), 0) << text;
}

TEST(CGetUserQuotaJson, ReadsTheVolumesSizes) {
    const CGetUserQuotaJson reply = read(R"({"volume_free_size":"1.5 GB","volume_total_size":"2 tb"})");
    EXPECT_EQ(reply.volumeFree, 1610612736);
    EXPECT_EQ(reply.volumeTotal, 2199023255552);
    const struct {
        const char* size;
        int64_t bytes;
    } rows[] = {{"\"0 GB\"", 0}, {"\"5 XB\"", 0},    {"\"\"", 0},
                {"null", 0},     {"\"7 bytes\"", 7}, {"\"-5 KB\"", -5120},
                {"\"5\"", 0},    {"5000", 0},        {"\"99999999999 TB\"", INT64_MAX}};
    for (const auto& row : rows) {
        const std::string text = row.size;
        EXPECT_EQ(read(R"({"volume_free_size":)" + text + "}").volumeFree, row.bytes) << text;
        EXPECT_EQ(read(R"({"volume_total_size":)" + text + "}").volumeTotal, row.bytes) << text;
    }
}

TEST(CGetUserQuotaJson, AVolumeSizeThatCannotBeReadIsABadStatus) {
    for (const char* key : {"volume_free_size", "volume_total_size"}) {
        const auto statusFor = [key](size_t length) {
            return read("{\"" + std::string(key) + "\":\"" + std::string(length, '1') + "\"}").GetStatus();
        };
        EXPECT_EQ(statusFor(2047), 0) << key;
        EXPECT_EQ(statusFor(2048), -1) << key;
        EXPECT_EQ(statusFor(100000), -1) << key;
    }
}

TEST(CGetUserQuotaJson, WithoutQuotasTheParseEnds) {
    const struct {
        const char* value;
        bool isEnabled;
    } rows[] = {{"true", true},   {"false", false},   {"1", true},          {"0", false},   {"\"1\"", true},
                {"\"0\"", false}, {"\"true\"", true}, {"\"false\"", false}, {"null", false}};
    for (const auto& row : rows) {
        const CGetUserQuotaJson reply =
            read(R"({"volume_free_size":"1 GB","quota_size":"2 GB","quota_enable":)" +
                 std::string(row.value) + "}");
        EXPECT_EQ(reply.quotaEnabled, row.isEnabled) << row.value;
        EXPECT_EQ(reply.quotas.size(), row.isEnabled ? 1u : 0u) << row.value;
        EXPECT_EQ(reply.volumeFree, 1073741824);
    }
    EXPECT_FALSE(read(R"({"quota":[{"vol_id":1}]})").quotaEnabled);
    EXPECT_TRUE(read(R"({"quota_enable":false,"quota":5})").quotas.empty());
}

TEST(CGetUserQuotaJson, TheTopLevelIsTheOneRecordWhereThereIsNoArray) {
    const auto recordOf = [](const std::string& keys) {
        return describeAll(read(R"({"quota_enable":true)" + keys + "}").quotas);
    };
    EXPECT_EQ(recordOf(R"(,"quota_size":"3 KB","used_quota_size":"1 KB","avaiable_quota_size":"2 KB")"),
              Lines{"quota=3072 available=2048 used=1024"});
    EXPECT_EQ(recordOf(R"(,"vol_id":"7","quota_size":"3 KB","used_quota_size":"1 KB")"),
              Lines{"volume=7 quota=3072 available=2048 used=1024"});
    EXPECT_EQ(recordOf(R"(,"quota":null,"quota_size":"3 KB")"), Lines{"quota=3072"});
    EXPECT_EQ(recordOf(""), Lines{""});
}

TEST(CGetUserQuotaJson, AnElementNeedsItsVolumeAndBothSizes) {
    EXPECT_EQ(
        quotasOf(R"({"vol_id":1,"quota_size":"3 KB","used_quota_size":"1 KB"},
                          {"quota_size":"3 KB","used_quota_size":"1 KB"},
                          {"vol_id":null,"quota_size":"3 KB","used_quota_size":"1 KB"},
                          {"vol_id":2,"used_quota_size":"1 KB"},
                          {"vol_id":3,"quota_size":"3 KB"},
                          {"vol_id":4,"quota_size":"","used_quota_size":"1 KB"},
                          {"vol_id":5,"quota_size":"3 KB","used_quota_size":""},
                          {"vol_id":"6","quota_size":"4 KB","used_quota_size":"0 KB"})"),
        (Lines{"volume=1 quota=3072 available=2048 used=1024", "volume=6 quota=4096 available=4096 used=0"}));
    EXPECT_EQ(quotasOf(""), Lines{});
}

TEST(CGetUserQuotaJson, WhatIsAvailableIsWorkedOutWhereTheServerDoesNotTell) {
    const auto quotaOf = [](const std::string& keys) {
        return quotasOf(R"({"vol_id":0,"quota_size":"100 bytes",)" + keys + "}");
    };
    EXPECT_EQ(quotaOf(R"("used_quota_size":"40 bytes")"), Lines{"quota=100 available=60 used=40"});
    EXPECT_EQ(quotaOf(R"("used_quota_size":"40 bytes","avaiable_quota_size":"")"),
              Lines{"quota=100 available=60 used=40"});
    EXPECT_EQ(quotaOf(R"("used_quota_size":"40 bytes","avaiable_quota_size":"7 bytes")"),
              Lines{"quota=100 available=7 used=40"});
    // The key is spelled as servers spell it.
    EXPECT_EQ(quotaOf(R"("used_quota_size":"40 bytes","available_quota_size":"7 bytes")"),
              Lines{"quota=100 available=60 used=40"});
    EXPECT_EQ(quotaOf(R"("used_quota_size":"100 bytes")"), Lines{"quota=100 used=100"});
    EXPECT_EQ(quotaOf(R"("used_quota_size":"101 bytes")"), Lines{"quota=100 used=101"});
}

TEST(CGetUserQuotaJson, ASizeThatCannotBeReadSpoilsItsElement) {
    const std::string unreadable = "\"" + std::string(2048, '1') + "\"";
    const std::string good = R"("3 KB")";
    const auto elementOf = [&](const std::string& quota, const std::string& used,
                               const std::string& available) {
        return quotasOf(R"({"vol_id":1,"quota_size":)" + quota + R"(,"used_quota_size":)" + used +
                        R"(,"avaiable_quota_size":)" + available + "}");
    };
    EXPECT_EQ(elementOf(good, good, good).size(), 1u);
    EXPECT_EQ(elementOf(unreadable, good, good), Lines{});
    EXPECT_EQ(elementOf(good, unreadable, good), Lines{});
    EXPECT_EQ(elementOf(good, R"("1 KB")", unreadable), Lines{});
}

TEST(CGetUserQuotaJson, TheTopLevelRecordIsKeptWhateverCannotBeRead) {
    const std::string unreadable = "\"" + std::string(2048, '1') + "\"";
    CGetUserQuotaJson reply;
    EXPECT_EQ(
        parse(reply,
              R"({"quota_enable":1,"quota_size":"3 KB","used_quota_size":"1 KB","avaiable_quota_size":)" +
                  unreadable + "}"),
        1);
    ASSERT_EQ(reply.quotas.size(), 1u);
    EXPECT_EQ(reply.quotas[0].llQuotaSize, 3072);
    EXPECT_EQ(reply.quotas[0].llUsedSize, 1024);
    EXPECT_EQ(reply.quotas[0].llAvailableSize, -1);
}

TEST(CGetUserQuotaJson, HugeSizesStayInRange) {
    EXPECT_EQ(quotasOf(R"({"vol_id":1,"quota_size":"99999999999 TB","used_quota_size":"1 bytes"})"),
              Lines{"volume=1 quota=9223372036854775807 available=9223372036854775806 used=1"});
    EXPECT_EQ(
        quotasOf(R"({"vol_id":1,"quota_size":"99999999999 TB","used_quota_size":"-99999999999 TB"})"),
        Lines{"volume=1 quota=9223372036854775807 available=9223372036854775807 used=-9223372036854775808"});
}

TEST(CGetUserQuotaJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CGetUserQuotaJson>(
        {R"({"volume_free_size":[]})", R"({"quota_enable":true,"quota":{}})",
         R"({"quota_enable":true,"quota":"x"})", R"({"quota_enable":true,"vol_id":99999999999})",
         R"({"quota_enable":true,"quota":[{"vol_id":99999999999,"quota_size":"1 GB"}]})",
         R"({"quota_enable":true,"quota":[{"vol_id":1,"quota_size":[]}]})"});
    EXPECT_EQ(quotasOf(R"(null,5,"x",[],{"vol_id":1,"quota_size":"3 KB","used_quota_size":"3 KB"})"),
              Lines{"volume=1 quota=3072 used=3072"});
}
