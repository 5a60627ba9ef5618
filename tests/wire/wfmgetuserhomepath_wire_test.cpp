// WFMGetUserHomePath: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>

// A session whose sid is gone can't be had from outside.
#include "../../src/core/authcontext.h"
#include "refusals.h"
#include "routes.h"
#include "sessioncall.h"

using namespace wire;

namespace {

struct UserHomeCall : SessionCall<UserHomeCall> {
    const wchar_t* user = L"user";
    uint32_t capacity = 300;
    MarkedBuffer buffer;
    wchar_t* out = buffer.data();

    using SessionCall::SessionCall;
    uint32_t call() {
        return WFMGetUserHomePath(session, kServer, port, user, capacity, slaveID, nullptr, out);
    }
    bool isUntouched() const { return buffer.isUntouched(); }
};

Reply home(const std::string& path) {
    return Reply::json(R"({"status":1,"home":")" + path + "\"}");
}

}  // namespace

TEST(WFMGetUserHomePathWire, AsksForTheUserEncoded) {
    expectOnEveryRoute("func=nubo_get_user_home&sid=sid123&user=a%20b%26c%5Cd%2F100%25%E6%96%87",
                       [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
                           UserHomeCall call;
                           call.slaveID = slaveID;
                           call.user = L"a b&c\\d/100%\x6587";
                           call.run(session, port);
                       });
}

TEST(WFMGetUserHomePathWire, ASessionWithoutASidIsNotRefused) {
    const SessionPtr session = makeSession();
    session->pszSid[0] = L'\0';
    RawServer server({home("/h")});
    UserHomeCall call;
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    EXPECT_EQ(server.onlyRequest().queryText(), "func=nubo_get_user_home&sid=&user=user");
    EXPECT_EQ(call.buffer.text(), L"/h");
}

TEST(WFMGetUserHomePathWire, TheHomeIsCopiedWhateverTheStatus) {
    const std::pair<const char*, const wchar_t*> rows[] = {
        {R"({"status":1,"home":"/share/homes/u"})", L"/share/homes/u"},
        {R"({"status":4,"home":"/書"})", L"/書"},
        {R"({"status":"3","home":"/h"})", L"/h"},
        {R"({"home":"/h"})", L"/h"},
        {"{\"home\":\"/h\xFF\"}", L"/h\xFFFD"},
    };
    for (const auto& [reply, text] : rows) {
        SCOPED_TRACE(reply);
        RawServer server({Reply::json(reply)});
        UserHomeCall call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.buffer.text(), text);
        log.expectNoLines();
    }
}

TEST(WFMGetUserHomePathWire, AHomeMustBeShorterThanTheCapacity) {
    const struct {
        uint32_t capacity;
        bool fits;
    } rows[] = {{1, false}, {5, false}, {6, false}, {7, true}, {300, true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.capacity);
        RawServer server({home("/home1")});
        UserHomeCall call(server);
        call.capacity = row.capacity;
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.buffer.text(), row.fits ? L"/home1" : L"untouched");
        log.expectNoLines();
    }
}

TEST(WFMGetUserHomePathWire, AHomeHasUpTo4095Characters) {
    for (const auto& [length, fits] :
         {std::pair(size_t{4095}, true), {size_t{4096}, false}, {size_t{100000}, false}}) {
        SCOPED_TRACE(length);
        RawServer server({home(std::string(length, 'h'))});
        UserHomeCall call(server);
        MarkedBuffer large(200000);
        call.out = large.data();
        call.capacity = 200000;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(large.text(), fits ? std::wstring(length, L'h') : L"untouched");
    }
}

TEST(WFMGetUserHomePathWire, WithoutAHomeTheBufferStaysAsItWas) {
    for (const char* reply :
         {"{}", R"({"status":1})", R"({"status":1,"home":""})", R"({"status":1,"home":null})"}) {
        SCOPED_TRACE(reply);
        RawServer server({Reply::json(reply)});
        UserHomeCall call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_TRUE(call.isUntouched());
        log.expectNoLines();
    }
}

TEST(WFMGetUserHomePathWire, AFailedCallLeavesTheBufferAlone) {
    const std::pair<Reply, uint32_t> rows[] = {{Reply::status(503), 12},
                                               {Reply::json("[]"), 14},
                                               {Reply::json(R"({"status":1,"home":["/h"]})"), 14}};
    for (const auto& [reply, dwStatus] : rows) {
        RawServer server({reply});
        UserHomeCall call(server);
        EXPECT_EQ(call.run(), dwStatus);
        EXPECT_TRUE(call.isUntouched());
    }
}

TEST(WFMGetUserHomePathWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<UserHomeCall>(
        log, session.get(), "WFMGetUserHomePath",
        {[](UserHomeCall& call) { call.user = nullptr; }, [](UserHomeCall& call) { call.user = L""; },
         [](UserHomeCall& call) { call.capacity = 0; }, [](UserHomeCall& call) { call.out = nullptr; }});
}
