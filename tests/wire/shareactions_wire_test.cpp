// WebFileManDenyShare, WebFileManLeaveShare, WebFileManKickOutShareMember and WebFileManRemoveEvent, sisters
// but for their queries and their words. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "WebFileManShareAPI.h"
#include "refusals.h"
#include "replies.h"
#include "sessioncall.h"
#include "shareroutes.h"

using namespace wire;

namespace {

struct ActionCall;

struct Action {
    const char* name;
    uint32_t (*act)(const ActionCall& call);
    const char* syncFunc;  ///< null: the sync service doesn't have it
    const char* fileManagerFunc;
    const char* refused;  ///< what the line of a refusal says in front of the number, and behind it
    const char* behind;
    const char* notUnderstood = "WFM_PARSE_XML_FAIL";
};

/// Only one test runs at a time; its parameter is what the arguments below call.
const Action* current = nullptr;

/// Good arguments, at the service that has the call.
struct ActionCall : SessionCall<ActionCall> {
    const wchar_t* nasID = nullptr;
    const wchar_t* shareID = L"share-1";
    uint32_t eventID = 7;

    ActionCall() {
        if (current->syncFunc == nullptr) useFileManager(*session);
    }
    explicit ActionCall(const RawServer& at) : ActionCall() { port = at.port(); }
    uint32_t call() { return current->act(*this); }
    bool isUntouched() const { return result == 0xABCD; }
};

const Action kActions[] = {
    {"WebFileManDenyShare",
     [](const ActionCall& call) {
         return WebFileManDenyShare(call.session, kServer, call.port, call.nasID, call.shareID, call.eventID,
                                    nullptr, call.resultWord);
     },
     "nubo_team_folder_deny_share", "nubo_deny_share", "get error code = ", ""},
    {"WebFileManLeaveShare",
     [](const ActionCall& call) {
         return WebFileManLeaveShare(call.session, kServer, call.port, call.nasID, call.shareID, call.eventID,
                                     nullptr, call.resultWord);
     },
     "nubo_team_folder_leave_share", "nubo_leave_share", "get error code=", ""},
    {"WebFileManKickOutShareMember",
     [](const ActionCall& call) {
         return WebFileManKickOutShareMember(call.session, kServer, call.port, call.nasID, call.shareID,
                                             call.eventID, nullptr, call.resultWord);
     },
     "nubo_kickout_share", "nubo_kickout_share", "Get error code(", ")"},
    {"WebFileManRemoveEvent",
     [](const ActionCall& call) {
         return WebFileManRemoveEvent(call.session, kServer, call.port, call.eventID, nullptr,
                                      call.resultWord);
     },
     nullptr, "nubo_remove_event", "Get error code(", ")", "WFM_PARSE_XML_INVALID_PARAMETER"},
};

class ShareActionWire : public testing::TestWithParam<Action> {
protected:
    ShareActionWire() { current = &GetParam(); }

    static std::string line(const std::string& text) {
        return "[WFMShare] " + std::string(GetParam().name) + text;
    }
    static std::string refused(int number) {
        return line(": " + (GetParam().refused + std::to_string(number)) + GetParam().behind);
    }
    static std::string syncQuery(const std::string& rest) {
        return std::string("func=") + GetParam().syncFunc + "&sid=sid123&share_id=" + rest;
    }
};

const CallTo kAct = [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
    ActionCall call;
    call.run(session, port);
};

}  // namespace

TEST_P(ShareActionWire, NamesTheShareToTheSyncServiceAndTheEventToTheFileManager) {
    if (GetParam().syncFunc != nullptr) expectOnEveryRoute(syncQuery("share-1"), kAct, shareRoutes(false));
    expectOnEveryRoute(std::string("func=") + GetParam().fileManagerFunc + "&sid=sid123&event_id=7", kAct,
                       shareRoutes(true));
}

TEST_P(ShareActionWire, TheSyncServiceIsToldTheNasWhereOneIsGiven) {
    if (GetParam().syncFunc == nullptr) GTEST_SKIP() << "the sync service doesn't have it";
    const struct {
        const wchar_t* nasID;
        const wchar_t* shareID;
        const char* sent;
    } rows[] = {{L"", L"s", "s"},
                {L"nas-2", L"s", "s&nas_id=nas-2"},
                {L"n&\x6587", L"s 1", "s%201&nas_id=n%26%E6%96%87"}};
    for (const auto& row : rows) {
        RawServer server({Reply::json("{}")});
        ActionCall call(server);
        call.nasID = row.nasID;
        call.shareID = row.shareID;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(server.onlyRequest().queryText(), syncQuery(row.sent));
    }
}

TEST_P(ShareActionWire, TheFileManagerNeedsNoShareAndTakesAnyEvent) {
    for (const wchar_t* shareID : {static_cast<const wchar_t*>(nullptr), L""})
        for (const auto& [eventID, sent] : {std::pair{0U, "0"}, {0xFFFFFFFFU, "-1"}}) {
            RawServer server({Reply::json(R"({"status":0})")});
            ActionCall call(server);
            useFileManager(*call.session);
            call.nasID = L"nas-2";
            call.shareID = shareID;
            call.eventID = eventID;
            EXPECT_EQ(call.run(), 0u);
            EXPECT_EQ(call.result, 0u);
            EXPECT_EQ(server.onlyRequest().queryText(),
                      std::string("func=") + GetParam().fileManagerFunc + "&sid=sid123&event_id=" + sent);
        }
}

TEST_P(ShareActionWire, TheSyncServiceNeedsAShareOrDoesNotHaveIt) {
    for (const wchar_t* shareID : {static_cast<const wchar_t*>(nullptr), L""}) {
        RawServer server({Reply::json(R"({"status":0})")});
        const SessionPtr session = makeSession();
        ActionCall call(server);
        call.shareID = shareID;
        LogCapture log;
        EXPECT_EQ(call.run(session.get(), server.port()), 8u);
        EXPECT_TRUE(call.isUntouched());
        EXPECT_EQ(server.connectionCount(), 0u);
        log.expectLines({refusedLine(GetParam().name, server.port(), kSharePrefix)});
    }
}

TEST_P(ShareActionWire, OnlyTheStatus0IsASuccess) {
    expectReplies<ActionCall>({
        {R"({"status":0})", 0, 0, {}},
        {R"({"status":"0","success":"false"})", 0, 0, {}},
        {R"({"status":1,"success":"true"})", 0, -1, {refused(1)}},
        {R"({"status":4})", 0, -1, {refused(4)}},
        {R"({"status":-3})", 0, -1, {refused(-3)}},
        {R"({"success":"true"})", 0, -1, {refused(-1)}},
        {"{}", 0, -1, {refused(-1)}},
        {"[]", 0, -1, {refused(-1)}},
        {R"("status")", 0, -1, {refused(-1)}},
    });
}

TEST_P(ShareActionWire, WhatCannotBeReadIs14) {
    const std::vector<std::string> lines = {line(": " + std::string(GetParam().notUnderstood)),
                                            line("(127.0.0.1:{port}) failed dwStatus(14)")};
    expectReplies<ActionCall>({
        {"sorry", 14, -1, lines},
        {R"({"status":0,"success":["true"]})", 14, -1, lines},
        {R"({"status":99999999999})", 14, -1, lines},
    });
}

TEST_P(ShareActionWire, RefusesANullResultWordWithOneLine) {
    const ActionCall good;
    LogCapture log;
    expectRefusals<ActionCall>(log, good.session, GetParam().name,
                               {[](ActionCall& call) { call.resultWord = nullptr; }}, kSharePrefix);
}

INSTANTIATE_TEST_SUITE_P(, ShareActionWire, testing::ValuesIn(kActions),
                         [](const testing::TestParamInfo<Action>& row) {
                             return std::string(row.param.name);
                         });
