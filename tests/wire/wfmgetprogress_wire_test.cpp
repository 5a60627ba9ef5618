// WFMGetProgress: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

// For a session without an id, which no login makes.
#include "../../src/core/authcontext.h"
#include "lines.h"
#include "refusals.h"
#include "routes.h"
#include "support/logcapture.h"
#include "support/rawserver.h"
#include "support/session.h"
#include "support/timers.h"
#include "support/wire.h"

using namespace wire;

namespace {

struct ProgressCall {
    const wchar_t* slaveID = nullptr;
    const wchar_t* name = L"\x6587.txt";
    int32_t pid = 4711;
    bool cancelled = false;
    bool* cancel = &cancelled;
    uint32_t result = 0xABCD;
    uint32_t* resultWord = &result;

    ProgressCall() = default;
    ProgressCall(const ProgressCall&) = delete;
    ProgressCall& operator=(const ProgressCall&) = delete;

    uint32_t run(_WFM_AUTH_CONTEXT* session, uint32_t port) {
        return WFMGetProgress(session, kServer, port, slaveID, name, pid, cancel, resultWord);
    }
    bool isUntouched() const { return result == 0xABCD; }
};

const char* const kQuery = "func=get_move_status&sid=sid123&pid=";

Reply percent(const std::string& number) {
    return Reply::json(R"({"status":1,"filename":"a","percent":)" + number + "}");
}

/// The line of a job that the server doesn't know.
std::string unknownLine(int retries) {
    return "[WFM] WFMGetProgress: ERROR_PATH_NOT_FOUND(\xE6\x96\x87.txt)(" + std::to_string(retries) + ")";
}
std::string failedLine(int status) {
    return "[WFM] WFMGetProgress: GetStatus failed(\xE6\x96\x87.txt)(" + std::to_string(status) + ")";
}

class WFMGetProgressWire : public testing::Test {
protected:
    /// The call meets these answers, asks once for each, and comes to these numbers.
    void expectPoll(std::vector<Reply> replies, uint32_t dwStatus, int32_t result,
                    const char* file = __builtin_FILE(), int where = __builtin_LINE()) {
        const testing::ScopedTrace trace(file, where, "poll");
        const size_t rounds = replies.size();
        replies.push_back(percent("100"));  // of a round too many
        RawServer server(std::move(replies));
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), dwStatus);
        EXPECT_EQ(static_cast<int32_t>(call.result), result);
        port = server.port();
        const auto requests = server.requests();
        EXPECT_EQ(requests.size(), rounds);
        for (const Request& request : requests)
            expectGet(request, "/cgi-bin/torvi/torvisrv.cgi?" + std::string(kQuery) + "4711",
                      baseHeaders(server));
    }

    SessionPtr session = makeSession();
    LogCapture log;
    ProgressCall call;
    uint32_t port = 0;
};

}  // namespace

TEST_F(WFMGetProgressWire, AsksForTheJobOnEveryRoute) {
    for (const int32_t pid : {4711, 0, -1, INT32_MAX})
        expectOnEveryRoute(kQuery + std::to_string(pid),
                           [pid](_WFM_AUTH_CONTEXT* context, uint32_t to, const wchar_t* slaveID) {
                               ProgressCall once;
                               once.pid = pid;
                               once.slaveID = slaveID;
                               once.run(context, to);
                           });
}

TEST_F(WFMGetProgressWire, ASessionWithoutASidAsksAllTheSame) {
    session->pszSid[0] = L'\0';
    RawServer server({percent("100")});
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(server.onlyRequest().queryText(), "func=get_move_status&sid=&pid=4711");
}

TEST_F(WFMGetProgressWire, AJobThatIsDoneEndsThePollWithoutAWait) {
    SleepCapture sleeps;
    expectPoll({percent("100")}, 0, 0);
    expectPoll({percent("\"100\"")}, 0, 0);
    EXPECT_TRUE(sleeps.slept().empty());
    log.expectNoLines();
}

TEST_F(WFMGetProgressWire, ARunningJobIsAskedForEvery200Milliseconds) {
    SleepCapture sleeps;
    expectPoll({percent("0"), percent("50"), percent("99"), percent("100")}, 0, 0);
    EXPECT_EQ(sleeps.slept(), std::vector<int>({200, 200, 200}));
    log.expectNoLines();
}

TEST_F(WFMGetProgressWire, OnlyExactly100EndsTheJob) {
    SleepCapture sleeps;
    expectPoll({percent("101"), percent("1000"), percent("-2"), percent("-100"), percent("100")}, 0, 0);
    EXPECT_EQ(sleeps.slept(), std::vector<int>(4, 200));
    log.expectNoLines();
}

TEST_F(WFMGetProgressWire, TheNumberOfRoundsHasNoLimit) {
    SleepCapture sleeps;
    std::vector<Reply> replies(100, percent("1"));
    replies.push_back(percent("100"));
    expectPoll(replies, 0, 0);
    EXPECT_EQ(sleeps.slept().size(), 100u);
}

TEST_F(WFMGetProgressWire, AJobThatIsUnknownFourTimesIsNotFound) {
    SleepCapture sleeps;
    expectPoll(std::vector<Reply>(4, percent("-1")), 0, 3);
    EXPECT_EQ(sleeps.slept(), std::vector<int>({200, 200, 200}));
    log.expectLines({unknownLine(3), unknownLine(2), unknownLine(1), unknownLine(0)});
}

TEST_F(WFMGetProgressWire, AJobThatIsKnownAfterThreeReadingsEndsWell) {
    const SleepCapture sleeps;
    expectPoll({percent("-1"), percent("-1"), percent("-1"), percent("100")}, 0, 0);
    log.expectLines({unknownLine(3), unknownLine(2), unknownLine(1)});
}

TEST_F(WFMGetProgressWire, UnknownReadingsAreCountedOverTheWholePoll) {
    const SleepCapture sleeps;
    expectPoll({percent("-1"), percent("10"), percent("-1"), percent("20"), percent("-1"), percent("30"),
                percent("-1")},
               0, 3);
    log.expectLines({unknownLine(3), unknownLine(2), unknownLine(1), unknownLine(0)});
}

TEST_F(WFMGetProgressWire, AStatusOtherThan0EndsThePoll) {
    const struct {
        const char* reply;
        int status;
        int32_t result;
    } rows[] = {{R"({"status":5})", -4, 3},
                {R"({"status":-3,"percent":100})", -4, 3},
                {R"({"status":4})", -3, -1},
                {R"({"status":3})", -29, -1},
                {R"({"status":0,"percent":50})", -2, -1},
                {R"({"status":34,"percent":-1})", -1, -1},
                // What is no object says nothing.
                {"[]", -1, -1},
                {"7", -1, -1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        expectPoll({Reply::json(row.reply)}, 0, row.result);
        log.expectLines({failedLine(row.status)});
    }
}

TEST_F(WFMGetProgressWire, AJobThatFailsUnderWayEndsThePoll) {
    const SleepCapture sleeps;
    expectPoll({percent("50"), Reply::json(R"({"status":5})")}, 0, 3);
    log.expectLines({failedLine(-4)});
}

// The line carries another function's name.
TEST_F(WFMGetProgressWire, AReplyThatIsNotUnderstoodEndsThePollWith14) {
    for (const char* reply : {R"({"status":1})", R"({"status":1,"filename":"a"})",
                              R"({"status":1,"filename":"a","percent":null})", R"({"percent":100})",
                              R"({"status":null,"percent":100})", "{}", "no", ""}) {
        SCOPED_TRACE(reply);
        expectPoll({Reply::json(reply)}, 14, -1);
        const auto lines = log.texts();
        ASSERT_GE(lines.size(), 2u);
        EXPECT_EQ(lines[lines.size() - 2], "[WFM] WFMGetSid: WFM_PARSE_XML_FAIL");
        EXPECT_EQ(lines.back(), summaryLine("WFMGetProgress", port, 14));
    }
}

TEST_F(WFMGetProgressWire, ATransportFailureEndsThePollWithoutARetry) {
    const SleepCapture sleeps;
    const struct {
        Reply reply;
        uint32_t dwStatus;
        const char* word;
    } rows[] = {{Reply::status(503), 12, "WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL"},
                {Reply::status(407), 11, "WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ"},
                {Reply::status(500), 6, "FAIL(httpStatusCode=500)"},
                {percent("100").contentLength(5000), 2, "FAIL(httpStatusCode=200)"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.dwStatus);
        expectPoll({percent("50"), row.reply}, row.dwStatus, -1);
        log.expectLines({std::string("[WFM] WFMGetProgress: ") + row.word,
                         summaryLine("WFMGetProgress", port, row.dwStatus)});
    }
}

TEST_F(WFMGetProgressWire, AnUnknownReadingStaysTheResultOfAPollThatFailsAfterIt) {
    const SleepCapture sleeps;
    const struct {
        Reply reply;
        uint32_t dwStatus;
    } rows[] = {{Reply::status(503), 12},
                {Reply::status(407), 11},
                {Reply::status(500), 6},
                {percent("100").contentLength(5000), 2},
                {Reply::json("no"), 14}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.dwStatus);
        expectPoll({percent("-1"), row.reply}, row.dwStatus, 3);
    }
    RawServer server([&](const Request&) {
        call.cancelled = true;
        return percent("-1");
    });
    log.clear();
    EXPECT_EQ(call.run(session.get(), server.port()), 14u);
    EXPECT_EQ(call.result, 3u);
    log.expectLines({unknownLine(3)});
}

TEST_F(WFMGetProgressWire, ACancelBeforeTheFirstRoundIs14WithoutARequest) {
    call.cancelled = true;
    expectPoll({}, 14, -1);
    log.expectNoLines();
}

TEST_F(WFMGetProgressWire, ACancelBetweenTheRoundsEndsThePollWith14) {
    const SleepCapture sleeps;
    size_t rounds = 0;
    RawServer server([&](const Request&) {
        call.cancelled = ++rounds == 2;
        return percent("50");
    });
    EXPECT_EQ(call.run(session.get(), server.port()), 14u);
    EXPECT_EQ(call.result, 0xFFFFFFFFu);
    EXPECT_EQ(server.requestCount(), 2u);
    log.expectNoLines();
}

TEST_F(WFMGetProgressWire, ACancelDuringARequestIsTooLateForAJobThatIsDone) {
    RawServer server([&](const Request&) {
        call.cancelled = true;
        return percent("100");
    });
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(server.requestCount(), 1u);
}

TEST_F(WFMGetProgressWire, ANullCancelFlagIsNeverSet) {
    call.cancel = nullptr;
    const SleepCapture sleeps;
    expectPoll({percent("50"), percent("100")}, 0, 0);
}

TEST_F(WFMGetProgressWire, GoesThroughItsRealWaits) {
    expectPoll({percent("-1"), percent("50"), percent("100")}, 0, 0);
}

TEST_F(WFMGetProgressWire, AFileNameIsOnlyMissedInTheLog) {
    expectPoll({Reply::json(R"({"status":1,"percent":100})")}, 0, 0);
    log.expectLines({"[WFM] CGetMoveStatusJson::Parser filename is null ()"});
    expectPoll({Reply::json(R"({"status":1,"filename":"","percent":100})")}, 0, 0);
    log.expectLines({"[WFM] CGetMoveStatusJson::Parser filename is empty ()"});
}

TEST_F(WFMGetProgressWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    expectRefusals<ProgressCall>(
        log, session.get(), "WFMGetProgress",
        {[](ProgressCall& spoilt) { spoilt.name = nullptr; }, [](ProgressCall& spoilt) { spoilt.name = L""; },
         [](ProgressCall& spoilt) { spoilt.resultWord = nullptr; }});
}
