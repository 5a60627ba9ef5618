// The recycle bin and the share policy, sisters but for their names: WebFileManGetRecycleBin and
// WebFileManGetPolicy, WebFileManSetRecycleBin and WebFileManSetPolicy. What every call shares stands in
// everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "WebFileManShareAPI.h"
#include "refusals.h"
#include "replies.h"
#include "routes.h"
#include "sessioncall.h"

using namespace wire;

namespace {

/// A call that changes a setting.
struct Setter {
    const char* name;
    uint32_t (*set)(_WFM_AUTH_CONTEXT* session, uint32_t port, uint32_t value, uint32_t* resultWord);
    const char* query;  ///< up to the value
};

const Setter kSetters[] = {
    {"WebFileManSetRecycleBin",
     [](_WFM_AUTH_CONTEXT* session, uint32_t port, uint32_t value, uint32_t* resultWord) {
         return WebFileManSetRecycleBin(session, kServer, port, value, nullptr, resultWord);
     },
     "func=nubo_set_recycle_bin&recycle_bin="},
    {"WebFileManSetPolicy",
     [](_WFM_AUTH_CONTEXT* session, uint32_t port, uint32_t value, uint32_t* resultWord) {
         return WebFileManSetPolicy(session, kServer, port, value, nullptr, resultWord);
     },
     "func=nubo_set_policy&share_policy="},
};

/// A call that asks for one. The value is a number here; a flag is 0 or 1, and true before the call.
struct Getter {
    const char* name;
    uint32_t (*get)(_WFM_AUTH_CONTEXT* session, uint32_t port, uint32_t* value);
    const char* query;
    const char* key;
    std::vector<std::pair<const char*, uint32_t>> values;  ///< as the server sends them, and what they mean
};

const Getter kGetters[] = {
    {"WebFileManGetRecycleBin",
     [](_WFM_AUTH_CONTEXT* session, uint32_t port, uint32_t* value) {
         if (value == nullptr) return WebFileManGetRecycleBin(session, kServer, port, nullptr, nullptr);
         bool enabled = true;
         const uint32_t status = WebFileManGetRecycleBin(session, kServer, port, nullptr, &enabled);
         *value = enabled ? 1 : 0;
         return status;
     },
     "func=nubo_get_recycle_bin_status&sid=sid123",
     "recycle_bin_enable",
     {{"1", 1},
      {"\"1\"", 1},
      {"0", 0},
      {"2", 0},
      {"-1", 0},
      {"true", 0},
      {"\"true\"", 0},
      {"null", 0},
      {"[1]", 0}}},
    {"WebFileManGetPolicy",
     [](_WFM_AUTH_CONTEXT* session, uint32_t port, uint32_t* value) {
         return WebFileManGetPolicy(session, kServer, port, nullptr, value);
     },
     "func=nubo_get_policy&sid=sid123",
     "share_policy",
     {{"0", 0},
      {"1", 1},
      {"\"7\"", 7},
      {"2147483647", 2147483647},
      {"-1", 0xFFFFFFFF},
      {"true", 0},
      {"null", 0},
      {"{}", 0}}},
};

/// Only one test runs at a time; its parameter is what the arguments below call.
const Setter* setter = nullptr;
const Getter* getter = nullptr;

struct SetCall : SessionCall<SetCall> {
    uint32_t value = 1;

    using SessionCall::SessionCall;
    uint32_t call() { return setter->set(session, port, value, resultWord); }
    bool isUntouched() const { return result == 0xABCD; }
};

struct GetCall : SessionCall<GetCall> {
    uint32_t value = 0xABCD;
    uint32_t* out = &value;

    using SessionCall::SessionCall;
    uint32_t call() { return getter->get(session, port, out); }
    bool isUntouched() const { return value == 0xABCD; }
};

class SetShareSettingWire : public testing::TestWithParam<Setter> {
protected:
    SetShareSettingWire() { setter = &GetParam(); }
};

class GetShareSettingWire : public testing::TestWithParam<Getter> {
protected:
    GetShareSettingWire() { getter = &GetParam(); }
};

const auto nameOf = [](const auto& row) { return std::string(row.param.name); };

}  // namespace

// ---- Changing ----

TEST_P(SetShareSettingWire, GoesToTheSessionsServiceAndNamesNoNode) {
    expectOnEveryRoute(
        GetParam().query + std::string("1&sid=sid123"),
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
            SetCall call;
            call.run(session, port);
        },
        routesWithoutNode());
}

TEST_P(SetShareSettingWire, AnyNumberIsPassedOn) {
    for (const auto& [value, sent] :
         {std::pair{0u, "0"}, {2u, "2"}, {0x7FFFFFFFu, "2147483647"}, {0xFFFFFFFFu, "-1"}}) {
        RawServer server({Reply::json(R"({"success":"true"})")});
        SetCall call(server);
        call.value = value;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(server.onlyRequest().queryText(), GetParam().query + std::string(sent) + "&sid=sid123");
    }
}

TEST_P(SetShareSettingWire, TheServersSuccessDecides) {
    const std::string name = "[WFMShare] " + std::string(GetParam().name);
    const std::string denied = name + ": ERROR_ACCESS_DENIED";
    expectReplies<SetCall>({
        {R"({"status":1,"success":"true"})", 0, 0, {}},
        {R"({"status":-3,"success":true})", 0, 0, {}},
        {R"({"success":"true"})", 0, 0, {}},
        {R"({"status":1,"success":"false"})", 0, 5, {denied}},
        {R"({"status":0,"success":"TRUE"})", 0, 5, {denied}},
        {R"({"status":0,"success":1})", 0, 5, {denied}},
        {R"({"status":0})", 0, 5, {denied}},
        {"{}", 0, 5, {denied}},
        {"[]", 0, 5, {denied}},
        {R"({"success":["true"]})",
         14,
         -1,
         {name + ": WFM_PARSE_XML_FAIL", name + "(127.0.0.1:{port}) failed dwStatus(14)"}},
    });
}

TEST_P(SetShareSettingWire, RefusesANullResultWordWithOneLine) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<SetCall>(log, session.get(), GetParam().name,
                            {[](SetCall& call) { call.resultWord = nullptr; }}, kSharePrefix);
}

INSTANTIATE_TEST_SUITE_P(, SetShareSettingWire, testing::ValuesIn(kSetters), nameOf);

// ---- Asking ----

TEST_P(GetShareSettingWire, AsksTheSessionsServiceAndNamesNoNode) {
    expectOnEveryRoute(
        GetParam().query,
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
            GetCall call;
            call.run(session, port);
        },
        routesWithoutNode());
}

TEST_P(GetShareSettingWire, TheServersNumberIsTheSettingWhateverItsStatus) {
    for (const char* status : {R"("status":1,)", R"("status":-3,)", ""})
        for (const auto& [sent, value] : GetParam().values) {
            const std::string reply = "{" + std::string(status) + "\"" + GetParam().key + "\":" + sent + "}";
            SCOPED_TRACE(reply);
            RawServer server({Reply::json(reply)});
            GetCall call(server);
            LogCapture log;
            EXPECT_EQ(call.run(), 0u);
            EXPECT_EQ(call.value, value);
            log.expectNoLines();
        }
}

TEST_P(GetShareSettingWire, WhatIsNotToldIsOff) {
    for (const char* reply : {"{}", R"({"status":1})", R"({"recycle_bin":1,"policy":1})"}) {
        SCOPED_TRACE(reply);
        RawServer server({Reply::json(reply)});
        GetCall call(server);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.value, 0u);
    }
}

TEST_P(GetShareSettingWire, AFailedCallTellsThatItIsOff) {
    for (const Reply& reply : {Reply::status(503), Reply::json("[]"), Reply::closeBeforeReply()}) {
        RawServer server({reply});
        GetCall call(server);
        EXPECT_NE(call.run(), 0u);
        EXPECT_EQ(call.value, 0u);
    }
}

TEST_P(GetShareSettingWire, RefusesANullSettingWithOneLine) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<GetCall>(log, session.get(), GetParam().name, {[](GetCall& call) { call.out = nullptr; }},
                            kSharePrefix);
}

INSTANTIATE_TEST_SUITE_P(, GetShareSettingWire, testing::ValuesIn(kGetters), nameOf);
