// WFMTorviGetVetoFiles: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>

#include "refusals.h"
#include "routes.h"
#include "sessioncall.h"

using namespace wire;

namespace {

struct VetoFilesCall : SessionCall<VetoFilesCall> {
    uint32_t length = 299;
    uint32_t* lengthInOut = &length;
    MarkedBuffer buffer;
    wchar_t* out = buffer.data();

    using SessionCall::SessionCall;
    uint32_t call() {
        return WFMTorviGetVetoFiles(session, kServer, port, slaveID, nullptr, lengthInOut, out);
    }
    bool isUntouched() const { return length == 299 && buffer.isUntouched(); }
};

/// The text of six characters.
Reply vetoReply() {
    return Reply::json(R"({"status":0,"veto files":"/.x/書/"})");
}

}  // namespace

TEST(WFMTorviGetVetoFilesWire, AsksTheSessionsServiceAndNode) {
    expectOnEveryRoute("func=nubo_get_veto_files&sid=sid123",
                       [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
                           VetoFilesCall call;
                           call.slaveID = slaveID;
                           call.run(session, port);
                       });
}

TEST(WFMTorviGetVetoFilesWire, ABufferOfTheTextsLengthTakesItWithATerminatorBehind) {
    for (const uint32_t length : {6u, 7u, 299u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(length);
        RawServer server({vetoReply()});
        VetoFilesCall call(server);
        call.length = length;
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.length, length);
        EXPECT_EQ(call.buffer.text(), L"/.x/書/");
        log.expectNoLines();
    }
}

TEST(WFMTorviGetVetoFilesWire, AShorterBufferIsLeftAloneAndTheLengthIsTold) {
    for (const uint32_t length : {0u, 1u, 5u}) {
        SCOPED_TRACE(length);
        RawServer server({vetoReply()});
        VetoFilesCall call(server);
        call.length = length;
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.length, 7u);
        EXPECT_TRUE(call.buffer.isUntouched());
        log.expectNoLines();
    }
}

TEST(WFMTorviGetVetoFilesWire, TheSecondCallTakesWhatTheFirstOneAskedFor) {
    const std::string text(100000, 'v');
    RawServer server({Reply::json(R"({"veto files":")" + text + "\"}")});
    VetoFilesCall call(server);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.length, 100001u);
    EXPECT_TRUE(call.buffer.isUntouched());

    MarkedBuffer larger(call.length + 1);
    call.out = larger.data();
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.length, 100001u);
    EXPECT_EQ(larger.text(), std::wstring(100000, L'v'));
}

TEST(WFMTorviGetVetoFilesWire, AnEmptyTextChangesNothing) {
    for (const char* reply : {"{}", R"({"status":0})", R"({"status":0,"veto files":""})",
                              R"({"status":4,"veto files":null})", R"({"status":0,"veto_files":"/x/"})"}) {
        SCOPED_TRACE(reply);
        RawServer server({Reply::json(reply)});
        VetoFilesCall call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_TRUE(call.isUntouched());
        log.expectNoLines();
    }
}

TEST(WFMTorviGetVetoFilesWire, AFailedCallLeavesBothAlone) {
    const std::pair<Reply, uint32_t> rows[] = {
        {Reply::status(503), 12}, {Reply::json("[]"), 14}, {Reply::json(R"({"veto files":["/x/"]})"), 14}};
    for (const auto& [reply, dwStatus] : rows) {
        RawServer server({reply});
        VetoFilesCall call(server);
        EXPECT_EQ(call.run(), dwStatus);
        EXPECT_TRUE(call.isUntouched());
    }
}

TEST(WFMTorviGetVetoFilesWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<VetoFilesCall>(log, session.get(), "WFMTorviGetVetoFiles",
                                  {[](VetoFilesCall& call) { call.lengthInOut = nullptr; },
                                   [](VetoFilesCall& call) { call.out = nullptr; }});
}
