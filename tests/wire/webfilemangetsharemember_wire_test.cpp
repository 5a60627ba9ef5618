// WebFileManGetShareMember: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "recordlist.h"
#include "refusals.h"
#include "replies.h"
#include "sessioncall.h"
#include "shareroutes.h"
#include "smalllist.h"
#include "support/teamrecords.h"
#include "support/timers.h"

using namespace wire;

namespace {

using Lines = std::vector<std::string>;

struct MemberCall : SessionCall<MemberCall> {
    const wchar_t* nasID = nullptr;
    const wchar_t* shareID = L"share-1";
    uint32_t lower = 0;
    uint32_t upper = 50;
    uint32_t userType = 1;
    const wchar_t* domain = L"corp.example";
    const wchar_t* netbios = L"CORP";
    const wchar_t* filter = nullptr;
    bool allUsers = false;
    bool refresh = false;
    bool onlyMembers = false;
    uint32_t total = 0xABCD;
    uint32_t* totalOut = &total;
    uint32_t count = 3;
    uint32_t* countInOut = &count;
    CallersList<_WFM_SHARE_MEMBER_INFORMATION> members;
    _WFM_SHARE_MEMBER_INFORMATION** list = members.data();

    using SessionCall::SessionCall;
    ~MemberCall() {
        for (auto& member : members.records)
            if (!member.isUntouched()) delete[] member.record.pszDescription;
    }
    uint32_t call() {
        return WebFileManGetShareMember(session, kServer, port, nasID, shareID, lower, upper, userType,
                                        domain, netbios, filter, allUsers, refresh, onlyMembers, nullptr,
                                        totalOut, countInOut, list, resultWord);
    }
    bool isUntouched() const {
        return result == 0xABCD && total == 0xABCD && count == 3 && members.isUntouched();
    }
    bool isCleared() const { return total == 0 && count == 0 && members.isUntouched(); }
};

/// A reply with that many members.
std::string listOf(int count, const std::string& keys = R"("status":0,"total":9)") {
    std::string users;
    for (int i = 1; i <= count; ++i)
        users += std::string(i > 1 ? "," : "") + R"({"name":"u)" + std::to_string(i) + R"("})";
    return "{" + keys + R"(,"user":[)" + users + "]}";
}

const std::string kName = "[WFMShare] WebFileManGetShareMember";
const std::string kInsufficientBuffer = kName + ": ERROR_INSUFFICIENT_BUFFER";

/// The query behind the session's id.
std::string queryOf(bool fileManager, void (*change)(MemberCall&)) {
    RawServer server({Reply::json(listOf(0))});
    MemberCall call(server);
    if (fileManager) useFileManager(*call.session);
    change(call);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    const std::string query = server.onlyRequest().queryText();
    const std::string beginning = std::string("func=") +
                                  (fileManager ? "nubo_get_share_member" : "nubo_team_folder_get_member") +
                                  "&sid=sid123&";
    EXPECT_EQ(query.substr(0, beginning.size()), beginning);
    return query.substr(beginning.size());
}

}  // namespace

// ---- The request ----

TEST(WebFileManGetShareMemberWire, AsksEitherServiceForTheShare) {
    const CallTo ask = [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
        MemberCall call;
        call.run(session, port);
    };
    const std::string rest =
        "&sid=sid123&user_type=1&share_id=share-1&lower=0&upper=50&all_user=0&refresh=0&netbios=&domain=&"
        "filter=";
    expectOnEveryRoute("func=nubo_team_folder_get_member" + rest, ask, shareRoutes(false));
    expectOnEveryRoute("func=nubo_get_share_member" + rest, ask, shareRoutes(true));
}

TEST(WebFileManGetShareMemberWire, WhatIsGivenIsAskedFor) {
    const struct {
        void (*change)(MemberCall&);
        const char* query;
    } rows[] = {
        {[](MemberCall& call) { call.userType = 2; },
         "user_type=2&share_id=share-1&lower=0&upper=50&all_user=0&refresh=0&netbios=CORP&"
         "domain=corp.example&filter="},
        {[](MemberCall& call) {
             call.userType = 2;
             call.netbios = L"A&B";
             call.domain = L"c d";
             call.filter = L"jo%";
             call.shareID = L"s&1";
         },
         "user_type=2&share_id=s%261&lower=0&upper=50&all_user=0&refresh=0&netbios=A%26B&domain=c%20d&"
         "filter=jo%25"},
        {[](MemberCall& call) {
             call.userType = 2;
             call.netbios = nullptr;
             call.domain = L"";
             call.filter = L"";
         },
         "user_type=2&share_id=share-1&lower=0&upper=50&all_user=0&refresh=0&netbios=&domain=&filter="},
        {[](MemberCall& call) { call.allUsers = true; },
         "user_type=1&share_id=share-1&lower=0&upper=50&all_user=1&refresh=0&netbios=&domain=&filter="},
        {[](MemberCall& call) { call.refresh = true; },
         "user_type=1&share_id=share-1&lower=0&upper=50&all_user=0&refresh=1&netbios=&domain=&filter="},
        {[](MemberCall& call) { call.onlyMembers = true; },
         "user_type=1&share_id=share-1&lower=0&upper=50&all_user=0&refresh=0&netbios=&domain=&filter=&"
         "only_member=1"},
        // The numbers are compared without their sign, and travel with one.
        {[](MemberCall& call) {
             call.lower = 0x7FFFFFFF;
             call.upper = 0xFFFFFFFF;
         },
         "user_type=1&share_id=share-1&lower=2147483647&upper=-1&all_user=0&refresh=0&netbios=&domain=&"
         "filter="},
    };
    for (const auto& row : rows)
        for (const bool fileManager : {false, true}) EXPECT_EQ(queryOf(fileManager, row.change), row.query);
}

TEST(WebFileManGetShareMemberWire, OnlyTheSyncServiceIsToldTheNasAndLast) {
    const auto change = [](MemberCall& call) {
        call.nasID = L"n 2";
        call.onlyMembers = true;
    };
    const std::string rest =
        "user_type=1&share_id=share-1&lower=0&upper=50&all_user=0&refresh=0&netbios=&domain=&filter=&"
        "only_member=1";
    EXPECT_EQ(queryOf(false, change), rest + "&nas_id=n%202");
    EXPECT_EQ(queryOf(true, change), rest);
}

TEST(WebFileManGetShareMemberWire, LookingAnewMayTakeTwiceAsLong) {
    for (const bool refresh : {false, true}) {
        RawServer server({Reply::json(listOf(0))});
        MemberCall call(server);
        call.refresh = refresh;
        TimerCapture timers;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(timers.started(), std::vector<int>{refresh ? 120000 : 60000});
    }
}

TEST(WebFileManGetShareMemberWire, AnotherKindOfUserIs87WithoutARequest) {
    for (const uint32_t userType : {0u, 3u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(userType);
        RawServer server({Reply::json(listOf(1))});
        MemberCall call(server);
        call.userType = userType;
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 87u);
        EXPECT_TRUE(call.isCleared());
        EXPECT_EQ(server.connectionCount(), 0u);
        log.expectNoLines();
    }
}

// ---- The reply ----

TEST(WebFileManGetShareMemberWire, TheMembersAreCopiedIntoTheCallersRecords) {
    RawServer server({Reply::json(R"({"status":0,"total":70,"user":[
        {"name":"ann","share_member":1,"event_status":2,"event_id":3,"description":"Ann \u6587","torviuser":4},
        {"name":"bob","event_id":"-5","description":""}]})")});
    MemberCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.total, 70u);
    EXPECT_EQ(call.count, 2u);
    // A description is never null.
    EXPECT_EQ(call.members.texts(),
              (Lines{"name=ann member=1 status=2 id=3 description=Ann \xE6\x96\x87 torvi=4", "name=bob id=-5",
                     "untouched"}));
    log.expectNoLines();
}

TEST(WebFileManGetShareMemberWire, AListThatIsTooSmallIs122WithTheTotalAlone) {
    expectTooSmallListIs122<MemberCall>([](int number) { return listOf(number); }, &MemberCall::members,
                                        kInsufficientBuffer);
}

TEST(WebFileManGetShareMemberWire, AMemberWithoutARecordIsSkippedAndNotCounted) {
    RawServer server({Reply::json(listOf(3))});
    MemberCall call(server);
    call.list[1] = nullptr;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.count, 2u);
    EXPECT_EQ(call.members.texts(), (Lines{"name=u1", "untouched", "name=u3"}));
}

TEST(WebFileManGetShareMemberWire, ANameIsCutAndADescriptionIsWhole) {
    for (const size_t length : {size_t{259}, size_t{260}, size_t{2047}, size_t{2048}, size_t{100000}}) {
        SCOPED_TRACE(length);
        const std::string text(length, 'x');
        RawServer server(
            {Reply::json(R"({"user":[{"name":")" + text + R"(","description":")" + text + R"("}]})")});
        MemberCall call(server);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        const std::string name = length < 2048 ? "name=" + std::string(259, 'x') + " " : "";
        EXPECT_EQ(call.members.texts()[0], name + "description=" + text);
    }
}

TEST(WebFileManGetShareMemberWire, AnyOtherStatusIsARefusalWithTheWordOfAnother) {
    expectReplies<MemberCall>(
        {
            {listOf(2, R"("status":-3,"total":5)"), 0, -1, {kInsufficientBuffer}},
            {listOf(2, R"("status":1,"total":5)"), 0, -1, {kInsufficientBuffer}},
            {listOf(9, R"("status":"4","total":5)"), 0, -1, {kInsufficientBuffer}},
        },
        [](const MemberCall& call) { EXPECT_TRUE(call.isCleared()); });
}

TEST(WebFileManGetShareMemberWire, AListMayBeEmpty) {
    expectReplies<MemberCall>(
        {
            {"{}", 0, 0, {}},
            {R"({"status":0,"user":null})", 0, 0, {}},
            {R"({"total":-1,"user":[]})", 0, 0, {}},
        },
        [](const MemberCall& call) { EXPECT_TRUE(call.isCleared()); });
}

TEST(WebFileManGetShareMemberWire, WhatCannotBeReadIs14AndFillsNothing) {
    const Lines lines = {kName + ": WFM_PARSE_XML_FAIL", kName + "(127.0.0.1:{port}) failed dwStatus(14)"};
    expectReplies<MemberCall>(
        {
            {"sorry", 14, -1, lines},
            {"[]", 14, -1, lines},
            {R"({"user":"none"})", 14, -1, lines},
            {R"({"user":[{"name":"a"},{"name":[]}]})", 14, -1, lines},
            {R"({"total":99999999999})", 14, -1, lines},
        },
        [](const MemberCall& call) { EXPECT_TRUE(call.isCleared()); });
}

TEST(WebFileManGetShareMemberWire, AFailedCallLeavesBothNumbersAt0) {
    RawServer server({Reply::status(503)});
    MemberCall call(server);
    EXPECT_EQ(call.run(), 12u);
    EXPECT_TRUE(call.isCleared());
}

TEST(WebFileManGetShareMemberWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<MemberCall>(
        log, session.get(), "WebFileManGetShareMember",
        {[](MemberCall& call) { call.shareID = nullptr; }, [](MemberCall& call) { call.shareID = L""; },
         [](MemberCall& call) { call.lower = call.upper; },
         [](MemberCall& call) {
             call.lower = 0xFFFFFFFF;
             call.upper = 0x7FFFFFFF;
         },
         [](MemberCall& call) { call.totalOut = nullptr; },
         [](MemberCall& call) { call.countInOut = nullptr; }, [](MemberCall& call) { call.list = nullptr; },
         [](MemberCall& call) { call.resultWord = nullptr; }},
        kSharePrefix);
}
