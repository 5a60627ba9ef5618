// WebFileManGetTorviInformation: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "WebFileManShareAPI.h"
#include "lists.h"
#include "refusals.h"
#include "routes.h"
#include "sessioncall.h"
#include "support/staterecords.h"

using namespace wire;

namespace {

struct TorviInformationCall : SessionCall<TorviInformationCall> {
    char isTold = 0x5A;  // a bool, as garbage
    bool* told = reinterpret_cast<bool*>(&isTold);
    Garbage<_TORVI_INFORMATION> record;
    _TORVI_INFORMATION* out = &record.record;

    using SessionCall::SessionCall;
    uint32_t call() {
        return WebFileManGetTorviInformation(session, kServer, port, nullptr, slaveID, told, out);
    }
    bool isUntouched() const { return isTold == 0x5A && record.isUntouched(); }
};

std::string reply(const std::string& more = "") {
    return R"({"status":1,"nubo_function_enable":1,"nubo_user_enable":1,"home_is_exist":1,)"
           R"("team_folder_is_exist":1)" +
           more + "}";
}

std::string errorStatus(int status) {
    return "[WFM] WebFileManGetTorviInformation: get error status(" + std::to_string(status) + ")";
}

}  // namespace

TEST(WebFileManGetTorviInformationWire, AsksTheSessionsServiceAndNode) {
    expectOnEveryRoute("func=nubo_get_nubo_info&sid=sid123",
                       [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
                           TorviInformationCall call;
                           call.slaveID = slaveID;
                           call.run(session, port);
                       });
}

TEST(WebFileManGetTorviInformationWire, AWholeReplyFillsTheRecord) {
    const std::string all = "function user home team";
    const std::string longest(259, 'n');
    const std::string cluster =
        R"(,"nubo_cluster_support":1,"nubo_cluster_status":1,"nubo_cluster_slave_id":")";
    const struct {
        std::string reply;
        std::string record;
    } rows[] = {
        {reply(), all},
        {R"({"nubo_function_enable":1,"nubo_user_enable":0,"home_is_exist":0,"team_folder_is_exist":0})",
         "function user"},
        {R"({"nubo_function_enable":0,"nubo_user_enable":1,"home_is_exist":1,"team_folder_is_exist":0})",
         "home"},
        {R"({"nubo_function_enable":"0","nubo_user_enable":"0","home_is_exist":"2","team_folder_is_exist":"1"})",
         "team"},
        // What the server says beside it doesn't matter.
        {R"({"status":4,"nubo_function_enable":1,"nubo_user_enable":1,"home_is_exist":1,
            "team_folder_is_exist":1})",
         all},
        {reply(cluster + "n1\""), all + " cluster status=1 slave=n1"},
        {reply(cluster + longest + '"'), all + " cluster status=1 slave=" + longest},
        {reply(cluster + longest + "n\""), all + " cluster status=1"},
        {reply(R"(,"nubo_cluster_support":1,"nubo_cluster_status":2,"nubo_cluster_slave_id":"n1")"),
         all + " cluster status=2"},
        {reply(R"(,"nubo_cluster_support":0,"nubo_cluster_status":1,"nubo_cluster_slave_id":"n1")"), all},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        RawServer server({Reply::json(row.reply)});
        TorviInformationCall call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.isTold, 1);
        EXPECT_EQ(call.record.text(), row.record);
        log.expectNoLines();
    }
}

TEST(WebFileManGetTorviInformationWire, AReplyWithoutOneOfItsFourKeysIsNoAnswer) {
    for (const char* key :
         {"nubo_function_enable", "nubo_user_enable", "home_is_exist", "team_folder_is_exist"}) {
        SCOPED_TRACE(key);
        std::string without = reply(R"(,"nubo_cluster_support":1,"nubo_cluster_status":1)");
        without.replace(without.find(key), std::string(key).size(), "other");
        RawServer server({Reply::json(without)});
        TorviInformationCall call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.isTold, 0);
        EXPECT_EQ(call.record.text(), "");
        log.expectLines({errorStatus(0)});
    }
}

TEST(WebFileManGetTorviInformationWire, TheLineTellsTheServersStatus) {
    const struct {
        const char* reply;
        int status;
    } rows[] = {{R"({"status":4})", -3}, {R"({"status":3})", -29}, {"{}", -1}};
    for (const auto& row : rows) {
        RawServer server({Reply::json(row.reply)});
        TorviInformationCall call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.isTold, 0);
        EXPECT_EQ(call.record.text(), "");
        log.expectLines({errorStatus(row.status)});
    }
}

TEST(WebFileManGetTorviInformationWire, AFailedCallIsNoAnswerAndLeavesTheRecordZeroed) {
    const std::pair<Reply, uint32_t> rows[] = {{Reply::status(503), 12},
                                               {Reply::json("[]"), 14},
                                               {Reply::json(R"({"home_is_exist":99999999999})"), 14}};
    for (const auto& [answer, dwStatus] : rows) {
        RawServer server({answer});
        TorviInformationCall call(server);
        EXPECT_EQ(call.run(), dwStatus);
        EXPECT_EQ(call.isTold, 0);
        EXPECT_EQ(call.record.text(), "");
    }
}

TEST(WebFileManGetTorviInformationWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<TorviInformationCall>(log, session.get(), "WebFileManGetTorviInformation",
                                         {[](TorviInformationCall& call) { call.told = nullptr; },
                                          [](TorviInformationCall& call) { call.out = nullptr; }});
}
