// WebFileManGetUserList: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "recordlist.h"
#include "refusals.h"
#include "replies.h"
#include "routes.h"
#include "sessioncall.h"
#include "smalllist.h"
#include "support/userrecords.h"

using namespace wire;

namespace {

using Lines = std::vector<std::string>;

struct UserListCall : SessionCall<UserListCall> {
    uint32_t userType = 1;
    const wchar_t* domain = L"corp.example";
    const wchar_t* netbios = L"CORP";
    const wchar_t* filter = nullptr;
    uint32_t lower = 0;
    uint32_t upper = 50;
    bool allUsers = false;
    bool refresh = false;
    uint32_t total = 0xABCD;
    uint32_t* totalOut = &total;
    uint32_t count = 3;
    uint32_t* countInOut = &count;
    CallersList<_WFM_USER_INFORMATION> users;
    _WFM_USER_INFORMATION** list = users.data();

    using SessionCall::SessionCall;
    ~UserListCall() {
        for (auto& user : users.records)
            if (!user.isUntouched()) delete[] user.record.pszDescription;
    }
    uint32_t call() {
        return WebFileManGetUserList(session, kServer, port, userType, domain, netbios, filter, lower, upper,
                                     allUsers, refresh, nullptr, resultWord, totalOut, countInOut, list);
    }
    bool isUntouched() const {
        return result == 0xABCD && total == 0xABCD && count == 3 && users.isUntouched();
    }
};

/// A reply with that many users.
std::string listOf(int count, const std::string& keys = R"("status":1,"total":9)") {
    std::string users;
    for (int i = 1; i <= count; ++i)
        users += std::string(i > 1 ? "," : "") + R"({"name":"u)" + std::to_string(i) + R"("})";
    return "{" + keys + R"(,"user":[)" + users + "]}";
}

const char* const kInsufficientBuffer = "[WFMShare] WebFileManGetUserList: ERROR_INSUFFICIENT_BUFFER";

/// The query's end: what is looked for, and where.
std::string queryOf(void (*change)(UserListCall&)) {
    RawServer server({Reply::json(listOf(0))});
    UserListCall call(server);
    change(call);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    const std::string query = server.onlyRequest().queryText();
    const std::string beginning = "func=nubo_get_user_list&sid=sid123&";
    EXPECT_EQ(query.substr(0, beginning.size()), beginning);
    return query.substr(beginning.size());
}

}  // namespace

// ---- The request ----

TEST(WebFileManGetUserListWire, AsksTheSessionsServiceAndNamesNoNode) {
    expectOnEveryRoute(
        "func=nubo_get_user_list&sid=sid123&user_type=1&all_user=0&refresh=0&lower=0&upper=50&netbios=&"
        "domain=&"
        "filter=",
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
            UserListCall call;
            call.run(session, port);
        },
        routesWithoutNode());
}

TEST(WebFileManGetUserListWire, OnlyADirectorysUsersAreAskedForByItsNames) {
    const struct {
        void (*change)(UserListCall&);
        const char* query;
    } rows[] = {
        {[](UserListCall& call) { call.userType = 2; },
         "user_type=2&all_user=0&refresh=0&lower=0&upper=50&netbios=CORP&domain=corp.example&filter="},
        {[](UserListCall& call) {
             call.userType = 2;
             call.netbios = L"A&B";
             call.domain = L"c d/\x6587";
         },
         "user_type=2&all_user=0&refresh=0&lower=0&upper=50&netbios=A%26B&domain=c%20d%2F%E6%96%87&filter="},
        {[](UserListCall& call) {
             call.userType = 2;
             call.netbios = nullptr;
             call.domain = L"";
         },
         "user_type=2&all_user=0&refresh=0&lower=0&upper=50&netbios=&domain=&filter="},
        {[](UserListCall& call) { call.netbios = call.domain = nullptr; },
         "user_type=1&all_user=0&refresh=0&lower=0&upper=50&netbios=&domain=&filter="},
    };
    for (const auto& row : rows) EXPECT_EQ(queryOf(row.change), row.query);
}

TEST(WebFileManGetUserListWire, FilterPageAndFlagsArePassedOn) {
    const struct {
        void (*change)(UserListCall&);
        const char* query;
    } rows[] = {
        {[](UserListCall& call) { call.filter = L""; },
         "user_type=1&all_user=0&refresh=0&lower=0&upper=50&netbios=&domain=&filter="},
        {[](UserListCall& call) { call.filter = L"jo e&x=%"; },
         "user_type=1&all_user=0&refresh=0&lower=0&upper=50&netbios=&domain=&filter=jo%20e%26x%3D%25"},
        {[](UserListCall& call) { call.allUsers = true; },
         "user_type=1&all_user=1&refresh=0&lower=0&upper=50&netbios=&domain=&filter="},
        {[](UserListCall& call) { call.refresh = true; },
         "user_type=1&all_user=0&refresh=1&lower=0&upper=50&netbios=&domain=&filter="},
        // The numbers aren't compared, and travel as signed ones.
        {[](UserListCall& call) {
             call.lower = 0x80000000;
             call.upper = 7;
         },
         "user_type=1&all_user=0&refresh=0&lower=-2147483648&upper=7&netbios=&domain=&filter="},
        {[](UserListCall& call) {
             call.lower = 7;
             call.upper = 0xFFFFFFFF;
         },
         "user_type=1&all_user=0&refresh=0&lower=7&upper=-1&netbios=&domain=&filter="},
    };
    for (const auto& row : rows) EXPECT_EQ(queryOf(row.change), row.query);
}

TEST(WebFileManGetUserListWire, AnotherKindOfUserIs87WithoutARequest) {
    for (const uint32_t userType : {0u, 3u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(userType);
        RawServer server({Reply::json(listOf(1))});
        UserListCall call(server);
        call.userType = userType;
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 87u);
        EXPECT_EQ(call.total, 0u);
        EXPECT_EQ(call.count, 0u);
        EXPECT_TRUE(call.users.isUntouched());
        EXPECT_EQ(server.connectionCount(), 0u);
        log.expectNoLines();
    }
}

// ---- The reply ----

TEST(WebFileManGetUserListWire, TheUsersAreCopiedIntoTheCallersRecords) {
    RawServer server({Reply::json(R"({"status":1,"total":70,"user":[
        {"name":"ann","policy":"rw","description":"Ann \u6587","torviuser":1},
        {"policy":"no name"},
        {"name":"bob","description":"","torviuser":"2"}]})")});
    UserListCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.total, 70u);
    EXPECT_EQ(call.count, 2u);
    EXPECT_EQ(call.users.texts(), (Lines{"name=ann policy=rw description=Ann \xE6\x96\x87 torvi=1",
                                         "name=bob torvi=2", "untouched"}));
    EXPECT_EQ(call.users.records[1].record.pszDescription, nullptr);
    log.expectNoLines();
}

TEST(WebFileManGetUserListWire, AListThatIsTooSmallIs122WithTheTotalAlone) {
    expectTooSmallListIs122<UserListCall>([](int number) { return listOf(number); }, &UserListCall::users,
                                          kInsufficientBuffer);
}

TEST(WebFileManGetUserListWire, AUserWithoutANameNeedsNoRoom) {
    RawServer server({Reply::json(R"({"total":9,"user":[{"name":"u1"},{"policy":"rw"},{"name":"u2"}]})")});
    UserListCall call(server);
    call.count = 2;
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.count, 2u);
    EXPECT_EQ(call.users.texts(), (Lines{"name=u1", "name=u2", "untouched"}));
    log.expectNoLines();
}

TEST(WebFileManGetUserListWire, AUserWithoutARecordIsSkipped) {
    RawServer server({Reply::json(listOf(3))});
    UserListCall call(server);
    call.list[1] = nullptr;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.count, 2u);
    EXPECT_EQ(call.users.texts(), (Lines{"name=u1", "untouched", "name=u3"}));
}

TEST(WebFileManGetUserListWire, NamesAreCutAndADescriptionIsWhole) {
    for (const size_t length : {size_t{259}, size_t{260}, size_t{2047}, size_t{2048}, size_t{100000}}) {
        SCOPED_TRACE(length);
        const std::string text(length, 'x');
        RawServer server({Reply::json(R"({"user":[{"name":")" + text + R"(","policy":")" + text +
                                      R"(","description":")" + text + R"("}]})")});
        UserListCall call(server);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        const std::string cut(length < 2048 ? 259 : 0, 'x');
        EXPECT_EQ(call.users.texts()[0],
                  (cut.empty() ? "" : "name=" + cut + " policy=" + cut + " ") + "description=" + text);
    }
}

TEST(WebFileManGetUserListWire, TheServersStatusIsNotLookedAt) {
    for (const char* status : {"0", "1", "4", "-1", "\"-4\"", "null"}) {
        SCOPED_TRACE(status);
        RawServer server({Reply::json(listOf(1, R"("total":5,"status":)" + std::string(status)))});
        UserListCall call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.total, 5u);
        EXPECT_EQ(call.users.texts(), (Lines{"name=u1", "untouched", "untouched"}));
        log.expectNoLines();
    }
}

TEST(WebFileManGetUserListWire, ARefusalLooksLikeAServerWithoutUsers) {
    expectReplies<UserListCall>(
        {
            {listOf(4, R"("status":-3,"total":5)"), 0, 0, {}},
            {"{}", 0, 0, {}},
            {R"({"user":null})", 0, 0, {}},
            {R"({"status":1,"total":-5,"user":[]})", 0, 0, {}},
            {R"({"user":"none"})",
             14,
             -1,
             {"[WFMShare] WebFileManGetUserList: WFM_PARSE_XML_FAIL",
              "[WFMShare] WebFileManGetUserList(127.0.0.1:{port}) failed dwStatus(14)"}},
        },
        [](const UserListCall& call) {
            EXPECT_EQ(call.total, 0u);
            EXPECT_EQ(call.count, 0u);
            EXPECT_TRUE(call.users.isUntouched());
        });
}

TEST(WebFileManGetUserListWire, AFailedCallLeavesTheRecordsAlone) {
    RawServer server({Reply::status(503)});
    UserListCall call(server);
    EXPECT_EQ(call.run(), 12u);
    EXPECT_EQ(call.result, 0xFFFFFFFFu);
    EXPECT_EQ(call.total, 0u);
    EXPECT_EQ(call.count, 0u);
    EXPECT_TRUE(call.users.isUntouched());
}

TEST(WebFileManGetUserListWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<UserListCall>(log, session.get(), "WebFileManGetUserList",
                                 {[](UserListCall& call) { call.resultWord = nullptr; },
                                  [](UserListCall& call) { call.totalOut = nullptr; },
                                  [](UserListCall& call) { call.countInOut = nullptr; },
                                  [](UserListCall& call) { call.list = nullptr; }},
                                 kSharePrefix);
}
