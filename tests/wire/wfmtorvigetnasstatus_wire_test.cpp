// WFMTorviGetNASStatus: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include "lists.h"
#include "refusals.h"
#include "replies.h"
#include "routes.h"
#include "sessioncall.h"
#include "support/staterecords.h"

using namespace wire;

namespace {

struct NASStatusCall : SessionCall<NASStatusCall> {
    bool checkDetail = false;
    bool* cancel = nullptr;
    Garbage<_NAS_STATUS_INFORMATION> record;
    _NAS_STATUS_INFORMATION* out = &record.record;

    using SessionCall::SessionCall;
    uint32_t call() {
        return WFMTorviGetNASStatus(session, kServer, port, slaveID, checkDetail, cancel, resultWord, out);
    }
    bool isUntouched() const { return result == 0xABCD && record.isUntouched(); }
};

/// The other call's name stands in this one's line.
std::string errorStatus(int status) {
    return "[WFM] WFMTorviGetNASStaticInfo: Get error status=" + std::to_string(status);
}

}  // namespace

TEST(WFMTorviGetNASStatusWire, OnlyTheSyncServiceHearsHowCloselyToLook) {
    for (const bool checkDetail : {false, true}) {
        const std::string query = "func=nubo_get_nas_status&sid=sid123";
        expectOnEveryRoute(
            query + (checkDetail ? "&check_detail=1" : "&check_detail=0"),
            [checkDetail](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
                NASStatusCall call;
                call.slaveID = slaveID;
                call.checkDetail = checkDetail;
                call.run(session, port);
            },
            routes(), query);
    }
}

TEST(WFMTorviGetNASStatusWire, ASuccessFillsTheRecord) {
    const struct {
        const char* reply;
        const char* record;
    } rows[] = {
        {R"({"status":1,"home_folder_enable":1,"recycle_bin_enable":1,"device_db_exist":1,"log_db_exist":1,
            "share_db_exist":1,"user_enable":1,"versioning_enable":1,"nubo_versioning_enable":1,
            "home_folder_available":1,"is_recovering":1,"versioning_version":"1.2"})",
         "home recycle device log share user versioning nubo available recovering version=1.2"},
        {R"({"home_folder_enable":"1","recycle_bin_enable":2,"versioning_version":"---"})", "home available"},
        {R"({"status":1,"home_folder_available":0})", ""},
        {R"({"status":1})", "available"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        RawServer server({Reply::json(row.reply)});
        NASStatusCall call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.record.text(), row.record);
        log.expectNoLines();
    }
}

TEST(WFMTorviGetNASStatusWire, ASetCancelFlagChangesNothing) {
    RawServer server({Reply::json(R"({"status":1})")});
    NASStatusCall call(server);
    bool cancel = true;
    call.cancel = &cancel;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.record.text(), "available");
}

TEST(WFMTorviGetNASStatusWire, AnyOtherStatusIsTheResultAndLeavesTheRecordZeroed) {
    expectReplies<NASStatusCall>(
        {
            {R"({"status":4,"home_folder_enable":1})", 0, -3, {errorStatus(-3)}},
            {R"({"status":"3","home_folder_enable":1})", 0, -29, {errorStatus(-29)}},
            {R"({"status":0})", 0, -2, {errorStatus(-2)}},
            {R"({"status":34})", 0, -1, {errorStatus(-1)}},
            {R"({"status":1,"user_enable":1,"versioning_version":{}})",
             14,
             -1,
             {"[WFM] WFMTorviGetNASStatus: WFM_PARSE_XML_FAIL",
              "[WFM] WFMTorviGetNASStatus(127.0.0.1:{port}) failed dwStatus(14)"}},
        },
        [](const NASStatusCall& call) { EXPECT_EQ(call.record.text(), ""); });
}

TEST(WFMTorviGetNASStatusWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<NASStatusCall>(log, session.get(), "WFMTorviGetNASStatus",
                                  {[](NASStatusCall& call) { call.resultWord = nullptr; },
                                   [](NASStatusCall& call) { call.out = nullptr; }});
}
