#include <algorithm>
#include <memory>

#include "changelog.h"
#include "commands.h"
#include "failure.h"
#include "jobs.h"
#include "output.h"
#include "remote.h"
#include "session.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

struct LogOptions {
    std::string folder;
    std::optional<int64_t> since;
    int64_t last = 25;
    bool follow = false;
    double intervalSeconds = 2;
};

QString pathText(const Change& change) {
    return change.oldPath.isEmpty() ? change.path
                                    : QStringLiteral("%1 -> %2").arg(change.oldPath, change.path);
}

void printChanges(const std::vector<Change>& changes) {
    Table table;
    table.addColumn(QStringLiteral("NUMBER"), Table::Align::Right);
    table.addColumn(QStringLiteral("ACTION"));
    table.addColumn(QStringLiteral("TYPE"));
    table.addColumn(QStringLiteral("DEVICE"));
    table.addColumn(QStringLiteral("PATH"));
    for (const Change& change : changes) {
        table.addRow({QString::number(change.number), actionText(change.action), kindText(change.isFolder),
                      change.device.isEmpty() ? QStringLiteral("-") : change.device, pathText(change)});
    }
    table.print(stdout);
}

/// As they come, columns can't be as wide as what is still to come.
void printAtOnce(const GlobalOptions& global, const std::vector<Change>& changes) {
    for (const Change& change : changes) {
        if (global.json) {
            std::printf("%s\n", toJson(change).dump(-1, ' ', false, Json::error_handler_t::replace).c_str());
            continue;
        }
        printLine(QStringLiteral("%1  %2  %3  %4  %5")
                      .arg(change.number, 8)
                      .arg(actionText(change.action), -16)
                      .arg(kindText(change.isFolder), -6)
                      .arg(change.device.isEmpty() ? QStringLiteral("-") : change.device, pathText(change)));
    }
    if (std::fflush(stdout) != 0)
        throw Failure(Exit::Local, QStringLiteral("cannot write to standard output"));
}

/// Where the listing begins: behind this number.
int64_t startOf(const LogOptions& options, int64_t newest) {
    if (options.since) return *options.since;
    return std::max<int64_t>(0, newest - options.last);
}

/// False if the waiting was ended from outside.
bool waitAWhile(double seconds) {
    constexpr int kStepMs = 100;
    for (int left = static_cast<int>(seconds * 1000); left > 0 && !interrupted(); left -= kStepMs)
        pause(std::min(left, kStepMs));
    return !interrupted();
}

class Follower {
public:
    Follower(const GlobalOptions& global, Session& session, const ChangeLog& log, int64_t last)
        : m_global(global), m_session(session), m_log(log), m_last(last) {}

    /// Prints what has come since.
    void poll() {
        try {
            pollOnce();
        } catch (const Failure& failure) {
            // The session rested for too long. One that has just begun can't.
            if (failure.exit() != Exit::NotAuthenticated) throw;
            m_session.renew();
            pollOnce();
        }
    }

private:
    void pollOnce() {
        if (m_log.newest() <= m_last) return;
        bool more = true;
        while (more) {
            std::vector<Change> changes;
            more = m_log.next(m_last, changes);
            printAtOnce(m_global, changes);
        }
    }

    const GlobalOptions& m_global;
    Session& m_session;
    const ChangeLog& m_log;
    int64_t m_last;
};

/// Until Ctrl-C, which is how this ends when all is well.
void follow(const GlobalOptions& global, const LogOptions& options, Session& session, const ChangeLog& log,
            int64_t start) {
    Follower follower(global, session, log, start);
    try {
        do {
            follower.poll();
        } while (waitAWhile(options.intervalSeconds));
    } catch (const Failure& failure) {
        if (failure.exit() != Exit::Cancelled) throw;
    }
}

void log(const GlobalOptions& global, const LogOptions& options) {
    Session session(resolveConnection(global, Needs::Login));
    const QString folder =
        options.folder.empty() ? QString() : remotePath(QString::fromStdString(options.folder));
    const ChangeLog log(session, folder);
    const int64_t newest = log.newest();
    int64_t last = startOf(options, newest);
    if (options.follow) return follow(global, options, session, log, last);

    std::vector<Change> changes;
    while (log.next(last, changes)) {
    }
    if (global.json) {
        Json all = Json::array();
        for (const Change& change : changes) all.push_back(toJson(change));
        return printJson(Json{{"folder", utf8(folder)}, {"newest", newest}, {"changes", all}});
    }
    if (!changes.empty()) printChanges(changes);
}

}  // namespace

void addLogCommand(const Commands& commands) {
    const GlobalOptions& global = commands.global;
    Action& action = commands.action;
    CLI::App* command = commands.app.add_subcommand("log", "List the changes that the server recorded");
    auto options = std::make_shared<LogOptions>();
    command->add_option("folder", options->folder, "Only below this folder")->type_name("");
    auto* since =
        command->add_option("--since", options->since, "Changes after that number; 0 for all of them")
            ->check(CLI::NonNegativeNumber.description(""))
            ->type_name("NUMBER");
    command->add_option("--last", options->last, "As many numbers back from the newest change")
        ->check(CLI::NonNegativeNumber.description(""))
        ->type_name("COUNT")
        ->capture_default_str()
        ->excludes(since);
    command->add_flag("--follow,-f", options->follow, "Go on with changes as they come, until Ctrl-C");
    command->add_option("--interval", options->intervalSeconds, "Seconds between two questions")
        ->check(CLI::Range(0.05, 86400.0).description(""))
        ->type_name("SECONDS")
        ->capture_default_str();
    command->callback(
        [&global, &action, options] { action = [&global, options] { log(global, *options); }; });
}

}  // namespace torvi
