// WFMGetTorviSyncStart and WFMGetTorviSyncStop, sisters but for their queries. What every call shares stands
// in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>

#include "refusals.h"
#include "replies.h"
#include "routes.h"
#include "sessioncall.h"

using namespace wire;

namespace {

struct Signal {
    const char* name;
    uint32_t (*send)(_WFM_AUTH_CONTEXT* session, uint32_t port, uint32_t number, uint32_t* resultWord);
    std::string (*query)(const std::string& number);
};

const Signal kSignals[] = {
    {"WFMGetTorviSyncStart",
     [](_WFM_AUTH_CONTEXT* session, uint32_t port, uint32_t number, uint32_t* resultWord) {
         return WFMGetTorviSyncStart(session, kServer, port, nullptr, number, resultWord);
     },
     [](const std::string& number) { return "func=nubo_sync_start&channel=" + number + "&sid=sid123"; }},
    {"WFMGetTorviSyncStop",
     [](_WFM_AUTH_CONTEXT* session, uint32_t port, uint32_t number, uint32_t* resultWord) {
         return WFMGetTorviSyncStop(session, kServer, port, number, nullptr, resultWord);
     },
     [](const std::string& number) { return "func=nubo_sync_done&sid=sid123&number=" + number; }},
};

/// Only one test runs at a time; its parameter is what the arguments below call.
const Signal* current = nullptr;

struct SignalCall : SessionCall<SignalCall> {
    uint32_t number = 7;

    using SessionCall::SessionCall;
    uint32_t call() { return current->send(session, port, number, resultWord); }
    bool isUntouched() const { return result == 0xABCD; }
};

/// The line of both names the stop.
std::string errorStatus(int status) {
    return "[WFMShare] WFMGetTorviSyncStop: get error status = " + std::to_string(status);
}

class SyncSignalsWire : public testing::TestWithParam<Signal> {
protected:
    SyncSignalsWire() { current = &GetParam(); }
};

}  // namespace

TEST_P(SyncSignalsWire, GoesToTheSessionsServiceAndNamesNoNode) {
    expectOnEveryRoute(
        GetParam().query("7"),
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
            SignalCall call;
            call.run(session, port);
        },
        routesWithoutNode());
}

TEST_P(SyncSignalsWire, AnyNumberIsPassedOn) {
    const std::pair<uint32_t, const char*> rows[] = {
        {0, "0"}, {1, "1"}, {0x7FFFFFFF, "2147483647"}, {0x80000000, "-2147483648"}, {0xFFFFFFFF, "-1"}};
    for (const auto& [number, sent] : rows) {
        RawServer server({Reply::json(R"({"status":1,"success":"true"})")});
        SignalCall call(server);
        call.number = number;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(server.onlyRequest().queryText(), GetParam().query(sent));
    }
}

TEST_P(SyncSignalsWire, TheServerMustSayYesTwice) {
    const std::string prefix = "[WFMShare] " + std::string(GetParam().name);
    expectReplies<SignalCall>({
        {R"({"status":1,"success":"true"})", 0, 0, {}},
        {R"({"status":"1","success":true})", 0, 0, {}},
        {R"({"status":1,"success":"false"})", 0, -1, {errorStatus(1)}},
        {R"({"status":1,"success":"TRUE"})", 0, -1, {errorStatus(1)}},
        {R"({"status":1})", 0, -1, {errorStatus(1)}},
        {R"({"status":0,"success":"true"})", 0, -1, {errorStatus(0)}},
        {R"({"status":4,"success":"true"})", 0, -1, {errorStatus(4)}},
        {R"({"status":-3,"success":"true"})", 0, -1, {errorStatus(-3)}},
        {R"({"status":34,"success":"true"})", 0, -1, {errorStatus(34)}},
        {R"({"success":"true"})", 0, -1, {errorStatus(-1)}},
        {"{}", 0, -1, {errorStatus(-1)}},
        {"[]", 0, -1, {errorStatus(-1)}},
        {R"("text")", 0, -1, {errorStatus(-1)}},
        {R"({"status":1,"success":["true"]})",
         14,
         -1,
         {prefix + ": WFM_PARSE_XML_FAIL", prefix + "(127.0.0.1:{port}) failed dwStatus(14)"}},
    });
}

TEST_P(SyncSignalsWire, RefusesANullResultWordWithOneLine) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<SignalCall>(log, session.get(), GetParam().name,
                               {[](SignalCall& call) { call.resultWord = nullptr; }}, kSharePrefix);
}

INSTANTIATE_TEST_SUITE_P(, SyncSignalsWire, testing::ValuesIn(kSignals),
                         [](const testing::TestParamInfo<Signal>& row) {
                             return std::string(row.param.name);
                         });
