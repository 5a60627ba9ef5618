// WFMTorviGetMaxLog: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>

// No login leaves a session of the file manager with the faster end.
#include "../../src/core/authcontext.h"
#include "lists.h"
#include "refusals.h"
#include "replies.h"
#include "routes.h"
#include "sessioncall.h"
#include "support/staterecords.h"

using namespace wire;

namespace {

struct MaxLogCall : SessionCall<MaxLogCall> {
    const wchar_t* folder = nullptr;
    Garbage<_TORVI_MAX_LOG_NUMBERS> record;
    _TORVI_MAX_LOG_NUMBERS* out = &record.record;

    using SessionCall::SessionCall;
    uint32_t call() {
        return WFMTorviGetMaxLog(session, kServer, port, slaveID, folder, nullptr, out, resultWord);
    }
    bool isUntouched() const { return result == 0xABCD && record.isUntouched(); }
};

const std::string kQuery = "func=nubo_get_max_log&sid=sid123";

std::string errorStatus(int status) {
    return "[WFMShare] WFMTorviGetMaxLog(127.0.0.1:{port}): Get error status=" + std::to_string(status);
}

void expectQueryFor(const wchar_t* folder, const std::string& query) {
    expectOnEveryRoute(
        query,
        [folder](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
            MaxLogCall call;
            call.slaveID = slaveID;
            call.folder = folder;
            call.run(session, port);
        },
        routesTo("torvisrvPrepare.cgi", "torvisrv.fcgi", "/cgi-bin/filemanager/torviPrepare.cgi"));
}

}  // namespace

TEST(WFMTorviGetMaxLogWire, AsksOneOfThreePlaces) {
    expectQueryFor(nullptr, kQuery);
    expectQueryFor(L"", kQuery);
}

TEST(WFMTorviGetMaxLogWire, AFolderIsEncoded) {
    expectQueryFor(L"/home/b c&d/100%\x6587", kQuery + "&folder=%2Fhome%2Fb%20c%26d%2F100%25%E6%96%87");
}

TEST(WFMTorviGetMaxLogWire, TheFileManagerHasNoFasterEnd) {
    const SessionPtr session = makeSession();
    session->bUseNuboCGI = false;
    session->bUseFcgi = true;
    RawServer server({Reply::json("{}")});
    MaxLogCall call;
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    EXPECT_EQ(server.onlyRequest().path(), "/cgi-bin/filemanager/torviPrepare.cgi");
}

TEST(WFMTorviGetMaxLogWire, EachNumberThatTheServerGivesIsCopied) {
    const struct {
        const char* reply;
        const char* record;
    } rows[] = {
        {R"({"status":1,"max_log":"5","notify":"6","global_notify":"7","sync_signal":"8"})",
         "max=5 notify=6 global=7 signal=8"},
        {R"({"max_log":5000000000,"notify":"9223372036854775807"})",
         "max=5000000000 notify=9223372036854775807"},
        {R"({"max_log":"0","notify":"0","global_notify":0,"sync_signal":"0"})",
         "max=0 notify=0 global=0 signal=0"},
        // The first number is taken unless it is -1, the others unless they are below 0.
        {R"({"max_log":"-5","notify":"-5","global_notify":"-1","sync_signal":"-2"})", "max=-5"},
        {R"({"max_log":"-1"})", ""},
        {R"({"max_log":"","notify":null})", ""},
        {R"({"max_log0":"5","max_log1":"6"})", ""},
        {"{}", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        RawServer server({Reply::json(row.reply)});
        MaxLogCall call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.record.text(), row.record);
        log.expectNoLines();
    }
}

TEST(WFMTorviGetMaxLogWire, AnyOtherStatusIsTheResultAndLeavesTheNumbersUnknown) {
    expectReplies<MaxLogCall>(
        {
            {R"({"status":4,"max_log":"5"})", 0, -3, {errorStatus(-3)}},
            {R"({"status":"3","max_log":"5","notify":"6"})", 0, -29, {errorStatus(-29)}},
            {R"({"status":0})", 0, -2, {errorStatus(-2)}},
            {R"({"status":34})", 0, -1, {errorStatus(-1)}},
            {R"({"max_log":"5","notify":{}})",
             14,
             -1,
             {"[WFMShare] WFMTorviGetMaxLog: WFM_PARSE_XML_FAIL",
              "[WFMShare] WFMTorviGetMaxLog(127.0.0.1:{port}) failed dwStatus(14)"}},
        },
        [](const MaxLogCall& call) { EXPECT_EQ(call.record.text(), ""); });
}

TEST(WFMTorviGetMaxLogWire, AFailedCallLeavesTheNumbersUnknown) {
    RawServer server({Reply::status(503)});
    MaxLogCall call(server);
    EXPECT_EQ(call.run(), 12u);
    EXPECT_EQ(call.record.text(), "");
}

TEST(WFMTorviGetMaxLogWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<MaxLogCall>(
        log, session.get(), "WFMTorviGetMaxLog",
        {[](MaxLogCall& call) { call.resultWord = nullptr; }, [](MaxLogCall& call) { call.out = nullptr; }},
        kSharePrefix);
}
