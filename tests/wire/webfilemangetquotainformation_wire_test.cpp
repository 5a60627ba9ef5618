// WebFileManGetQuotaInformation: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "WebFileManShareAPI.h"
#include "lists.h"
#include "refusals.h"
#include "replies.h"
#include "routes.h"
#include "sessioncall.h"
#include "support/staterecords.h"

using namespace wire;

namespace {

using Lines = std::vector<std::string>;

struct QuotaCall : SessionCall<QuotaCall> {
    bool getAll = false;
    char enabledFlag = 0x5A;  // a bool, as garbage
    int64_t volumeFree = -77;
    int64_t volumeTotal = -77;
    ListOf<USER_QUOTA_INFO> quotas;

    bool* enabledOut = reinterpret_cast<bool*>(&enabledFlag);
    int64_t* freeOut = &volumeFree;
    int64_t* totalOut = &volumeTotal;
    uint32_t* countOut = &quotas.count;
    USER_QUOTA_INFO*** listOut = &quotas.list;

    using SessionCall::SessionCall;
    uint32_t call() {
        return WebFileManGetQuotaInformation(session, kServer, port, slaveID, getAll, nullptr, enabledOut,
                                             freeOut, totalOut, countOut, listOut, resultWord);
    }
    bool isUntouched() const {
        return result == 0xABCD && enabledFlag == 0x5A && volumeFree == -77 && volumeTotal == -77 &&
               quotas.isUntouched();
    }
    bool isZero() const {
        return enabledFlag == 0 && volumeFree == 0 && volumeTotal == 0 && quotas.isEmpty();
    }
};

const std::string kVolume = R"("volume_free_size":"1 GB","volume_total_size":"1.5 TB")";

/// The records of a reply that is understood; the volume's sizes arrive with them.
Lines quotasOf(const std::string& keys) {
    RawServer server({Reply::json("{" + kVolume + "," + keys + "}")});
    QuotaCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.enabledFlag, 1);
    EXPECT_EQ(call.volumeFree, 1073741824);
    EXPECT_EQ(call.volumeTotal, 1649267441664);
    EXPECT_EQ(call.quotas.count == 0, call.quotas.list == nullptr);
    log.expectNoLines();
    return call.quotas.take();
}

}  // namespace

TEST(WebFileManGetQuotaInformationWire, AsksTheSessionsServiceAndNodeForOneVolumeOrAll) {
    for (const bool getAll : {false, true})
        expectOnEveryRoute(std::string("func=nubo_get_quota_info&sid=sid123") + (getAll ? "&get_all=1" : ""),
                           [getAll](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
                               QuotaCall call;
                               call.slaveID = slaveID;
                               call.getAll = getAll;
                               call.run(session, port);
                           });
}

TEST(WebFileManGetQuotaInformationWire, WithoutQuotasTheVolumesSizesArriveAndNoList) {
    for (const char* enable : {R"(,"quota_enable":false)", R"(,"quota_enable":"0")", ""}) {
        SCOPED_TRACE(enable);
        RawServer server({Reply::json("{" + kVolume + enable +
                                      R"(,"quota_size":"2 GB","used_quota_size":"1 GB",
                                          "quota":[{"vol_id":1,"quota_size":"2 GB","used_quota_size":"1 GB"}]})")});
        QuotaCall call(server);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.enabledFlag, 0);
        EXPECT_EQ(call.volumeFree, 1073741824);
        EXPECT_EQ(call.volumeTotal, 1649267441664);
        EXPECT_TRUE(call.quotas.isEmpty());
    }
}

TEST(WebFileManGetQuotaInformationWire, EachVolumeHasItsRecord) {
    EXPECT_EQ(quotasOf(R"("quota_enable":true,"quota":[
                  {"vol_id":1,"quota_size":"100 KB","used_quota_size":"40 KB","avaiable_quota_size":"7 KB"},
                  {"vol_id":"2","quota_size":"100 KB","used_quota_size":"40 KB"},
                  {"quota_size":"100 KB","used_quota_size":"40 KB"},
                  {"vol_id":3,"quota_size":"100 KB"}])"),
              (Lines{"volume=1 quota=102400 available=7168 used=40960",
                     "volume=2 quota=102400 available=61440 used=40960"}));
    EXPECT_EQ(quotasOf(R"("quota_enable":true,"quota":[])"), Lines{});
    EXPECT_EQ(quotasOf(R"("quota_enable":"true","quota":[{"quota_size":"100 KB"}])"), Lines{});
}

TEST(WebFileManGetQuotaInformationWire, TheTopLevelIsTheOneRecordWhereThereIsNoArray) {
    EXPECT_EQ(quotasOf(R"("quota_enable":1,"quota_size":"100 KB","used_quota_size":"40 KB")"),
              Lines{"quota=102400 available=61440 used=40960"});
    EXPECT_EQ(quotasOf(R"("quota_enable":true,"vol_id":4,"quota_size":"100 KB")"),
              Lines{"volume=4 quota=102400"});
    EXPECT_EQ(quotasOf(R"("quota_enable":true)"), Lines{"available=0"});
}

TEST(WebFileManGetQuotaInformationWire, NothingIsAvailableOnceTheQuotaIsUsedUp) {
    const auto quotaOf = [](const std::string& used, const std::string& more = "") {
        return quotasOf(
            R"("quota_enable":true,"quota":[{"vol_id":0,"quota_size":"100 bytes","used_quota_size":")" +
            used + "\"" + more + "}]");
    };
    EXPECT_EQ(quotaOf("40 bytes"), Lines{"quota=100 available=60 used=40"});
    EXPECT_EQ(quotaOf("100 bytes"), Lines{"quota=100 available=0 used=100"});
    EXPECT_EQ(quotaOf("101 bytes"), Lines{"quota=100 available=0 used=101"});
    EXPECT_EQ(quotaOf("100 bytes", R"(,"avaiable_quota_size":"7 bytes")"),
              Lines{"quota=100 available=0 used=100"});
    // Another spelling of the key isn't the key.
    EXPECT_EQ(quotaOf("40 bytes", R"(,"available_quota_size":"7 bytes")"),
              Lines{"quota=100 available=60 used=40"});
}

TEST(WebFileManGetQuotaInformationWire, AVolumeSizeThatCannotBeReadIsMinus1AndLeavesTheOutsAtZero) {
    const std::string tooLong = '"' + std::string(2048, '1') + '"';
    expectReplies<QuotaCall>(
        {
            {R"({"volume_free_size":)" + tooLong + R"(,"volume_total_size":"1 GB","quota_enable":true})",
             0,
             -1,
             {"[WFM] WebFileManGetQuotaInformation: ERROR_UNKNOWN (-1)"}},
            {R"({"volume_free_size":"1 GB","volume_total_size":)" + tooLong + "}",
             0,
             -1,
             {"[WFM] WebFileManGetQuotaInformation: ERROR_UNKNOWN (-1)"}},
        },
        [](const QuotaCall& call) { EXPECT_TRUE(call.isZero()); });
}

TEST(WebFileManGetQuotaInformationWire, TheServersStatusIsNotLookedAt) {
    RawServer server({Reply::json(R"({"status":4,"volume_free_size":"1 GB"})")});
    QuotaCall call(server);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.volumeFree, 1073741824);
}

TEST(WebFileManGetQuotaInformationWire, WhatCannotBeReadIs14AndLeavesTheOutsAtZero) {
    const std::vector<std::string> lines = {
        "[WFM] WebFileManGetQuotaInformation: WFM_PARSE_XML_FAIL",
        "[WFM] WebFileManGetQuotaInformation(127.0.0.1:{port}) failed dwStatus(14)"};
    expectReplies<QuotaCall>(
        {
            {R"({"volume_free_size":"1 GB","quota_enable":true,"quota":"x"})", 14, -1, lines},
            {R"({"volume_free_size":["1 GB"]})", 14, -1, lines},
            {R"({"volume_free_size":"1 GB","quota_enable":true,"quota":[{"vol_id":1,"quota_size":{}}]})", 14,
             -1, lines},
        },
        [](const QuotaCall& call) { EXPECT_TRUE(call.isZero()); });
}

TEST(WebFileManGetQuotaInformationWire, AFailedCallLeavesTheOutsAtZero) {
    RawServer server({Reply::status(503)});
    QuotaCall call(server);
    EXPECT_EQ(call.run(), 12u);
    EXPECT_TRUE(call.isZero());
}

TEST(WebFileManGetQuotaInformationWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<QuotaCall>(
        log, session.get(), "WebFileManGetQuotaInformation",
        {[](QuotaCall& call) { call.resultWord = nullptr; },
         [](QuotaCall& call) { call.enabledOut = nullptr; }, [](QuotaCall& call) { call.freeOut = nullptr; },
         [](QuotaCall& call) { call.totalOut = nullptr; }, [](QuotaCall& call) { call.countOut = nullptr; },
         [](QuotaCall& call) { call.listOut = nullptr; }});
}
