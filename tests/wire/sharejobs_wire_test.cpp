// WebFileManShareTo, WebFileManUnshare and WebFileManSetShareMember: three calls that start a job of the
// server's, alike in what their replies come to. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "WebFileManShareAPI.h"
#include "forms.h"
#include "receivedfolders.h"
#include "refusals.h"
#include "replies.h"
#include "sessioncall.h"
#include "shareroutes.h"

using namespace wire;

namespace {

/// One of the three, with good arguments.
template <class Derived>
struct JobCall : SessionCall<Derived> {
    const wchar_t* nasID = nullptr;
    const wchar_t* shareID = L"share-1";
    uint32_t capacity = 260;
    MarkedBuffer pid;
    wchar_t* out = pid.data();

    using SessionCall<Derived>::SessionCall;
    bool isUntouched() const { return this->result == 0xABCD && pid.isUntouched(); }
};

struct ShareToCall : JobCall<ShareToCall> {
    static constexpr const char* kName = "WebFileManShareTo";
    std::vector<const wchar_t*> names{L"ann", L"bob"};
    const wchar_t* const* targets = names.data();
    uint32_t targetCount = 2;
    const wchar_t* path = L"/home/Plans";
    uint32_t status = 0xABCD;
    uint32_t* statusWord = &status;

    using JobCall::JobCall;
    uint32_t call() {
        return WebFileManShareTo(session, kServer, port, targetCount, targets, path, capacity, nullptr, out,
                                 resultWord, statusWord);
    }
    int32_t signedStatus() const { return static_cast<int32_t>(status); }
    bool isUntouched() const { return JobCall::isUntouched() && status == 0xABCD; }
};

struct UnshareCall : JobCall<UnshareCall> {
    static constexpr const char* kName = "WebFileManUnshare";

    using JobCall::JobCall;
    uint32_t call() {
        return WebFileManUnshare(session, kServer, port, nasID, shareID, capacity, nullptr, out, resultWord);
    }
};

struct SetMemberCall : JobCall<SetMemberCall> {
    static constexpr const char* kName = "WebFileManSetShareMember";
    _WFM_SHARE_MEMBER_ACTION ann{L"ann", 1, 11};
    _WFM_SHARE_MEMBER_ACTION bob{L"b &\x6587", 0x80000000, 0xFFFFFFFF};
    std::vector<const _WFM_SHARE_MEMBER_ACTION*> pointers{&ann, &bob};
    const _WFM_SHARE_MEMBER_ACTION* const* members = pointers.data();
    uint32_t memberCount = 2;

    using JobCall::JobCall;
    uint32_t call() {
        return WebFileManSetShareMember(session, kServer, port, nasID, shareID, memberCount, members,
                                        capacity, nullptr, out, resultWord);
    }
};

template <class Call>
class ShareJobWire : public testing::Test {
protected:
    static std::string line(const std::string& text) {
        return std::string("[WFMShare] ") + Call::kName + text;
    }
};

struct JobNames {
    template <class Call>
    static std::string GetName(int) {
        return Call::kName;
    }
};

using JobCalls = testing::Types<ShareToCall, UnshareCall, SetMemberCall>;
TYPED_TEST_SUITE(ShareJobWire, JobCalls, JobNames);

/// Runs a good call of that kind on a session; its numbers are its own business.
template <class Call>
CallTo runs() {
    return [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
        Call call;
        call.run(session, port);
    };
}

/// The fields that a call sends, as they stand on the wire, from the one of that key on.
template <class Call, class Change>
HeaderList fieldsFrom(const std::string& key, bool fileManager, Change change) {
    RawServer server({Reply::json("{}")});
    Call call(server);
    if (fileManager) useFileManager(*call.session);
    change(call);
    EXPECT_EQ(call.run(), 0u);
    HeaderList fields;
    for (const Field& field : server.onlyRequest().form())
        if (!fields.empty() || field.key == key) fields.emplace_back(field.rawKey, field.rawValue);
    return fields;
}

}  // namespace

// ---- What the three share ----

TYPED_TEST(ShareJobWire, TheProcessIdIsHandedOut) {
    const auto job = [](const std::string& id) { return R"({"status":1,"pid":)" + id + "}"; };
    for (const auto& [id, expected] : {std::pair<std::string, std::wstring>{R"("4711")", L"4711"},
                                       {"4711", L"4711"},
                                       {R"("\u6587-1")", L"\x6587-1"},
                                       {"\"" + std::string(259, 'p') + "\"", std::wstring(259, L'p')}}) {
        RawServer server({Reply::json(job(id))});
        TypeParam call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.pid.text(), expected);
        log.expectNoLines();
    }
}

TYPED_TEST(ShareJobWire, AProcessIdAsLongAsTheCapacityIs122) {
    for (const uint32_t capacity : {1u, 3u, 4u, 5u}) {
        SCOPED_TRACE(capacity);
        RawServer server({Reply::json(R"({"status":1,"pid":"4711"})")});
        TypeParam call(server);
        call.capacity = capacity;
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        if (capacity == 5) {
            EXPECT_EQ(call.result, 0u);
            EXPECT_EQ(call.pid.text(), L"4711");
            log.expectNoLines();
        } else {
            EXPECT_EQ(call.result, 122u);
            EXPECT_TRUE(call.pid.isUntouched());
            log.expectLines({this->line(": ERROR_INSUFFICIENT_BUFFER")});
        }
    }
}

TYPED_TEST(ShareJobWire, WithoutAProcessIdTheServersWordStillCounts) {
    const std::vector<std::string> lines = {this->line(": Invalid ProcessID")};
    expectReplies<TypeParam>(
        {
            {R"({"status":1})", 0, 0, lines},
            {R"({"status":"1","pid":null})", 0, 0, lines},
            {R"({"status":1,"pid":")" + std::string(260, 'p') + "\"}", 0, 0, lines},
            {R"({"status":4,"pid":""})", 0, -1, lines},
            {R"({"status":0})", 0, -1, lines},
            {"{}", 0, -1, lines},
        },
        [](const TypeParam& call) { EXPECT_TRUE(call.pid.isUntouched()); });
}

TYPED_TEST(ShareJobWire, ARefusedJobMayStillHaveAProcessId) {
    expectReplies<TypeParam>(
        {
            {R"({"status":4,"pid":"4711"})", 0, -1, {}},
            {R"({"status":0,"pid":"4711"})", 0, -1, {}},
            {R"({"pid":"4711"})", 0, -1, {}},
        },
        [](const TypeParam& call) { EXPECT_EQ(call.pid.text(), L"4711"); });

    RawServer server({Reply::json(R"({"status":4,"pid":"4711"})")});
    TypeParam call(server);
    call.capacity = 4;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 122u);
    EXPECT_TRUE(call.pid.isUntouched());
}

TYPED_TEST(ShareJobWire, WhatCannotBeReadIs14) {
    const std::vector<std::string> lines = {this->line(": WFM_PARSE_XML_FAIL"),
                                            this->line("(127.0.0.1:{port}) failed dwStatus(14)")};
    expectReplies<TypeParam>(
        {
            {"sorry", 14, -1, lines},
            {"[]", 14, -1, lines},
            {R"({"status":1,"pid":["4711"]})", 14, -1, lines},
        },
        [](const TypeParam& call) { EXPECT_TRUE(call.pid.isUntouched()); });
}

TYPED_TEST(ShareJobWire, AFailedCallHandsOutNoProcessId) {
    RawServer server({Reply::status(503)});
    TypeParam call(server);
    EXPECT_EQ(call.run(), 12u);
    EXPECT_TRUE(call.pid.isUntouched());
}

TYPED_TEST(ShareJobWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<TypeParam>(
        log, session.get(), TypeParam::kName,
        {[](TypeParam& call) { call.capacity = 0; }, [](TypeParam& call) { call.out = nullptr; },
         [](TypeParam& call) { call.resultWord = nullptr; }},
        kSharePrefix);
}

// ---- WebFileManShareTo ----

TEST(WebFileManShareToWire, SendsTheSessionAndTheUsersInAForm) {
    const HeaderList fields = {{"sid", "sid123"},
                               {"target_number", "2"},
                               {"target_name0", "ann"},
                               {"target_name1", "bob"},
                               {"file", "home%2FPlans"}};
    expectPostOnEveryRoute("func=nubo_team_folder_share_to", fields, runs<ShareToCall>(), {},
                           shareRoutes(false));
    expectPostOnEveryRoute("func=nubo_share_to", fields, runs<ShareToCall>(), {}, shareRoutes(true));
}

TEST(WebFileManShareToWire, TheHomesSlashIsNotSent) {
    const struct {
        const wchar_t* path;
        const char* sent;
    } rows[] = {{L"/home/a", "home%2Fa"}, {L"/HoMe/a", "HoMe%2Fa"},      {L"/home/", "home%2F"},
                {L"/home", "%2Fhome"},    {L"/homes/a", "%2Fhomes%2Fa"}, {L"/x/home/a", "%2Fx%2Fhome%2Fa"},
                {L"home/a", "home%2Fa"}};
    for (const auto& row : rows)
        for (const bool fileManager : {false, true})
            EXPECT_EQ(fieldsFrom<ShareToCall>("file", fileManager,
                                              [&](ShareToCall& call) { call.path = row.path; }),
                      (HeaderList{{"file", row.sent}}));
}

TEST(WebFileManShareToWire, NamesTravelAsTheyAre) {
    const std::vector<const wchar_t*> names = {L"a b", L"\x6587&", L""};
    EXPECT_EQ(fieldsFrom<ShareToCall>("target_number", false,
                                      [&](ShareToCall& call) {
                                          call.targets = names.data();
                                          call.targetCount = 3;
                                      }),
              (HeaderList{{"target_number", "3"},
                          {"target_name0", "a%20b"},
                          {"target_name1", "%E6%96%87%26"},
                          {"target_name2", ""},
                          {"file", "home%2FPlans"}}));
}

TEST(WebFileManShareToWire, AFolderThatWasReceivedIsNotShared) {
    for (const ReceivedFolder& row : receivedFolders()) {
        SCOPED_TRACE(row.what);
        RawServer server({Reply::json(R"({"status":1,"pid":"7"})")});
        const SessionPtr session = row.session();
        ShareToCall call(server);
        call.session = session.get();
        call.path = row.path;
        LogCapture log;
        if (!row.isReceived) {
            EXPECT_EQ(call.run(), 0u);
            EXPECT_EQ(server.requestCount(), 1u);
            log.expectNoLines();
            continue;
        }
        EXPECT_EQ(call.run(), 8u);
        EXPECT_EQ(call.signedResult(), -1);
        EXPECT_EQ(call.signedStatus(), -1);
        EXPECT_TRUE(call.pid.isUntouched());
        EXPECT_EQ(server.connectionCount(), 0u);
        log.expectLines(
            {std::string("[WFMShare] WebFileManShareTo: Is recevier side team folder(") + row.sent + ")"});
    }
}

TEST(WebFileManShareToWire, TheSecondNumberIsTheClientCode) {
    const struct {
        const char* reply;
        uint32_t dwStatus;
        int32_t status;
    } rows[] = {{R"({"status":1,"pid":"7"})", 0, 0},
                {R"({"status":4})", 0, -3},
                {R"({"status":33,"pid":"7"})", 0, -15},
                {R"({"status":0})", 0, -2},
                {"{}", 0, -1},
                {"[]", 14, -1}};
    for (const auto& row : rows) {
        RawServer server({Reply::json(row.reply)});
        ShareToCall call(server);
        EXPECT_EQ(call.run(), row.dwStatus);
        EXPECT_EQ(call.signedStatus(), row.status) << row.reply;
    }
}

TEST(WebFileManShareToWire, TheSecondNumberOfAFailedCallIsMinus1) {
    RawServer server({Reply::status(503)});
    ShareToCall call(server);
    EXPECT_EQ(call.run(), 12u);
    EXPECT_EQ(call.signedStatus(), -1);
}

TEST(WebFileManShareToWire, TheSecondNumberMayBeLeftOut) {
    RawServer server({Reply::json(R"({"status":1,"pid":"7"})")});
    ShareToCall call(server);
    call.statusWord = nullptr;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.pid.text(), L"7");
}

TEST(WebFileManShareToWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<ShareToCall>(
        log, session.get(), "WebFileManShareTo",
        {[](ShareToCall& call) { call.targetCount = 0; }, [](ShareToCall& call) { call.targets = nullptr; },
         [](ShareToCall& call) { call.path = nullptr; }, [](ShareToCall& call) { call.path = L""; }},
        kSharePrefix);
}

// ---- WebFileManUnshare ----

TEST(WebFileManUnshareWire, NamesTheShareToEitherService) {
    expectOnEveryRoute("func=nubo_team_folder_unshare_ex&sid=sid123&share_id=share-1", runs<UnshareCall>(),
                       shareRoutes(false));
    expectOnEveryRoute("func=nubo_unshare&sid=sid123&share_id=share-1", runs<UnshareCall>(),
                       shareRoutes(true));
}

TEST(WebFileManUnshareWire, OnlyTheSyncServiceIsToldTheNas) {
    const struct {
        const wchar_t* nasID;
        bool fileManager;
        const char* query;
    } rows[] = {{L"", false, "func=nubo_team_folder_unshare_ex&sid=sid123&share_id=s%201"},
                {L"n&2", false, "func=nubo_team_folder_unshare_ex&sid=sid123&share_id=s%201&nas_id=n%262"},
                {L"n&2", true, "func=nubo_unshare&sid=sid123&share_id=s%201"}};
    for (const auto& row : rows) {
        RawServer server({Reply::json("{}")});
        UnshareCall call(server);
        if (row.fileManager) useFileManager(*call.session);
        call.nasID = row.nasID;
        call.shareID = L"s 1";
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(server.onlyRequest().queryText(), row.query);
    }
}

TEST(WebFileManUnshareWire, NeedsAShareAtEitherService) {
    for (const bool fileManager : {false, true}) {
        const SessionPtr session = makeSession();
        if (fileManager) useFileManager(*session);
        LogCapture log;
        expectRefusals<UnshareCall>(log, session.get(), "WebFileManUnshare",
                                    {[](UnshareCall& call) { call.shareID = nullptr; },
                                     [](UnshareCall& call) { call.shareID = L""; }},
                                    kSharePrefix);
    }
}

// ---- WebFileManSetShareMember ----

TEST(WebFileManSetShareMemberWire, SendsTheMembersInAForm) {
    expectPostOnEveryRoute("func=nubo_team_folder_set_member",
                           {{"sid", "sid123"},
                            {"share_id", "share-1"},
                            {"user0", "ann"},
                            {"action0", "1"},
                            {"user1", "b%2520%2526%E6%96%87"},
                            {"action1", "2147483648"},
                            {"user_number", "2"}},
                           runs<SetMemberCall>(), {}, shareRoutes(false));
    expectPostOnEveryRoute("func=nubo_set_share_member",
                           {{"sid", "sid123"},
                            {"share_id", "share-1"},
                            {"event_id0", "11"},
                            {"user0", "ann"},
                            {"action0", "1"},
                            {"event_id1", "4294967295"},
                            {"user1", "b%2520%2526%E6%96%87"},
                            {"action1", "2147483648"},
                            {"user_number", "2"}},
                           runs<SetMemberCall>(), {}, shareRoutes(true));
}

TEST(WebFileManSetShareMemberWire, TheNasIsToldToEitherServiceWhereOneIsGiven) {
    for (const bool fileManager : {false, true}) {
        const auto end = [fileManager](const wchar_t* nasID) {
            return fieldsFrom<SetMemberCall>("user_number", fileManager,
                                             [nasID](SetMemberCall& call) { call.nasID = nasID; });
        };
        EXPECT_EQ(end(L""), (HeaderList{{"user_number", "2"}}));
        EXPECT_EQ(end(L"n 2"), (HeaderList{{"user_number", "2"}, {"nas_id", "n%202"}}));
    }
}

TEST(WebFileManSetShareMemberWire, ANullAmongTheMembersIsLeftOut) {
    EXPECT_EQ(fieldsFrom<SetMemberCall>("user0", false,
                                        [](SetMemberCall& call) {
                                            call.pointers = {nullptr, &call.ann};
                                            call.members = call.pointers.data();
                                        }),
              (HeaderList{{"user0", "ann"}, {"action0", "1"}, {"user_number", "1"}}));
}

TEST(WebFileManSetShareMemberWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<SetMemberCall>(
        log, session.get(), "WebFileManSetShareMember",
        {[](SetMemberCall& call) { call.shareID = nullptr; }, [](SetMemberCall& call) { call.shareID = L""; },
         [](SetMemberCall& call) { call.memberCount = 0; },
         [](SetMemberCall& call) { call.members = nullptr; }},
        kSharePrefix);
}
