// WFMGetConfigACL: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>

#include "configreplies.h"
#include "lists.h"
#include "refusals.h"
#include "routes.h"
#include "sessioncall.h"
#include "support/configrecords.h"

using namespace wire;

namespace {

const char* const kFunction = "WFMGetConfigACL";

struct ACLCall : SessionCall<ACLCall> {
    Garbage<WFM_TORVI_CONFIG_ACL_INFO> rights;
    WFM_TORVI_CONFIG_ACL_INFO* out = &rights.record;

    using SessionCall::SessionCall;
    uint32_t call() { return WFMGetConfigACL(session, kServer, port, nullptr, resultWord, out); }
    bool isUntouched() const { return result == 0xABCD && rights.isUntouched(); }
};

std::string rightsOf(const std::string& reply) {
    RawServer server({Reply::json(reply)});
    ACLCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    log.expectNoLines();
    return call.rights.text();
}

std::string right(const std::string& section, const std::string& key, const std::string& value) {
    return R"({"section":")" + section + R"(","key":")" + key + R"(","value":")" + value + R"("})";
}

}  // namespace

TEST(WFMGetConfigACLWire, AsksTheSessionsServiceAndNamesNoNode) {
    expectOnEveryRoute(
        "func=nubo_get_config_acl&sid=sid123",
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
            ACLCall call;
            call.run(session, port);
        },
        routesWithoutNode());
}

TEST(WFMGetConfigACLWire, TheRightsAreHandedOut) {
    EXPECT_EQ(
        rightsOf(R"({"total":7,"config":[)" + right("Admin", "manager mode", "1") + "," +
                 right("Admin", "use manager password", "") + "," +
                 right("Admin", "client set config", "yes") + "," + right("Synchronize", "smart sync", "1") +
                 "," + right("Policy", "conflict Policy", "00") + "," +
                 right("Policy", "black file filter", "-1") + "," + right("Mails", "all", "2") + "]}"),
        "manager=1 password=1 client=1 smart=1 conflict=1 filter=1 mails=1");
    EXPECT_EQ(
        rightsOf(R"({"config":[)" + right("Admin", "manager mode", "0") + "," +
                 right("Admin", "use manager password", "1") + "," + right("Synchronize", "smart sync", "0") +
                 "," + right("Policy", "black file filter", "1") + "," + right("Mails", "All", "1") + "]}"),
        "password=1 filter=1");
}

TEST(WFMGetConfigACLWire, WhatIsNotToldIsNotAllowed) {
    for (const char* reply :
         {"{}", R"({"config":null})", R"({"config":[]})", R"({"total":7,"config":[null,5]})"})
        EXPECT_EQ(rightsOf(reply), "") << reply;
}

TEST(WFMGetConfigACLWire, OnlyAReplyWithoutAStatusIsASuccess) {
    expectConfigStatuses<ACLCall>(kFunction, errorStatusLine(kFunction),
                                  [](const ACLCall& call) { EXPECT_EQ(call.rights.text(), ""); });
}

TEST(WFMGetConfigACLWire, AFailureAllowsNothing) {
    for (const Reply& reply :
         {Reply::status(503), Reply::json("[]"), Reply::json(R"({"config":[{"section":"Mails","key":"all",
          "value":"1"},{"section":[]}]})")}) {
        RawServer server({reply});
        ACLCall call(server);
        EXPECT_NE(call.run(), 0u);
        EXPECT_EQ(call.rights.text(), "");
    }
}

TEST(WFMGetConfigACLWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<ACLCall>(
        log, session.get(), kFunction,
        {[](ACLCall& call) { call.resultWord = nullptr; }, [](ACLCall& call) { call.out = nullptr; }},
        kSharePrefix);
}
