// WFMDeleteProgress: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>

// For a session without an id, which no login makes.
#include "../../src/core/authcontext.h"
#include "lines.h"
#include "refusals.h"
#include "routes.h"
#include "support/logcapture.h"
#include "support/rawserver.h"
#include "support/session.h"
#include "support/wire.h"

using namespace wire;

namespace {

struct DeleteProgressCall {
    const wchar_t* slaveID = nullptr;
    int pid = 4711;
    bool cancel = true;  // not read

    DeleteProgressCall() = default;
    DeleteProgressCall(const DeleteProgressCall&) = delete;
    DeleteProgressCall& operator=(const DeleteProgressCall&) = delete;

    uint32_t run(_WFM_AUTH_CONTEXT* session, uint32_t port) {
        return WFMDeleteProgress(session, kServer, port, slaveID, pid, &cancel);
    }
    bool isUntouched() const { return cancel; }
};

class WFMDeleteProgressWire : public testing::Test {
protected:
    SessionPtr session = makeSession();
    LogCapture log;
};

}  // namespace

TEST_F(WFMDeleteProgressWire, AsksForTheJobOnEveryRoute) {
    for (const int pid : {1, 4711, INT32_MAX})
        expectOnEveryRoute("func=daemon_list&sid=sid123&subfunc=delete&pid=" + std::to_string(pid),
                           [pid](_WFM_AUTH_CONTEXT* context, uint32_t port, const wchar_t* slaveID) {
                               DeleteProgressCall call;
                               call.pid = pid;
                               call.slaveID = slaveID;
                               call.run(context, port);
                           });
}

TEST_F(WFMDeleteProgressWire, AJobThatCannotBeClearedIsNoFailure) {
    const std::pair<const char*, int> rows[] = {
        {R"({"status":5})", -4},
        {R"({"status":3,"success":"false"})", -29},
        {R"({"status":34})", -1},
        {R"({"success":"true"})", -1},
        {"{}", -1},
    };
    for (const auto& [reply, status] : rows) {
        SCOPED_TRACE(reply);
        RawServer server({Reply::json(reply)});
        DeleteProgressCall call;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(server.requestCount(), 1u);
        log.expectLines({"[WFM] WFMDeleteProgress: failed status(" + std::to_string(status) + ")"});
    }
}

TEST_F(WFMDeleteProgressWire, DoesNotAskForASuccess) {
    for (const char* reply :
         {R"({"status":1})", R"({"status":1,"success":"false"})", R"({"status":1,"success":"true"})"}) {
        SCOPED_TRACE(reply);
        RawServer server({Reply::json(reply)});
        DeleteProgressCall call;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    }
    log.expectNoLines();
}

TEST_F(WFMDeleteProgressWire, RefusesWhatMustBeGivenWithOneLine) {
    expectRefusals<DeleteProgressCall>(
        log, session.get(), "WFMDeleteProgress",
        {[](DeleteProgressCall& call) { call.pid = 0; }, [](DeleteProgressCall& call) { call.pid = -1; },
         [](DeleteProgressCall& call) { call.pid = INT32_MIN; }});
}

TEST_F(WFMDeleteProgressWire, RefusesASessionWithoutASid) {
    session->pszSid[0] = L'\0';
    DeleteProgressCall call;
    EXPECT_EQ(call.run(session.get(), 80), 8u);
    log.expectLines({refusedLine("WFMDeleteProgress", 80)});
}
