// WebFileManAcceptShare: what is its own. What every call shares stands in everycall_wire_test.cpp.

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

const std::string kName = "[WFMShare] WebFileManAcceptShare";

struct AcceptCall : SessionCall<AcceptCall> {
    const wchar_t* nasID = nullptr;
    const wchar_t* displayName = L"Plans";
    uint32_t eventID = 7;
    const wchar_t* shareID = L"share-1";
    MarkedBuffer file{2100};
    wchar_t* out = file.data();

    using SessionCall::SessionCall;
    uint32_t call() {
        return WebFileManAcceptShare(session, kServer, port, nasID, displayName, eventID, shareID, nullptr,
                                     out, resultWord);
    }
    bool isUntouched() const { return result == 0xABCD && file.isUntouched(); }
};

/// What the call hands out at a reply whose "file" is this.
std::wstring fileOf(const std::string& file) {
    RawServer server({Reply::json(R"({"status":0,"file":)" + file + "}")});
    AcceptCall call(server);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    return call.file.text();
}

}  // namespace

// ---- The request ----

TEST(WebFileManAcceptShareWire, NamesTheShareToTheSyncServiceAndTheEventToTheFileManager) {
    const CallTo accept = [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
        AcceptCall call;
        call.displayName = L"a b&\x6587";
        call.run(session, port);
    };
    expectOnEveryRoute(
        "func=nubo_team_folder_accept_share&sid=sid123&display_name=a%20b%26%E6%96%87&share_id=share-1",
        accept, shareRoutes(false));
    expectOnEveryRoute("func=nubo_accept_share&sid=sid123&event_id=7", accept, shareRoutes(true));
}

TEST(WebFileManAcceptShareWire, TheSyncServiceIsToldTheNasWhereOneIsGiven) {
    for (const auto& [nasID, sent] : {std::pair{L"", ""}, {L"n 2", "&nas_id=n%202"}}) {
        RawServer server({Reply::json("{}")});
        AcceptCall call(server);
        call.nasID = nasID;
        call.shareID = L"s&1";
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(server.onlyRequest().queryText(),
                  std::string("func=nubo_team_folder_accept_share&sid=sid123&display_name=Plans&"
                              "share_id=s%261") +
                      sent);
    }
}

TEST(WebFileManAcceptShareWire, TheFileManagerNeedsTheEventAlone) {
    RawServer server({Reply::json(R"({"status":0,"file":"/home/x"})")});
    AcceptCall call(server);
    useFileManager(*call.session);
    call.nasID = L"n";
    call.displayName = call.shareID = nullptr;
    call.eventID = 0x80000000;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.file.text(), L"/home/x");
    EXPECT_EQ(server.onlyRequest().queryText(), "func=nubo_accept_share&sid=sid123&event_id=-2147483648");
}

// ---- The reply ----

TEST(WebFileManAcceptShareWire, TheFileIsCopiedWithoutACapacity) {
    EXPECT_EQ(fileOf(R"("/home/.Torvi/\u6587")"), L"/home/.Torvi/\x6587");
    EXPECT_EQ(fileOf("null"), L"");
    EXPECT_EQ(fileOf("\"" + std::string(2047, 'x') + "\""), std::wstring(2047, L'x'));
    EXPECT_EQ(fileOf("\"" + std::string(2048, 'x') + "\""), L"");
}

TEST(WebFileManAcceptShareWire, AnyOtherStatusIsTranslatedAndCopiesNothing) {
    const auto refused = [](const std::string& number) {
        return std::vector<std::string>{kName + ": Get error code(" + number + ")"};
    };
    const auto reply = [](const std::string& status) { return R"({"file":"x","status":)" + status + "}"; };
    expectReplies<AcceptCall>(
        {
            // The server's success elsewhere: it is logged as an error, and the result is a success.
            {reply("1"), 0, 0, refused("1")},
            {reply("2"), 0, -15, refused("2")},
            {reply("\"4\""), 0, -3, refused("4")},
            {reply("-3"), 0, -4, refused("-3")},
            {reply("34"), 0, -1, refused("34")},
            {reply("null"), 0, -9, refused("-1")},
            {"{}", 0, -9, refused("-1")},
            {"[]", 0, -9, refused("-1")},
        },
        [](const AcceptCall& call) { EXPECT_TRUE(call.file.isUntouched()); });
}

TEST(WebFileManAcceptShareWire, WhatCannotBeReadIs14) {
    const std::vector<std::string> lines = {kName + ": WFM_PARSE_XML_FAIL",
                                            kName + "(127.0.0.1:{port}) failed dwStatus(14)"};
    expectReplies<AcceptCall>({{"sorry", 14, -1, lines}, {R"({"status":0,"file":[]})", 14, -1, lines}},
                              [](const AcceptCall& call) { EXPECT_TRUE(call.file.isUntouched()); });
}

TEST(WebFileManAcceptShareWire, AFailedCallCopiesNothing) {
    RawServer server({Reply::status(503)});
    AcceptCall call(server);
    EXPECT_EQ(call.run(), 12u);
    EXPECT_TRUE(call.file.isUntouched());
}

TEST(WebFileManAcceptShareWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<AcceptCall>(
        log, session.get(), "WebFileManAcceptShare",
        {[](AcceptCall& call) { call.displayName = nullptr; },
         [](AcceptCall& call) { call.displayName = L""; }, [](AcceptCall& call) { call.shareID = nullptr; },
         [](AcceptCall& call) { call.shareID = L""; }, [](AcceptCall& call) { call.out = nullptr; },
         [](AcceptCall& call) { call.resultWord = nullptr; }},
        kSharePrefix);
}
