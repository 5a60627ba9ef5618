// What both moves do after their request: the job, the rename, and the removal after a rename that failed.

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "moves.h"
#include "renames.h"

using namespace wire;

namespace {

using Make = std::unique_ptr<MoveArguments> (*)();

template <class Call>
std::unique_ptr<MoveArguments> make() {
    auto call = std::make_unique<Call>();
    call->asJob();
    return call;
}

class MoveStepsWire : public MoveTest, public testing::WithParamInterface<Make> {
protected:
    MoveArguments& move() override { return *m_move; }

private:
    std::unique_ptr<MoveArguments> m_move = GetParam()();
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Moves, MoveStepsWire, testing::Values(make<MoveCall>, make<CheckedMoveCall>),
                         [](const testing::TestParamInfo<Make>& info) {
                             return std::string(info.param()->name());
                         });

// ---- Ends at the move ----

TEST_P(MoveStepsWire, AMoveThatIsNotAnsweredEnds) {
    expectEnd({{Step::Move, unavailable()}},
              {12, -1, failed(name(), "WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL", 12), {}});
    expectEnd({{Step::Move, Reply::status(407)}},
              {11, -1, failed(name(), "WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ", 11), {}});
    expectEnd({{Step::Move, Reply::status(500)}}, {6, -1, failed(name(), "FAIL(httpStatusCode=500)", 6), {}});
    expectEnd({{Step::Move, started().contentLength(5000)}},
              {2, -1, failed(name(), "FAIL(httpStatusCode=200)", 2), {}});
}

// ---- Ends at the job ----

TEST_P(MoveStepsWire, AJobThatIsDoneEndsAMoveUnderTheSameName) {
    keepName();
    expectEnd({{Step::Move, started()}, {Step::Poll, done()}}, {0, 0, {}, {500}});
}

TEST_P(MoveStepsWire, ARunningJobIsPolledUntilItIsDone) {
    keepName();
    expectEnd({{Step::Move, started()},
               {Step::Poll, percentDone(0)},
               {Step::Poll, percentDone(99)},
               {Step::Poll, done()}},
              {0, 0, {}, {500, 200, 200}});
}

TEST_P(MoveStepsWire, AJobThatFailsIsTheResultAndNothingFollows) {
    expectEnd({{Step::Move, started()}, {Step::Poll, Reply::json(R"({"status":5})")}},
              {0, 3, {"[WFM] WFMGetProgress: GetStatus failed(old)(-4)"}, {500}});
    expectEnd({{Step::Move, started()}, {Step::Poll, Reply::json(R"({"status":4})")}},
              {0, -1, {"[WFM] WFMGetProgress: GetStatus failed(old)(-3)"}, {500}});
}

TEST_P(MoveStepsWire, AJobThatFailsOnTheFileManagerIsNotCleared) {
    fileManager = true;
    expectEnd({{Step::Move, started()}, {Step::Poll, Reply::json(R"({"status":5})")}},
              {0, 3, {"[WFM] WFMGetProgress: GetStatus failed(old)(-4)"}, {500}});
}

TEST_P(MoveStepsWire, AJobThatNobodyKnowsIsNotFound) {
    const Exchange unknown{Step::Poll, percentDone(-1)};
    const auto line = [](int retries) {
        return LogLine("[WFM] WFMGetProgress: ERROR_PATH_NOT_FOUND(old)(" + std::to_string(retries) + ")");
    };
    expectEnd({{Step::Move, started()}, unknown, unknown, unknown, unknown},
              {0, 3, {line(3), line(2), line(1), line(0)}, {500, 200, 200, 200}});
}

TEST_P(MoveStepsWire, AServiceThatIsUnavailableIsAskedThreeTimes) {
    const Exchange poll{Step::Poll, unavailable()};
    expectEnd({{Step::Move, started()}, poll, poll, poll},
              {12,
               -1,
               failedPoll(12) + retry() + failedPoll(12) + retry() + failedPoll(12) + pollFailed(12),
               {500}});
}

TEST_P(MoveStepsWire, AServiceThatComesBackInTimeEndsWell) {
    keepName();
    const Exchange poll{Step::Poll, unavailable()};
    expectEnd({{Step::Move, started()}, poll, {Step::Poll, done()}}, {0, 0, failedPoll(12) + retry(), {500}});
    expectEnd({{Step::Move, started()}, poll, poll, {Step::Poll, done()}},
              {0, 0, failedPoll(12) + retry() + failedPoll(12) + retry(), {500}});
}

TEST_P(MoveStepsWire, AnyOtherFailureOfThePollEndsAtOnce) {
    for (const auto& [status, dwStatus] : {std::pair<int, int>{407, 11}, {500, 6}})
        expectEnd({{Step::Move, started()}, {Step::Poll, Reply::status(status)}},
                  {static_cast<uint32_t>(dwStatus), -1, failedPoll(dwStatus) + pollFailed(dwStatus), {500}});
    expectEnd({{Step::Move, started()}, {Step::Poll, done().contentLength(5000)}},
              {2, -1, failed("WFMGetProgress", "FAIL(httpStatusCode=200)", 2) + pollFailed(2), {500}});
    expectEnd({{Step::Move, started()}, {Step::Poll, Reply::json("no")}},
              {14,
               -1,
               Lines{"[WFM] WFMGetSid: WFM_PARSE_XML_FAIL",
                     "[WFM] WFMGetProgress(127.0.0.1:{port}) failed dwStatus(14)"} +
                   pollFailed(14),
               {500}});
}

TEST_P(MoveStepsWire, AJobOfTheFileManagerThatCannotBeFollowedIsNotCleared) {
    fileManager = true;
    const Exchange poll{Step::Poll, unavailable()};
    expectEnd({{Step::Move, started()}, poll, poll, poll},
              {12,
               -1,
               failedPoll(12) + retry() + failedPoll(12) + retry() + failedPoll(12) + pollFailed(12),
               {500}});
    expectEnd({{Step::Move, started()}, {Step::Poll, Reply::status(500)}},
              {6, -1, failedPoll(6) + pollFailed(6), {500}});
    cancelAfter = 1;
    expectEnd({{Step::Move, started()}}, {14, -1, pollFailed(14), {500}});
}

TEST_P(MoveStepsWire, AnUnknownReadingStaysTheResultOfAPollThatFailsUnlessARetryKnowsTheJob) {
    keepName();
    const Lines unknown = {"[WFM] WFMGetProgress: ERROR_PATH_NOT_FOUND(old)(3)"};
    expectEnd({{Step::Move, started()}, {Step::Poll, percentDone(-1)}, {Step::Poll, Reply::status(500)}},
              {6, 3, unknown + failedPoll(6) + pollFailed(6), {500, 200}});
    expectEnd({{Step::Move, started()},
               {Step::Poll, percentDone(-1)},
               {Step::Poll, unavailable()},
               {Step::Poll, done()}},
              {0, 0, unknown + failedPoll(12) + retry(), {500, 200}});
    cancelAfter = 2;
    expectEnd({{Step::Move, started()}, {Step::Poll, percentDone(-1)}},
              {14, 3, unknown + pollFailed(14), {500, 200}});
}

TEST_P(MoveStepsWire, ACancelBeforeTheFirstPollIs14) {
    move().cancelled = true;
    expectEnd({{Step::Move, started()}}, {14, -1, pollFailed(14), {500}});
    move().cancelled = false;
    cancelAfter = 1;
    expectEnd({{Step::Move, started()}}, {14, -1, pollFailed(14), {500}});
}

TEST_P(MoveStepsWire, ACancelBetweenTwoPollsIs14) {
    cancelAfter = 2;
    expectEnd({{Step::Move, started()}, {Step::Poll, percentDone(50)}}, {14, -1, pollFailed(14), {500, 200}});
}

TEST_P(MoveStepsWire, ACancelEndsTheRetries) {
    cancelAfter = 2;
    expectEnd({{Step::Move, started()}, {Step::Poll, unavailable()}},
              {12, -1, failedPoll(12) + pollFailed(12), {500}});
}

TEST_P(MoveStepsWire, WithoutANetworkThereIsNoRetry) {
    const NetworkIs gone(false);
    expectEnd({{Step::Move, started()}, {Step::Poll, unavailable()}},
              {12, -1, failedPoll(12) + pollFailed(12), {500}});
}

TEST_P(MoveStepsWire, ANullCancelFlagIsNeverSet) {
    move().cancel = nullptr;
    keepName();
    expectEnd({{Step::Move, started()},
               {Step::Poll, unavailable()},
               {Step::Poll, percentDone(50)},
               {Step::Poll, done()}},
              {0, 0, failedPoll(12) + retry(), {500, 200}});
}

TEST_P(MoveStepsWire, TheFileManagersJobIsCleared) {
    fileManager = true;
    keepName();
    expectEnd({{Step::Move, started()}, {Step::Poll, done()}, {Step::Clear, answered("1")}},
              {0, 0, {}, {500}});
}

TEST_P(MoveStepsWire, AJobThatCannotBeClearedIsNoFailure) {
    fileManager = true;
    keepName();
    expectEnd({{Step::Move, started()}, {Step::Poll, done()}, {Step::Clear, answered("5")}},
              {0, 0, {"[WFM] WFMDeleteProgress: failed status(-4)"}, {500}});
    expectEnd({{Step::Move, started()}, {Step::Poll, done()}, {Step::Clear, Reply::status(500)}},
              {0, 0, failed("WFMDeleteProgress", "FAIL(httpStatusCode=500)", 6), {500}});
}

// ---- Ends at the rename ----

TEST_P(MoveStepsWire, AnotherNameIsGivenByARenameInTheDestination) {
    expectEnd({{Step::Move, started()}, {Step::Poll, done()}, {Step::Rename, answered("1")}},
              {0, 0, toRename(), {500}});
}

TEST_P(MoveStepsWire, TheFileManagerClearsTheJobBeforeTheRename) {
    fileManager = true;
    expectEnd({{Step::Move, started()},
               {Step::Poll, done()},
               {Step::Clear, Reply::status(500)},
               {Step::Rename, answered("1")}},
              {0, 0, failed("WFMDeleteProgress", "FAIL(httpStatusCode=500)", 6) + toRename(), {500}});
}

TEST_P(MoveStepsWire, ARenameThatIsRefusedRemovesWhatWasMoved) {
    const Lines denied = {"[WFM] WFMRenamePath: ERROR_ACCESS_DENIED(/home/b/old)(/home/b/new)"};
    expectEnd({{Step::Move, started()},
               {Step::Poll, done()},
               {Step::Rename, answered("2")},
               {Step::Remove, answered("1")}},
              {0, -1, toRename() + removed(0, 5003), {500}});
    expectEnd({{Step::Move, started()},
               {Step::Poll, done()},
               {Step::Rename, answered("4")},
               {Step::Remove, answered("1")}},
              {0, -1, toRename() + denied + removed(0, 5), {500}});
}

TEST_P(MoveStepsWire, ARenameThatFailsRemovesWhatWasMovedAndIsTheStatus) {
    expectEnd({{Step::Move, started()},
               {Step::Poll, done()},
               {Step::Rename, Reply::status(500)},
               {Step::Remove, answered("1")}},
              {6,
               -1,
               toRename() + failed("WFMRenamePath", "FAIL(httpStatusCode=500)", 6) + removed(6, -1) +
                   Lines{summary(6)},
               {500}});
    expectEnd({{Step::Move, started()},
               {Step::Poll, done()},
               {Step::Rename, Reply::json("{}")},
               {Step::Remove, answered("5")}},
              {14,
               -1,
               toRename() +
                   Lines{"[WFM] WFMRenamePath: WFM_PARSE_XML_FAIL(/home/b/old)(/home/b/new) "
                         "nParseResult(1)Result(0)",
                         "[WFM] WFMRenamePath(127.0.0.1:{port}) failed dwStatus(14)"} +
                   removed(14, -1) + Lines{summary(14)},
               {500}});
}

TEST_P(MoveStepsWire, ARenameThatIsDeniedBeforeItsRequestEndsToo) {
    move().destination = L"//new";
    folder = "%2F";
    movedTo = "/";
    expectEnd({{Step::Move, started()}, {Step::Poll, done()}},
              {5,
               -1,
               toRename() +
                   Lines{"[WFM] WFMRenamePath: ERROR_ACCESS_DENIED",
                         "[WFM] WFMRenamePath(127.0.0.1:{port}) failed dwStatus(5)"} +
                   removed(5, -1) + Lines{summary(5)},
               {500}});
}

TEST_P(MoveStepsWire, ARemovalThatFailsChangesNothing) {
    const Lines removal = failed("WFMDeletePath", "FAIL(httpStatusCode=500)", 6);
    expectEnd({{Step::Move, started()},
               {Step::Poll, done()},
               {Step::Rename, answered("2")},
               {Step::Remove, Reply::status(500)}},
              {0, -1, toRename() + removed(0, 5003) + removal, {500}});
    expectEnd({{Step::Move, started()},
               {Step::Poll, done()},
               {Step::Rename, unavailable()},
               {Step::Remove, Reply::status(500)}},
              {12,
               -1,
               toRename() + failed("WFMRenamePath", "WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL", 12) +
                   removed(12, -1) + removal + Lines{summary(12)},
               {500}});
}

TEST_P(MoveStepsWire, TheFileManagersRenameThatFailsRemovesToo) {
    fileManager = true;
    expectEnd({{Step::Move, started()},
               {Step::Poll, done()},
               {Step::Clear, answered("1")},
               {Step::Rename, answered("2")},
               {Step::Remove, answered("5")}},
              {0, -1, toRename() + removed(0, 5003), {500}});
}
