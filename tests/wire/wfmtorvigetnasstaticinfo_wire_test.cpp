// WFMTorviGetNASStaticInfo: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include "lists.h"
#include "refusals.h"
#include "replies.h"
#include "routes.h"
#include "sessioncall.h"
#include "support/staterecords.h"

using namespace wire;

namespace {

struct StaticInfoCall : SessionCall<StaticInfoCall> {
    Garbage<_NAS_STATIC_INFORMATION> record;
    _NAS_STATIC_INFORMATION* out = &record.record;

    using SessionCall::SessionCall;
    uint32_t call() {
        return WFMTorviGetNASStaticInfo(session, kServer, port, slaveID, nullptr, out, resultWord);
    }
    bool isUntouched() const { return result == 0xABCD && record.isUntouched(); }
};

std::string errorStatus(int status) {
    return "[WFM] WFMTorviGetNASStaticInfo: Get error status=" + std::to_string(status);
}

}  // namespace

TEST(WFMTorviGetNASStaticInfoWire, AsksTheSessionsServiceAndNode) {
    expectOnEveryRoute("func=nubo_get_static_information&sid=sid123",
                       [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
                           StaticInfoCall call;
                           call.slaveID = slaveID;
                           call.run(session, port);
                       });
}

TEST(WFMTorviGetNASStaticInfoWire, ASuccessFillsTheRecord) {
    const std::string longest(259, 'm');
    const struct {
        std::string reply;
        std::string record;
    } rows[] = {
        {R"({"status":1,"model":"Shelf-1","fw_version":"5.1.0","queue_num_limit":"100",
            "msg_queue_num_limit":"5000000000"})",
         "model=Shelf-1 firmware=5.1.0 queue=100 messages=5000000000"},
        {R"({"status":"1","model":"模","queue_num_limit":5000000000})", "model=模 queue=5000000000"},
        {R"({"status":1,"model":")" + longest + R"(","fw_version":")" + longest + "m\"}", "model=" + longest},
        {R"({"status":1,"fw_version":")" + std::string(100000, 'v') + R"(","queue_num_limit":"many"})", ""},
        {R"({"status":1})", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply.substr(0, 200));
        RawServer server({Reply::json(row.reply)});
        StaticInfoCall call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.record.text(), row.record);
        log.expectNoLines();
    }
}

TEST(WFMTorviGetNASStaticInfoWire, AnyOtherStatusIsTheResultAndLeavesTheRecordZeroed) {
    expectReplies<StaticInfoCall>(
        {
            {R"({"status":4,"model":"Shelf-1"})", 0, -3, {errorStatus(-3)}},
            {R"({"status":3,"model":"Shelf-1"})", 0, -29, {errorStatus(-29)}},
            {R"({"status":"-3"})", 0, -4, {errorStatus(-4)}},
            {R"({"status":0,"model":"Shelf-1"})", 0, -2, {errorStatus(-2)}},
            {R"({"status":34})", 0, -1, {errorStatus(-1)}},
            {R"({"model":"Shelf-1"})", 0, -1, {errorStatus(-1)}},
            {R"({"status":1,"model":["Shelf-1"]})",
             14,
             -1,
             {"[WFM] WFMTorviGetNASStaticInfo: WFM_PARSE_XML_FAIL",
              "[WFM] WFMTorviGetNASStaticInfo(127.0.0.1:{port}) failed dwStatus(14)"}},
        },
        [](const StaticInfoCall& call) { EXPECT_EQ(call.record.text(), ""); });
}

TEST(WFMTorviGetNASStaticInfoWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<StaticInfoCall>(log, session.get(), "WFMTorviGetNASStaticInfo",
                                   {[](StaticInfoCall& call) { call.resultWord = nullptr; },
                                    [](StaticInfoCall& call) { call.out = nullptr; }});
}
