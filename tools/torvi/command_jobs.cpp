#include <memory>

#include "commands.h"
#include "failure.h"
#include "jobs.h"
#include "output.h"
#include "progress.h"
#include "session.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

struct JobOptions {
    int32_t pid = 0;
    bool wait = false;
    bool move = false;
    bool clear = false;
};

/// The channel that a move reports on tells no percents, only the end.
void followMove(const GlobalOptions& global, const Session& session, const QString& what, int32_t pid) {
    const Activity activity(QStringLiteral("waiting for job %1").arg(pid), global.quiet);
    uint32_t word = 0;
    const uint32_t dwStatus =
        WFMGetProgress(session.context(), session.server(), session.port(), session.node(),
                       std::to_wstring(pid).c_str(), pid, cancelFlag(), &word);
    if (dwStatus == 0 && word == 0) return;
    if (interrupted()) throwCancelled(what);
    if (dwStatus == 0 && word == 3) throw jobFailure(what, QString::number(pid), JobState());
    throw callFailure(what, dwStatus, word);
}

void clear(const Session& session, const QString& what, int32_t pid) {
    const uint32_t dwStatus = WFMDeleteProgress(session.context(), session.server(), session.port(),
                                                session.node(), pid, cancelFlag());
    if (dwStatus == 0) return;
    if (interrupted()) throwCancelled(what);
    throw statusFailure(what, dwStatus);
}

void job(const GlobalOptions& global, const JobOptions& options) {
    const QString pid = QString::number(options.pid);
    const QString what = QStringLiteral("jobs %1").arg(pid);
    const bool asks = options.wait || options.move || !options.clear;
    JobState state;
    {
        const Session session(resolveConnection(global, Needs::Login));
        if (options.move) {
            followMove(global, session, what, options.pid);
            state = {true, 100, 0};
        } else if (options.wait) {
            waitForJob(session,
                       {what, QStringLiteral("job %1").arg(pid), pid, session.node(), global.quiet, {}});
            state = {true, 100, 0};
        } else if (asks) {
            state = askJob(session, what, pid, session.node());
            if (!state.known || state.error != 0) throw jobFailure(what, pid, state);
        }
        if (options.clear) clear(session, what, options.pid);
    }
    if (global.json) {
        Json json = {{"pid", options.pid}};
        json["percent"] = asks ? Json(state.percent) : Json(nullptr);
        json["done"] = asks ? Json(state.done()) : Json(nullptr);
        json["cleared"] = options.clear;
        return printJson(json);
    }
    if (asks) {
        printLine(state.done() ? QStringLiteral("job %1: done").arg(pid)
                               : QStringLiteral("job %1: %2%").arg(pid).arg(state.percent));
    }
    if (options.clear && !global.quiet)
        printLine(QStringLiteral("job %1: the server was told to forget it").arg(pid));
}

}  // namespace

void addJobCommand(const Commands& commands) {
    const GlobalOptions& global = commands.global;
    Action& action = commands.action;
    CLI::App* command = commands.app.add_subcommand("jobs", "Tell how far a job on the server is");
    auto options = std::make_shared<JobOptions>();
    command->add_option("pid", options->pid, "The job, as the command that started it named it")
        ->check(CLI::Range(1, 2147483647).description(""))
        ->type_name("")
        ->required();
    auto* wait = command->add_flag("--wait", options->wait, "Show its progress until it ends");
    command
        ->add_flag("--move", options->move, "The job is a move: wait for its end, which is all that it tells")
        ->excludes(wait);
    command->add_flag("--clear", options->clear,
                      "Let the server forget it; alone: whether or not it has ended");
    command->callback(
        [&global, &action, options] { action = [&global, options] { job(global, *options); }; });
}

}  // namespace torvi
