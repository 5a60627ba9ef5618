// WFMGetDomainIPList: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <limits>

#include "lists.h"
#include "refusals.h"
#include "replies.h"
#include "routes.h"
#include "sessioncall.h"
#include "support/staterecords.h"
#include "support/timers.h"

using namespace wire;

namespace {

struct DomainIPListCall : SessionCall<DomainIPListCall> {
    uint32_t timeoutMs = 0;
    Garbage<_DOMAIN_IP_LIST_INFORMATION> record;
    _DOMAIN_IP_LIST_INFORMATION* out = &record.record;

    using SessionCall::SessionCall;
    uint32_t call() {
        return WFMGetDomainIPList(session, kServer, port, timeoutMs, nullptr, nullptr, out, resultWord);
    }
    bool isUntouched() const { return result == 0xABCD && record.isUntouched(); }
};

const char* const kNotEnoughMemory = "[WFM] WFMGetDomainIPList:ERROR_NOT_ENOUGH_MEMORY";

/// The texts of the reply, in the order of the record, and its word for each.
const struct {
    const char* key;
    const char* word;
    size_t longest;
} kTexts[] = {{"peltnet_hn", "peltnet", 258}, {"ddns_hn", "ddns", 258}, {"external_ip", "external", 258},
              {"local_ip", "local", 258},     {"host_ip", "host", 258}, {"local_ip_list", "list", 2078}};

std::string errorStatus(int status) {
    return "[WFM] WFMGetDomainIPList: get error status(" + std::to_string(status) + ")";
}

}  // namespace

TEST(WFMGetDomainIPListWire, AsksTheSessionsServiceAndNamesNoNode) {
    expectOnEveryRoute(
        "func=get_domain_ip_list&sid=sid123",
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
            DomainIPListCall call;
            call.run(session, port);
        },
        routesWithoutNode());
}

TEST(WFMGetDomainIPListWire, TheCallersTimeoutCountsAndZeroIsAMinute) {
    const std::pair<uint32_t, int> rows[] = {
        {0, 60000}, {1, 1}, {7000, 7000}, {0xFFFFFFFF, std::numeric_limits<int>::max()}};
    for (const auto& [given, expected] : rows) {
        // Nothing comes back, so that the shortest time-out isn't over first.
        const RefusedPort refused;
        DomainIPListCall call;
        call.timeoutMs = given;
        call.port = refused.port();
        TimerCapture timers;
        EXPECT_EQ(call.run(), 2u);
        EXPECT_EQ(timers.started(), std::vector<int>{expected});
    }
}

TEST(WFMGetDomainIPListWire, ASuccessFillsTheRecord) {
    RawServer server({Reply::json(R"({"status":1,"peltnet_hn":"nas.example","ddns_hn":"dyn.example",
        "external_ip":"203.0.113.7","local_ip":"192.168.0.2","host_ip":"192.168.0.3",
        "local_ip_list":"192.168.0.2,10.0.0.2","port":8080,"sslPort":"8443","extPort":80,"extSslPort":443})")});
    DomainIPListCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.record.text(),
              "peltnet=nas.example ddns=dyn.example external=203.0.113.7 local=192.168.0.2 "
              "host=192.168.0.3 list=192.168.0.2,10.0.0.2 port=8080 ssl=8443 ext=80 extssl=443");
    log.expectNoLines();
}

TEST(WFMGetDomainIPListWire, AReplyMayTellNothing) {
    RawServer server({Reply::json(R"({"status":1})")});
    DomainIPListCall call(server);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.record.text(), "");
}

TEST(WFMGetDomainIPListWire, ATextThatIsTooLongIs8AndLeftOutAndTheOthersAreFilled) {
    for (const auto& text : kTexts) {
        SCOPED_TRACE(text.key);
        const auto reply = [&text](size_t length) {
            std::string json = R"({"status":1,"port":80)";
            for (const auto& other : kTexts)
                json += ",\"" + std::string(other.key) + "\":\"" +
                        (&other == &text ? std::string(length, 'x') : other.word) + "\"";
            return json + "}";
        };
        const auto record = [&text](size_t length) {
            std::string words;
            for (const auto& other : kTexts)
                if (&other != &text)
                    words += std::string(other.word) + "=" + other.word + " ";
                else if (length > 0)
                    words += std::string(other.word) + "=" + std::string(length, 'x') + " ";
            return words + "port=80";
        };
        LogCapture log;

        RawServer fits({Reply::json(reply(text.longest))});
        DomainIPListCall longest(fits);
        EXPECT_EQ(longest.run(), 0u);
        EXPECT_EQ(longest.result, 0u);
        EXPECT_EQ(longest.record.text(), record(text.longest));
        log.expectNoLines();

        RawServer server({Reply::json(reply(text.longest + 1))});
        DomainIPListCall longer(server);
        EXPECT_EQ(longer.run(), 0u);
        EXPECT_EQ(longer.result, 8u);
        EXPECT_EQ(longer.record.text(), record(0));
        log.expectLines({kNotEnoughMemory});
    }
}

TEST(WFMGetDomainIPListWire, EachTextThatIsTooLongHasItsLine) {
    const std::string tooLong = '"' + std::string(259, 'x') + '"';
    RawServer server({Reply::json(R"({"status":1,"ddns_hn":)" + tooLong + R"(,"host_ip":)" + tooLong +
                                  R"(,"local_ip_list":")" + std::string(100000, 'x') + R"(","extPort":7})")});
    DomainIPListCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 8u);
    EXPECT_EQ(call.record.text(), "ext=7");
    log.expectLines({kNotEnoughMemory, kNotEnoughMemory, kNotEnoughMemory});
}

TEST(WFMGetDomainIPListWire, AnyOtherStatusIsMinus1AndLeavesTheRecordZeroed) {
    expectReplies<DomainIPListCall>(
        {
            {R"({"status":4,"port":80})", 0, -1, {errorStatus(-3)}},
            {R"({"status":"3","port":80})", 0, -1, {errorStatus(-29)}},
            {R"({"status":0})", 0, -1, {errorStatus(-2)}},
            {R"({"status":34})", 0, -1, {errorStatus(-1)}},
            {R"({"port":80})", 0, -1, {errorStatus(-1)}},
            {R"({"status":1,"port":99999999999})",
             14,
             -1,
             {"[WFM] WFMGetDomainIPList: WFM_PARSE_XML_FAIL",
              "[WFM] WFMGetDomainIPList(127.0.0.1:{port}) failed dwStatus(14)"}},
        },
        [](const DomainIPListCall& call) { EXPECT_EQ(call.record.text(), ""); });
}

TEST(WFMGetDomainIPListWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<DomainIPListCall>(log, session.get(), "WFMGetDomainIPList",
                                     {[](DomainIPListCall& call) { call.resultWord = nullptr; },
                                      [](DomainIPListCall& call) { call.out = nullptr; }});
}
