// WebFileManQueryProgress: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "WebFileManShareAPI.h"
#include "routes.h"
#include "support/logcapture.h"
#include "support/rawserver.h"
#include "support/session.h"
#include "support/wire.h"

using namespace wire;

namespace {

constexpr uint32_t kUntouched = 0xABCD;

struct QueryProgressCall {
    const wchar_t* slaveID = nullptr;
    const wchar_t* pid = L"4711";
    uint32_t percent = kUntouched;
    uint32_t errorCode = kUntouched;
    uint32_t result = kUntouched;
    uint32_t* percentOut = &percent;
    uint32_t* errorCodeOut = &errorCode;
    uint32_t* resultWord = &result;

    QueryProgressCall() = default;
    QueryProgressCall(const QueryProgressCall&) = delete;
    QueryProgressCall& operator=(const QueryProgressCall&) = delete;

    uint32_t run(_WFM_AUTH_CONTEXT* session, uint32_t port) {
        return WebFileManQueryProgress(session, kServer, port, slaveID, pid, nullptr, percentOut,
                                       errorCodeOut, resultWord);
    }
};

std::string failedLine(int status, int errorCode) {
    return "[WFMShare] WebFileManQueryProgress: Failed Status(" + std::to_string(status) + ") ErrorCode(" +
           std::to_string(errorCode) + ")";
}

class WebFileManQueryProgressWire : public testing::Test {
protected:
    SessionPtr session = makeSession();
    LogCapture log;
};

}  // namespace

TEST_F(WebFileManQueryProgressWire, AsksForTheJobOnEveryRoute) {
    expectOnEveryRoute("func=nubo_get_progress&sid=sid123&pid=4711",
                       [](_WFM_AUTH_CONTEXT* context, uint32_t port, const wchar_t* slaveID) {
                           QueryProgressCall call;
                           call.slaveID = slaveID;
                           call.run(context, port);
                       });
}

TEST_F(WebFileManQueryProgressWire, ThePidGoesOutUnchanged) {
    // Encoded it would be "a%252Fb%26c".
    RawServer server({Reply::json("{}")});
    QueryProgressCall call;
    call.pid = L"a%2Fb&c/d=+";
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    EXPECT_EQ(server.onlyRequest().queryText(), "func=nubo_get_progress&sid=sid123&pid=a%2Fb&c/d=+");
}

TEST_F(WebFileManQueryProgressWire, WhatTheServerSaysDecidesResultErrorAndPercent) {
    const struct {
        const char* reply;
        int32_t result, errorCode;
        uint32_t percent;
        std::vector<LogLine> lines;
    } rows[] = {{R"({"status":1,"copying":0,"percent":42})", 0, 0, 42, {}},
                {R"({"status":"1","copying":"0","percent":"42"})", 0, 0, 42, {}},
                {R"({"status":1,"copying":0,"percent":100})", 0, 0, 100, {}},
                {R"({"status":1,"copying":0})", 0, 0, 0, {}},
                // The job's end by a code of 1 is no error, and has no percent.
                {R"({"status":1,"copying":1,"percent":42})", 0, 0, 0, {}},
                {R"({"status":1,"copying":5,"percent":42})", 0, -4, 0, {failedLine(1, -4)}},
                {R"({"status":1,"copying":9})", 0, -6, 0, {failedLine(1, -6)}},
                {R"({"status":1,"copying":34})", 0, -1, 0, {failedLine(1, -1)}},
                {R"({"status":1,"percent":42})", 0, 1, 0, {failedLine(1, 1)}},
                {R"({"status":1})", 0, 1, 0, {failedLine(1, 1)}},
                // The status is the server's own number.
                {R"({"status":5,"copying":0,"percent":42})", -1, 1, 0, {failedLine(5, 1)}},
                {R"({"status":0,"copying":0,"percent":42})", -1, 1, 0, {failedLine(0, 1)}},
                {R"({"status":-101})", -1, 1, 0, {failedLine(-101, 1)}},
                {R"({"copying":0,"percent":42})", -1, 1, 0, {failedLine(0, 1)}},
                {"{}", -1, 1, 0, {failedLine(0, 1)}}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        RawServer server({Reply::json(row.reply)});
        QueryProgressCall call;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(static_cast<int32_t>(call.result), row.result);
        EXPECT_EQ(static_cast<int32_t>(call.errorCode), row.errorCode);
        EXPECT_EQ(call.percent, row.percent);
        EXPECT_EQ(log.lines(), row.lines);
    }
}

TEST_F(WebFileManQueryProgressWire, WithoutAReplyNothingIsKnown) {
    for (const Reply& reply : {Reply::status(500), Reply::json("no"), Reply::json("[]")}) {
        RawServer server({reply});
        QueryProgressCall call;
        EXPECT_NE(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(static_cast<int32_t>(call.result), -1);
        EXPECT_EQ(static_cast<int32_t>(call.errorCode), -1);
        EXPECT_EQ(call.percent, 0u);
    }
}

TEST_F(WebFileManQueryProgressWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    void (*const spoilers[])(QueryProgressCall&) = {
        [](QueryProgressCall& call) { call.pid = nullptr; }, [](QueryProgressCall& call) { call.pid = L""; },
        [](QueryProgressCall& call) { call.percentOut = nullptr; },
        [](QueryProgressCall& call) { call.errorCodeOut = nullptr; },
        [](QueryProgressCall& call) { call.resultWord = nullptr; }};
    for (const auto& spoil : spoilers) {
        QueryProgressCall call;
        spoil(call);
        log.clear();
        EXPECT_EQ(call.run(session.get(), 80), 8u);
        EXPECT_EQ(call.percent, kUntouched);
        EXPECT_EQ(call.errorCode, kUntouched);
        EXPECT_EQ(call.result, kUntouched);
        log.expectLines(
            {"[WFMShare] WebFileManQueryProgress(127.0.0.1:80): WFM_PARSE_XML_INVALID_PARAMETER"});
    }
}
