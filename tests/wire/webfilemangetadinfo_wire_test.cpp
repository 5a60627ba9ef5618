// WebFileManGetAdInfo: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "recordlist.h"
#include "refusals.h"
#include "routes.h"
#include "sessioncall.h"
#include "support/userrecords.h"

using namespace wire;

namespace {

using Lines = std::vector<std::string>;

struct AdInfoCall : SessionCall<AdInfoCall> {
    int32_t capacity = 3;
    CallersList<_WFM_TORVI_AD_INFORMATION> domains{5};
    _WFM_TORVI_AD_INFORMATION** list = domains.data();
    uint32_t count = 0xABCD;
    uint32_t* countOut = &count;

    using SessionCall::SessionCall;
    uint32_t call() {
        return WebFileManGetAdInfo(session, kServer, port, capacity, nullptr, resultWord, list, countOut);
    }
    bool isUntouched() const { return result == 0xABCD && count == 0xABCD && domains.isUntouched(); }
};

/// A reply with that many domains.
std::string listOf(int count, const std::string& keys) {
    std::string domains;
    for (int i = 1; i <= count; ++i)
        domains += std::string(i > 1 ? "," : "") + R"({"domain":"d)" + std::to_string(i) + R"("})";
    return "{" + keys + R"("datas":[)" + domains + "]}";
}
std::string listOf(int count) {
    return listOf(count, R"("status":1,"count":)" + std::to_string(count) + ",");
}

LogLine numberLine(int number) {
    return {"Debug", "[WFMShare] WebFileManGetAdInfo: AdInfo num(" + std::to_string(number) + ")"};
}
const char* const kInsufficientBuffer = "[WFMShare] WebFileManGetAdInfo: ERROR_INSUFFICIENT_BUFFER";

}  // namespace

TEST(WebFileManGetAdInfoWire, AsksTheSessionsServiceAndNamesNoNode) {
    expectOnEveryRoute(
        "func=get_ad_info&sid=sid123",
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
            AdInfoCall call;
            call.run(session, port);
        },
        routesWithoutNode());
}

TEST(WebFileManGetAdInfoWire, TheDomainsAreCopiedAndASuccessHasALine) {
    RawServer server({Reply::json(R"({"status":1,"ADSupport":1,"TrustedDomainEnable":1,"count":2,"datas":[
        {"domain":"corp.example","netbios":"CORP"},{"domain":"\u6587.example"}]})")});
    AdInfoCall call(server);
    LogCapture log(32 | 4);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.count, 2u);
    EXPECT_EQ(call.domains.texts(), (Lines{"domain=corp.example netbios=CORP", "domain=\xE6\x96\x87.example",
                                           "untouched", "untouched", "untouched"}));
    log.expectLines({numberLine(2)});
}

TEST(WebFileManGetAdInfoWire, AListThatIsTooSmallIs122WithTheNumberAndTwoLines) {
    const struct {
        int32_t capacity;
        std::string reply;
        int domains;
        uint32_t count;
    } rows[] = {{4, listOf(5), 5, 5},
                {0, listOf(1), 1, 1},
                {-1, listOf(0), 0, 0},
                {-1, listOf(2), 2, 2},
                // The number is the server's own, if it gives one.
                {1, listOf(2, R"("status":1,"count":9,)"), 2, 9},
                {1, listOf(2, R"("status":1,"count":-1,)"), 2, 0},
                {1, listOf(2, R"("status":1,)"), 2, 2}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply + " for " + std::to_string(row.capacity));
        RawServer server({Reply::json(row.reply)});
        AdInfoCall call(server);
        call.capacity = row.capacity;
        LogCapture log(32 | 4);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 122u);
        EXPECT_EQ(call.count, row.count);
        EXPECT_TRUE(call.domains.isUntouched());
        log.expectLines({numberLine(row.domains), kInsufficientBuffer});
    }
}

TEST(WebFileManGetAdInfoWire, AListMayBeAsLongAsItIs) {
    const struct {
        int32_t capacity;
        std::string reply;
        uint32_t count;
    } rows[] = {{5, listOf(5), 5},
                {0, listOf(0), 0},
                {0, R"({"status":1})", 0},
                {0, R"({"status":1,"count":7,"datas":null})", 0},
                // What counts is what came.
                {2, listOf(2, R"("status":1,"count":9,)"), 2}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        RawServer server({Reply::json(row.reply)});
        AdInfoCall call(server);
        call.capacity = row.capacity;
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.count, row.count);
        log.expectNoLines();
    }
}

TEST(WebFileManGetAdInfoWire, ADomainWithoutARecordIsSkipped) {
    RawServer server({Reply::json(listOf(3))});
    AdInfoCall call(server);
    call.list[0] = nullptr;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.count, 2u);
    EXPECT_EQ(call.domains.texts(), (Lines{"untouched", "domain=d2", "domain=d3", "untouched", "untouched"}));
}

TEST(WebFileManGetAdInfoWire, LongNamesAreCut) {
    for (const size_t length : {size_t{259}, size_t{260}, size_t{2047}, size_t{2048}}) {
        SCOPED_TRACE(length);
        const std::string text(length, 'x');
        RawServer server({Reply::json(R"({"status":1,"datas":[{"domain":")" + text + R"(","netbios":")" +
                                      text + R"("}]})")});
        AdInfoCall call(server);
        EXPECT_EQ(call.run(), 0u);
        const std::string cut(length < 2048 ? 259 : 0, 'x');
        EXPECT_EQ(call.domains.texts()[0], cut.empty() ? "" : "domain=" + cut + " netbios=" + cut);
    }
}

TEST(WebFileManGetAdInfoWire, AnyOtherStatusIsMinus1WithoutALine) {
    for (const char* keys : {R"("status":0,)", R"("status":-3,)", R"("status":4,)", R"("status":"2",)", ""}) {
        SCOPED_TRACE(keys);
        RawServer server({Reply::json(listOf(4, keys + std::string(R"("count":4,)")))});
        AdInfoCall call(server);
        LogCapture log(32 | 4);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0xFFFFFFFFu);
        EXPECT_EQ(call.count, 0u);
        EXPECT_TRUE(call.domains.isUntouched());
        log.expectNoLines();
    }
}

TEST(WebFileManGetAdInfoWire, AFailedCallCountsNone) {
    RawServer server({Reply::status(503)});
    AdInfoCall call(server);
    EXPECT_EQ(call.run(), 12u);
    EXPECT_EQ(call.count, 0u);
    EXPECT_TRUE(call.domains.isUntouched());
}

TEST(WebFileManGetAdInfoWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<AdInfoCall>(
        log, session.get(), "WebFileManGetAdInfo",
        {[](AdInfoCall& call) { call.resultWord = nullptr; }, [](AdInfoCall& call) { call.list = nullptr; },
         [](AdInfoCall& call) { call.countOut = nullptr; }},
        kSharePrefix);
}
