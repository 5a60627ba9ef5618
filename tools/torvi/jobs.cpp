#include "jobs.h"

#include <WebFileManShareAPI.h>

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include "output.h"
#include "progress.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

constexpr int kBetweenQuestionsMs = 250;
constexpr qint64 kPatienceMs = 60000;

void waitUntilDone(const JobWait& wait) {
    if (wait.done()) return;
    const Activity activity(wait.label, wait.quiet);
    QElapsedTimer clock;
    clock.start();
    do {
        if (clock.elapsed() > kPatienceMs) {
            throw Failure(
                Exit::Refused,
                QStringLiteral("%1: the server agreed, but hasn't done it in a minute").arg(wait.what));
        }
        pause(kBetweenQuestionsMs);
        if (interrupted()) {
            Progress::endLine();
            throw Failure(Exit::Cancelled,
                          QStringLiteral("%1: cancelled, but the server goes on with it").arg(wait.what));
        }
    } while (!wait.done());
}

}  // namespace

JobState askJob(const Session& session, const QString& what, const QString& pid, const std::wstring& node) {
    JobState state;
    uint32_t error = 0;
    uint32_t word = 0;
    const uint32_t dwStatus =
        WebFileManQueryProgress(session.context(), session.server(), session.port(), node.c_str(),
                                wide(pid).c_str(), nullptr, &state.percent, &error, &word);
    if (dwStatus != 0) {
        if (interrupted()) throwCancelled(what);
        throw callFailure(what, dwStatus, word);
    }
    state.known = word == 0;
    state.error = static_cast<int32_t>(error);
    return state;
}

Failure jobFailure(const QString& what, const QString& pid, const JobState& state) {
    if (!state.known) {
        return Failure(Exit::NotFound,
                       QStringLiteral("%1: the server knows no job %2 (any more)").arg(what, pid))
            .withNumbers(0, -1);
    }
    return callFailure(QStringLiteral("%1: job %2").arg(what, pid), 0, static_cast<uint32_t>(state.error));
}

void waitForJob(const Session& session, const JobWait& wait) {
    Progress progress(wait.label, wait.quiet);
    for (;;) {
        const JobState state = askJob(session, wait.what, wait.pid, wait.node);
        const bool vague = !state.known || (state.error == 0 && state.percent == 0);
        if (state.done() || (vague && wait.done && wait.done())) return progress.finish();
        if (!state.known || state.error != 0) throw jobFailure(wait.what, wait.pid, state);
        progress.update(state.percent);
        pause(kBetweenQuestionsMs);
        if (interrupted()) {
            Progress::endLine();
            throw Failure(Exit::Cancelled, QStringLiteral("%1: cancelled, but the server goes on with it; "
                                                          "`torvi jobs %2` tells how far it is")
                                               .arg(wait.what, wait.pid));
        }
    }
}

void waitForEnd(const Session& session, const JobWait& wait) {
    wait.pid.isEmpty() ? waitUntilDone(wait) : waitForJob(session, wait);
}

void pause(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

}  // namespace torvi
