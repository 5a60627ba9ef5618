// WFMGetDeviceConfigInfo: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "configlists.h"
#include "configreplies.h"
#include "refusals.h"
#include "routes.h"
#include "sessioncall.h"

using namespace wire;

namespace {

using Lines = std::vector<std::string>;

const char* const kFunction = "WFMGetDeviceConfigInfo";

struct GetConfigCall : SessionCall<GetConfigCall> {
    const wchar_t* deviceUID = L"d-1";
    int32_t mode = 0;
    bool checkExist = false;
    FilledList<WFM_TORVI_DEVICE_CONFIG_LIST> list;
    WFM_TORVI_DEVICE_CONFIG_LIST* out = &list.record;

    using SessionCall::SessionCall;
    uint32_t call() {
        return WFMGetDeviceConfigInfo(session, kServer, port, deviceUID, mode, checkExist, nullptr,
                                      resultWord, out);
    }
    bool isUntouched() const { return result == 0xABCD && list.isUntouched(); }
};

std::string queryOf(int32_t mode, bool checkExist, const wchar_t* deviceUID = L"d-1") {
    RawServer server({Reply::json("{}")});
    GetConfigCall call(server);
    call.mode = mode;
    call.checkExist = checkExist;
    call.deviceUID = deviceUID;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    return server.onlyRequest().queryText();
}

/// The items that a reply comes to.
Lines itemsOf(const std::string& reply) {
    RawServer server({Reply::json(reply)});
    GetConfigCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    log.expectNoLines();
    return call.list.texts();
}

}  // namespace

// ---- The request ----

TEST(WFMGetDeviceConfigInfoWire, AsksTheSessionsServiceAndNamesNoNode) {
    expectOnEveryRoute(
        "func=nubo_get_device_config&sid=sid123&device_uid=d-1&get_all=1",
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
            GetConfigCall call;
            call.run(session, port);
        },
        routesWithoutNode());
}

TEST(WFMGetDeviceConfigInfoWire, ModeAndCheckTellWhatIsAskedFor) {
    const std::string usual = "func=nubo_get_device_config&sid=sid123&device_uid=d-1";
    for (const int32_t plain : {0, 2, 4, -1, 0x7FFFFFFF})
        EXPECT_EQ(queryOf(plain, false), usual + "&get_all=1");
    EXPECT_EQ(queryOf(0, true), usual + "&get_all=1&check_exist=1");
    EXPECT_EQ(queryOf(2, true), usual + "&get_all=1&check_exist=1");
    EXPECT_EQ(queryOf(1, false), usual + "&get_all=1&get_template=1");
    EXPECT_EQ(queryOf(1, true), usual + "&get_all=1&get_template=1&check_exist=1");
    EXPECT_EQ(queryOf(3, false), usual + "&get_all=2");
    EXPECT_EQ(queryOf(3, true), usual + "&get_all=2&check_exist=1");
}

TEST(WFMGetDeviceConfigInfoWire, TheDeviceIsSentAsGiven) {
    EXPECT_EQ(queryOf(0, false, L"a%2Fb/c:d&e=1"),
              "func=nubo_get_device_config&sid=sid123&device_uid=a%2Fb/c:d&e=1&get_all=1");
    EXPECT_EQ(queryOf(0, false, L"\x6587"),
              "func=nubo_get_device_config&sid=sid123&device_uid=%E6%96%87&get_all=1");
}

// ---- The reply ----

TEST(WFMGetDeviceConfigInfoWire, TheKnownItemsAreHandedOut) {
    EXPECT_EQ(itemsOf(R"({"device":"laptop","duid":"d-1","total":5,"config":[
                  {"section":"Synchronize","key":"smart sync","value":"1"},
                  {"section":"Policy","key":"no such key","value":"2"},
                  {"section":"policy","key":"BLACK FILE FILTER","value":"*.tmp\\t~*\\t\u6587"},
                  {"section":"Mails","key":"sender password","value":"cMOkw58="},
                  {"section":"Config","key":"manual version"}]})"),
              (Lines{"flag=1 value=1", "flag=4 value=*.tmp\t~*\t\xE6\x96\x87",
                     "flag=128 value=p\xC3\xA4\xC3\x9F", "flag=8192"}));
}

TEST(WFMGetDeviceConfigInfoWire, AValueIsWholeWhateverItsLength) {
    for (const size_t length : {size_t{260}, size_t{2048}, size_t{100000}}) {
        const std::string text(length, 'x');
        EXPECT_EQ(
            itemsOf(R"({"config":[{"section":"Mails","key":"server name","value":")" + text + R"("}]})"),
            Lines{"flag=256 value=" + text});
    }
}

TEST(WFMGetDeviceConfigInfoWire, ADeviceMayHaveNoItems) {
    expectReplies<GetConfigCall>({{"{}", 0, 0, {}},
                                  {R"({"total":3,"config":[]})", 0, 0, {}},
                                  {R"({"config":null})", 0, 0, {}},
                                  {R"({"config":[{"section":"Mails","key":"all","value":"1"}]})", 0, 0, {}}},
                                 [](const GetConfigCall& call) { EXPECT_TRUE(call.list.isEmpty()); });
}

TEST(WFMGetDeviceConfigInfoWire, OnlyAReplyWithoutAStatusIsASuccess) {
    expectConfigStatuses<GetConfigCall>(kFunction, errorStatusLine(kFunction),
                                        [](const GetConfigCall& call) { EXPECT_TRUE(call.list.isEmpty()); });
}

TEST(WFMGetDeviceConfigInfoWire, AFailureHandsOutNothing) {
    for (const Reply& reply :
         {Reply::status(503), Reply::json("[]"), Reply::json(R"({"config":5})"), Reply::closeBeforeReply()}) {
        RawServer server({reply});
        GetConfigCall call(server);
        EXPECT_NE(call.run(), 0u);
        EXPECT_EQ(call.signedResult(), -1);
        EXPECT_TRUE(call.list.isEmpty());
    }
}

TEST(WFMGetDeviceConfigInfoWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<GetConfigCall>(log, session.get(), kFunction,
                                  {[](GetConfigCall& call) { call.deviceUID = nullptr; },
                                   [](GetConfigCall& call) { call.deviceUID = L""; },
                                   [](GetConfigCall& call) { call.resultWord = nullptr; },
                                   [](GetConfigCall& call) { call.out = nullptr; }},
                                  kSharePrefix);
}
