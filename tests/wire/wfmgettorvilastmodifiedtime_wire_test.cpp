// WFMGetTorviLastModifiedTime: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include "refusals.h"
#include "replies.h"
#include "routes.h"
#include "sessioncall.h"

using namespace wire;

namespace {

constexpr int64_t kUntouched = -77;

struct LastModifiedTimeCall : SessionCall<LastModifiedTimeCall> {
    int64_t time = kUntouched;
    int64_t* out = &time;

    using SessionCall::SessionCall;
    uint32_t call() { return WFMGetTorviLastModifiedTime(session, kServer, port, nullptr, out, resultWord); }
    bool isUntouched() const { return result == 0xABCD && time == kUntouched; }
};

std::string errorStatus(int status) {
    return "[WFMShare] WFMGetTorviLastModifiedTime: get error status = " + std::to_string(status);
}

}  // namespace

TEST(WFMGetTorviLastModifiedTimeWire, AsksTheSessionsServiceAndNamesNoNode) {
    expectOnEveryRoute(
        "func=nubo_get_last_modify_time&sid=sid123",
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
            LastModifiedTimeCall call;
            call.run(session, port);
        },
        routesWithoutNode());
}

TEST(WFMGetTorviLastModifiedTimeWire, ATimeAboveZeroIsHandedOut) {
    const std::pair<const char*, int64_t> rows[] = {
        {R"({"status":0,"epochmt":"1700000000"})", 1700000000},
        {R"({"epochmt":5000000000})", 5000000000},
        {R"({"status":"0","epochmt":"9223372036854775807"})", INT64_MAX},
        {R"({"status":0,"epochmt":1})", 1},
    };
    for (const auto& [reply, time] : rows) {
        SCOPED_TRACE(reply);
        RawServer server({Reply::json(reply)});
        LastModifiedTimeCall call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.time, time);
        log.expectNoLines();
    }
}

TEST(WFMGetTorviLastModifiedTimeWire, WithoutATimeItHasFailed) {
    expectReplies<LastModifiedTimeCall>(
        {
            {R"({"status":0,"epochmt":0})", 0, -1, {errorStatus(0)}},
            {R"({"status":0,"epochmt":"0"})", 0, -1, {errorStatus(0)}},
            {R"({"status":0,"epochmt":"-5"})", 0, -1, {errorStatus(0)}},
            {R"({"status":0,"epochmt":"soon"})", 0, -1, {errorStatus(0)}},
            {R"({"status":0})", 0, -1, {errorStatus(0)}},
            {"{}", 0, -1, {errorStatus(0)}},
            {R"({"status":-1,"epochmt":"5"})", 0, -1, {errorStatus(-1)}},
            {R"({"epochmt":99999999999999999999})",
             14,
             -1,
             {"[WFMShare] WFMGetTorviLastModifiedTime: WFM_PARSE_XML_FAIL",
              "[WFMShare] WFMGetTorviLastModifiedTime(127.0.0.1:{port}) failed dwStatus(14)"}},
        },
        [](const LastModifiedTimeCall& call) { EXPECT_EQ(call.time, 0); });
}

TEST(WFMGetTorviLastModifiedTimeWire, TheServersOwnStatusIsTheResult) {
    expectReplies<LastModifiedTimeCall>(
        {
            {R"({"status":1,"epochmt":"5"})", 0, 1, {errorStatus(1)}},
            {R"({"status":"4","epochmt":"5"})", 0, 4, {errorStatus(4)}},
            {R"({"status":-3,"epochmt":"5"})", 0, -3, {errorStatus(-3)}},
            {R"({"status":34})", 0, 34, {errorStatus(34)}},
        },
        [](const LastModifiedTimeCall& call) { EXPECT_EQ(call.time, 0); });
}

TEST(WFMGetTorviLastModifiedTimeWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<LastModifiedTimeCall>(log, session.get(), "WFMGetTorviLastModifiedTime",
                                         {[](LastModifiedTimeCall& call) { call.resultWord = nullptr; },
                                          [](LastModifiedTimeCall& call) { call.out = nullptr; }},
                                         kSharePrefix);
}
