// The road that all calls share, driven through every call of the table: what each fault of the network and
// each kind of bad reply does to the two numbers and the log.

#include <gtest/gtest.h>

#include "calltable.h"
#include "support/logcapture.h"
#include "support/rawserver.h"
#include "support/session.h"
#include "support/timers.h"
#include "support/wire.h"

using namespace wire;

namespace {

constexpr uint32_t kUntouched = 0xABCD;

class EveryCallWire : public testing::TestWithParam<CallRow> {
protected:
    SessionPtr session() const {
        SessionOptions options;
        options.agentName = L"agent";
        return GetParam().needsSession ? makeSession(options) : nullptr;
    }

    uint32_t run(uint16_t port, uint32_t* result) {
        SessionPtr context = session();
        m_log.clear();
        *result = kUntouched;
        return GetParam().run(context.get(), kServer, port, result);
    }

    void expectOutcome(uint16_t port, Outcome outcome, const char* reasonLine = nullptr) {
        const CallRow& row = GetParam();
        const bool isConnectFault = outcome.dwStatus == 2;
        if (row.isListing && isConnectFault) outcome.result = IsNetworkAlive() ? 53 : 1231;
        uint32_t result = 0;
        EXPECT_EQ(run(port, &result), outcome.dwStatus);
        if (outcome.dwStatus == 0) return expectGoodLines(outcome.word);
        EXPECT_EQ(static_cast<int32_t>(result), outcome.result);

        std::vector<std::string> expected;
        for (const char* line : row.failure)
            expected.push_back(fillLine(line, outcome.word.empty() ? "WFM_PARSE_XML_FAIL" : outcome.word,
                                        port, outcome.dwStatus, outcome.result));
        if (outcome.word.empty()) reasonLine = row.notUnderstood;
        if (outcome.word.find("httpStatusCode") != std::string::npos && row.failed != nullptr)
            reasonLine = row.failed;
        if (reasonLine != nullptr) expected[0] = fillLine(reasonLine, outcome.word, port, 0, 0);
        EXPECT_EQ(linesOfTheCall(), expected);
    }

    void expectGoodLines(const std::string& line = {}) {
        std::vector<std::string> expected;
        if (!line.empty()) expected.push_back(line);
        if (GetParam().goodLine != nullptr) expected.emplace_back(GetParam().goodLine);
        EXPECT_EQ(linesOfTheCall(), expected);
    }

    /// A failure for which no HTTP status is tested.
    static Outcome failed(uint32_t dwStatus, int http) {
        std::string word = dwStatus == 2 ? GetParam().connectFailed : GetParam().receiveFailed;
        if (const auto at = word.find("{http}"); at != std::string::npos)
            word.replace(at, 6, std::to_string(http));
        return {dwStatus, word};
    }

    /// Without debug output, and without the line in which the transport says that an upload broke.
    std::vector<std::string> linesOfTheCall() {
        std::vector<std::string> texts;
        for (const LogLine& line : m_log.lines())
            if (!line.level.empty() && line.text.find("HttpRequestWorker") == std::string::npos)
                texts.push_back(line.text);
        return texts;
    }

    LogCapture m_log{GetParam().level};
};

std::string rowName(const testing::TestParamInfo<CallRow>& info) {
    return info.param.name;
}

}  // namespace

TEST_P(EveryCallWire, RefusesANullServerWithOneLineAndTouchesNothing) {
    SessionPtr context = session();
    m_log.clear();
    for (const wchar_t* server : {static_cast<const wchar_t*>(nullptr), L""}) {
        if (server != nullptr && GetParam().takesAnyAddress) continue;
        uint32_t result = kUntouched;
        EXPECT_EQ(GetParam().run(context.get(), server, 80, &result), GetParam().refusedStatus);
        EXPECT_EQ(result, kUntouched);
    }
    std::string line = fillLine(GetParam().refused, "", 80, 8, 0);
    if (const auto at = line.find("{server}"); at != std::string::npos) line.erase(at, 8);
    const size_t calls = GetParam().takesAnyAddress ? 1 : 2;
    EXPECT_EQ(m_log.texts(), std::vector<std::string>(calls, line));
}

TEST_P(EveryCallWire, RefusesPortZeroBeforeAnythingElse) {
    if (GetParam().takesAnyAddress) GTEST_SKIP() << "has a rule of its own";
    SessionPtr context = session();
    m_log.clear();
    uint32_t result = kUntouched;
    EXPECT_EQ(GetParam().run(context.get(), kServer, 0, &result), GetParam().refusedStatus);
    std::string line = fillLine(GetParam().refused, "", 0, 8, 0);
    if (const auto at = line.find("{server}"); at != std::string::npos) line.replace(at, 8, "127.0.0.1");
    EXPECT_EQ(m_log.texts(), std::vector<std::string>{line});
}

TEST_P(EveryCallWire, RefusesANullContext) {
    if (!GetParam().needsSession) GTEST_SKIP() << "has no session";
    uint32_t result = kUntouched;
    EXPECT_EQ(GetParam().run(nullptr, kServer, 80, &result), GetParam().refusedStatus);
}

TEST_P(EveryCallWire, SucceedsWithoutALineButItsOwn) {
    RawServer server({Reply::json(GetParam().goodReply)});
    uint32_t result = 0;
    EXPECT_EQ(run(server.port(), &result), 0u);
    expectGoodLines();
    EXPECT_EQ(server.requestCount(), 1 + GetParam().furtherTimeoutsMs.size());
}

TEST_P(EveryCallWire, ReadsAChunkedReply) {
    RawServer server({Reply::json(GetParam().goodReply).chunked()});
    uint32_t result = 0;
    EXPECT_EQ(run(server.port(), &result), 0u);
}

TEST_P(EveryCallWire, ReadsACompressedReply) {
    RawServer server({Reply::json(GetParam().goodReply).gzip()});
    uint32_t result = 0;
    EXPECT_EQ(run(server.port(), &result), 0u);
}

TEST_P(EveryCallWire, Http407Is11) {
    RawServer server({Reply::status(407)});
    expectOutcome(server.port(), {11, GetParam().proxyWord}, GetParam().proxyLine);
}

TEST_P(EveryCallWire, Http503Is12) {
    RawServer server({Reply::status(503)});
    expectOutcome(server.port(), {12, GetParam().serviceWord});
}

TEST_P(EveryCallWire, Http404Is10WhereItIsTestedAnd6Elsewhere) {
    RawServer server({Reply::status(404)});
    expectOutcome(server.port(),
                  GetParam().has404 ? Outcome{10, "WFM_PARSE_XML_CGI_NOT_FOUND"} : failed(6, 404),
                  GetParam().notFound);
}

TEST_P(EveryCallWire, Http500Is6EvenWithAGoodBody) {
    RawServer server({Reply::status(500, GetParam().goodReply)});
    expectOutcome(server.port(), failed(6, 500));
}

TEST_P(EveryCallWire, Http302IsNotFollowed) {
    RawServer server({Reply::redirect("https://127.0.0.1/")});
    expectOutcome(server.port(), GetParam().redirect);
    EXPECT_EQ(server.requestCount(), 1u);
}

TEST_P(EveryCallWire, ARefusedConnectionIs2) {
    RefusedPort port;
    expectOutcome(port.port(), failed(2, 0));
}

TEST_P(EveryCallWire, AConnectionClosedBeforeTheReplyIs2) {
    RawServer server({Reply::closeBeforeReply()});
    expectOutcome(server.port(), failed(2, 0));
}

TEST_P(EveryCallWire, APostIsNeverSentTwice) {
    RawServer server({Reply::closeBeforeReply()});
    uint32_t result = 0;
    run(server.port(), &result);
    if (server.request(0).method() == "POST") {
        EXPECT_EQ(server.requestCount(), 1u);
    }
}

TEST_P(EveryCallWire, AReplyThatBreaksOffIs2UnlessItsStatusDecides) {
    RawServer server({Reply::json(GetParam().goodReply).contentLength(5000)});
    expectOutcome(server.port(), GetParam().brokenOff);
}

TEST_P(EveryCallWire, AnEmptyBodyIs14) {
    RawServer server({Reply::json("")});
    expectOutcome(server.port(), GetParam().badReply);
}

TEST_P(EveryCallWire, ABodyThatIsNotJsonIs14) {
    RawServer server({Reply::text("<html>sorry</html>")});
    expectOutcome(server.port(), GetParam().strangePage);
}

TEST_P(EveryCallWire, ATruncatedBodyIs14) {
    const std::string good = GetParam().goodReply;
    RawServer server({Reply::json(good.substr(0, good.size() - 2))});
    expectOutcome(server.port(), GetParam().badReply);
}

TEST_P(EveryCallWire, AJsonTextIs14) {
    if (GetParam().nonObjectIsUnderstood) GTEST_SKIP() << "has a rule of its own";
    RawServer server({Reply::json(R"("status")")});
    expectOutcome(server.port(), GetParam().badReply);
}

TEST_P(EveryCallWire, AJsonArrayIs14) {
    if (GetParam().nonObjectIsUnderstood || GetParam().arrayIsReply) GTEST_SKIP() << "has a rule of its own";
    RawServer server({Reply::json("[]")});
    expectOutcome(server.port(), GetParam().badReply);
}

TEST_P(EveryCallWire, ANumberBeyond32BitsIs14) {
    RawServer server({Reply::json(GetParam().tooLarge)});
    expectOutcome(server.port(), GetParam().badReply);
}

TEST_P(EveryCallWire, NestingDeeperThanTheReaderGoesIs14) {
    RawServer server({Reply::json(std::string(5000, '[') + std::string(5000, ']'))});
    expectOutcome(server.port(), GetParam().badReply);
}

TEST_P(EveryCallWire, SetsItsOwnTimeout) {
    RawServer server({Reply::json(GetParam().goodReply)});
    SessionPtr context = session();
    TimerCapture timers;
    uint32_t result = 0;
    GetParam().run(context.get(), kServer, server.port(), &result);
    std::vector<int> expected = GetParam().furtherTimeoutsMs;
    if (GetParam().timeoutMs > 0) expected.insert(expected.begin(), GetParam().timeoutMs);
    EXPECT_EQ(timers.started(), expected);
}

INSTANTIATE_TEST_SUITE_P(, EveryCallWire, testing::ValuesIn(callTable()), rowName);
