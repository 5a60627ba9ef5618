#include <memory>

#include "commands.h"
#include "failure.h"
#include "jobid.h"
#include "jobs.h"
#include "output.h"
#include "progress.h"
#include "remote.h"
#include "session.h"
#include "signals.h"
#include "state.h"
#include "status.h"
#include "times.h"

namespace torvi {
namespace {

const std::string kFolder = "locks";
const std::string kGroup = "Versions of a file";
constexpr int kBetweenQuestionsMs = 250;
constexpr int kMostQuestions = 8;

struct VersionOptions {
    std::string path;
    std::string lock;
    std::string version;
    std::string time;
    bool renew = false;
    bool detach = false;
    bool dryRun = false;
};

/// The ids of a session around one file, kept between the commands that belong to it.
class LockRecord {
public:
    LockRecord(const Session& session, const QString& path, const VersionOptions& options)
        : m_session(session),
          m_path(path),
          m_file(kFolder, QStringLiteral("%1\n%2").arg(session.identity(), path).toUtf8(),
                 QStringLiteral("another torvi works on the versions of %1").arg(path)) {
        m_lock = given(options.lock, "lockId");
        m_version = given(options.version, "versionId");
    }

    bool isKept() const { return !m_file.content().empty(); }
    const QString& lock() const { return m_lock; }
    const QString& version() const { return m_version; }

    void keep(const QString& lock, const QString& version) {
        m_lock = lock;
        m_version = version;
        m_file.save(Json{{"server", utf8(m_session.identity())},
                         {"path", utf8(m_path)},
                         {"lockId", utf8(lock)},
                         {"versionId", utf8(version)}});
    }
    void forget() {
        m_file.clear();
        m_lock.clear();
        m_version.clear();
    }

    const LockRecord& require(const QString& what, bool lock, bool version) const {
        if ((!lock || !m_lock.isEmpty()) && (!version || !m_version.isEmpty())) return *this;
        throw Failure(Exit::Usage,
                      QStringLiteral("%1: no lock is kept for it; `torvi version-lock` takes one, or "
                                     "give its ids with --lock and --version-id")
                          .arg(what));
    }

private:
    QString given(const std::string& option, const char* key) const {
        if (!option.empty()) return QString::fromStdString(option);
        return QString::fromStdString(m_file.content().value(key, std::string()));
    }

    const Session& m_session;
    QString m_path;
    StateFile m_file;
    QString m_lock;
    QString m_version;
};

/// What the commands with a path share.
struct Task {
    Task(const GlobalOptions& options, const char* name, const VersionOptions& version)
        : global(options),
          path(remotePath(QString::fromStdString(version.path))),
          what(QStringLiteral("%1 %2").arg(QLatin1String(name), path)),
          session(resolveConnection(options, Needs::Login)) {}

    [[noreturn]] void fail(uint32_t dwStatus, uint32_t word) const {
        if (interrupted()) throwCancelled(what);
        throw callFailure(what, dwStatus, word);
    }

    const GlobalOptions& global;
    QString path;
    QString what;
    Session session;
};

void say(const GlobalOptions& global, const Json& json, const QString& text) {
    if (global.json) return printJson(json);
    if (!global.quiet) printLine(text);
}

void probe(const GlobalOptions& global) {
    const QString what = QStringLiteral("version-probe");
    wchar_t version[260] = {};
    {
        const Session session(resolveConnection(global, Needs::Login));
        uint32_t word = 0;
        const uint32_t dwStatus = WFMTorviGetVersioningProbe(
            session.context(), session.server(), session.port(), session.node(), nullptr, &word, version);
        if (dwStatus != 0) {
            if (interrupted()) throwCancelled(what);
            throw statusFailure(what, dwStatus);
        }
    }
    const QString text = QString::fromWCharArray(version);
    if (text.isEmpty()) {
        throw Failure(Exit::Refused, QStringLiteral("%1: the server keeps no versions of files").arg(what));
    }
    if (global.json) return printJson(Json{{"version", utf8(text)}});
    printLine(QStringLiteral("The server keeps versions, with engine %1").arg(text));
}

void lock(const GlobalOptions& global, const VersionOptions& options) {
    QString lockId, versionId;
    bool renewed = false;
    {
        const Task task(global, "version-lock", options);
        LockRecord record(task.session, task.path, options);
        if (options.renew) record.forget();
        auto ids = std::make_unique<WFM_VERSIONING_LOCK>();
        wide(record.lock()).copy(ids->szLockID, std::size(ids->szLockID) - 1);
        wide(record.version()).copy(ids->szVersionID, std::size(ids->szVersionID) - 1);
        renewed = !record.lock().isEmpty() && !record.version().isEmpty();
        uint32_t word = 0;
        const uint32_t dwStatus =
            WFMTorviVersioningLock(task.session.context(), task.session.server(), task.session.port(),
                                   task.session.node(), wide(task.path).c_str(), nullptr, &word, ids.get());
        if (dwStatus == 0 && word != 0 && renewed) {
            if (record.isKept()) record.forget();
            throw Failure(Exit::Refused,
                          QStringLiteral("%1: the lock that was held is no good any more and is "
                                         "forgotten; run it again for a new one")
                              .arg(task.what))
                .withNumbers(dwStatus, static_cast<int32_t>(word));
        }
        if (dwStatus == 0 && word != 0) {
            throw Failure(Exit::Refused,
                          QStringLiteral("%1: the server refused: there is no such file, or somebody else "
                                         "holds its lock")
                              .arg(task.what))
                .withNumbers(dwStatus, static_cast<int32_t>(word));
        }
        if (dwStatus != 0) task.fail(dwStatus, word);
        lockId = QString::fromWCharArray(ids->szLockID);
        versionId = QString::fromWCharArray(ids->szVersionID);
        record.keep(lockId, versionId);
    }
    const QString path = remotePath(QString::fromStdString(options.path));
    say(global,
        Json{{"path", utf8(path)},
             {"lockId", utf8(lockId)},
             {"versionId", utf8(versionId)},
             {"renewed", renewed}},
        QStringLiteral("%1 %2, lock %3, version %4")
            .arg(renewed ? QStringLiteral("still locked:") : QStringLiteral("locked"), path, lockId,
                 versionId));
}

void unlock(const GlobalOptions& global, const VersionOptions& options) {
    const Task task(global, "version-unlock", options);
    LockRecord record(task.session, task.path, options);
    record.require(task.what, true, false);
    const QString lockId = record.lock();
    uint32_t word = 0;
    const uint32_t dwStatus = WFMTorviVersioningUnLock(
        task.session.context(), task.session.server(), task.session.port(), task.session.node(),
        wide(task.path).c_str(), wide(lockId).c_str(), nullptr, &word);
    if (dwStatus != 0) task.fail(dwStatus, word);
    // A lock that the server doesn't take is of no more use.
    if (record.isKept()) record.forget();
    if (word != 0) task.fail(dwStatus, word);
    say(global, Json{{"path", utf8(task.path)}, {"lockId", utf8(lockId)}, {"locked", false}},
        QStringLiteral("unlocked %1").arg(task.path));
}

void clean(const GlobalOptions& global, const VersionOptions& options) {
    const Task task(global, "version-clean", options);
    const LockRecord record(task.session, task.path, options);
    record.require(task.what, true, true);
    const Json json = {{"path", utf8(task.path)},
                       {"lockId", utf8(record.lock())},
                       {"versionId", utf8(record.version())},
                       {"cleaned", !options.dryRun}};
    if (options.dryRun) {
        if (global.json) return printJson(json);
        return printLine(
            QStringLiteral("would drop the work files of version %1 of %2").arg(record.version(), task.path));
    }
    uint32_t word = 0;
    const uint32_t dwStatus = WFMTorviVersioningCleanVersion(
        task.session.context(), task.session.server(), task.session.port(), task.session.node(),
        wide(task.path).c_str(), wide(record.lock()).c_str(), wide(record.version()).c_str(), nullptr, &word);
    if (dwStatus != 0 || word != 0) task.fail(dwStatus, word);
    say(global, json,
        QStringLiteral("dropped the work files of version %1 of %2").arg(record.version(), task.path));
}

/// Shows a started job's progress, or leaves it alone.
void follow(const Task& task, const VersionOptions& options, const QString& pid,
            const std::function<bool()>& done) {
    if (options.detach || pid.isEmpty()) return;
    waitForJob(task.session,
               {task.what, leafOf(task.path), pid, task.session.nodeOf(task.path), task.global.quiet, done});
}

void sayJob(const Task& task, const VersionOptions& options, const LockRecord& record, const QString& pid,
            const QString& made, Json more = Json::object()) {
    Json json = {{"path", utf8(task.path)},
                 {"versionId", utf8(record.version())},
                 {"pid", pidJson(pid)},
                 {"done", !options.detach}};
    json.update(more);
    const bool runs = options.detach && !pid.isEmpty();
    say(task.global, json, runs ? QStringLiteral("%1: job %2 runs").arg(task.what, pid) : made);
}

void signature(const GlobalOptions& global, const VersionOptions& options) {
    const Task task(global, "version-sig", options);
    const LockRecord record(task.session, task.path, options);
    record.require(task.what, true, true);
    wchar_t pid[260] = {};
    uint32_t word = 0;
    const uint32_t dwStatus =
        WFMTorviGenVersioningSig(task.session.context(), task.session.server(), task.session.port(),
                                 task.session.node(), wide(task.path).c_str(), wide(record.lock()).c_str(),
                                 wide(record.version()).c_str(), nullptr, &word, pid);
    if (dwStatus != 0 || word != 0) task.fail(dwStatus, word);
    follow(task, options, QString::fromWCharArray(pid), {});
    sayJob(task, options, record, QString::fromWCharArray(pid),
           QStringLiteral("the signature of version %1 of %2 is made").arg(record.version(), task.path));
}

WFM_VERSIONING_DELTA_STAT statDelta(const Task& task, const LockRecord& record) {
    WFM_VERSIONING_DELTA_STAT stat = {};
    const uint32_t dwStatus = WFMTorviVersioningStatDelta(
        task.session.context(), task.session.server(), task.session.port(), task.session.node(),
        wide(task.path).c_str(), wide(record.version()).c_str(), nullptr, &stat);
    if (dwStatus != 0) {
        if (interrupted()) throwCancelled(task.what);
        throw statusFailure(task.what, dwStatus);
    }
    return stat;
}

/// The delta of a job that has ended comes at once or not at all.
WFM_VERSIONING_DELTA_STAT waitForDelta(const Task& task, const LockRecord& record, bool ended) {
    const Activity activity(task.what, task.global.quiet || ended);
    for (int questions = 1;; ++questions) {
        const WFM_VERSIONING_DELTA_STAT stat = statDelta(task, record);
        if (stat.bExists) return stat;
        if (ended && questions == kMostQuestions) {
            throw Failure(Exit::Refused,
                          QStringLiteral("%1: the job has ended, but there is no delta").arg(task.what));
        }
        pause(kBetweenQuestionsMs);
        if (interrupted()) throwCancelled(task.what);
    }
}

void delta(const GlobalOptions& global, const VersionOptions& options) {
    const Task task(global, "version-delta", options);
    const LockRecord record(task.session, task.path, options);
    record.require(task.what, true, true);
    wchar_t pid[260] = {};
    uint32_t word = 0;
    const uint32_t dwStatus =
        WFMTorviGenVersioningDelta(task.session.context(), task.session.server(), task.session.port(),
                                   task.session.node(), wide(task.path).c_str(), wide(record.lock()).c_str(),
                                   wide(record.version()).c_str(), nullptr, &word, pid);
    if (dwStatus != 0 || word != 0) task.fail(dwStatus, word);
    WFM_VERSIONING_DELTA_STAT stat = {};
    follow(task, options, QString::fromWCharArray(pid), [&] { return statDelta(task, record).bExists; });
    if (!options.detach) stat = waitForDelta(task, record, pid[0] != L'\0');
    sayJob(task, options, record, QString::fromWCharArray(pid),
           QStringLiteral("the delta of version %1 of %2 is made, %3")
               .arg(record.version(), task.path, humanSize(stat.llSize)),
           options.detach ? Json::object() : Json{{"size", stat.llSize}});
}

void stat(const GlobalOptions& global, const VersionOptions& options) {
    const Task task(global, "version-stat", options);
    const LockRecord record(task.session, task.path, options);
    record.require(task.what, false, true);
    const WFM_VERSIONING_DELTA_STAT found = statDelta(task, record);
    if (global.json) {
        return printJson(Json{{"path", utf8(task.path)},
                              {"versionId", utf8(record.version())},
                              {"exists", found.bExists},
                              {"size", found.llSize}});
    }
    printLine(found.bExists
                  ? QStringLiteral("version %1 of %2 has a delta of %3")
                        .arg(record.version(), task.path, humanSize(found.llSize))
                  : QStringLiteral("version %1 of %2 has no delta").arg(record.version(), task.path));
}

void commit(const GlobalOptions& global, const VersionOptions& options) {
    const Task task(global, "version-commit", options);
    const LockRecord record(task.session, task.path, options);
    record.require(task.what, true, true);
    const int64_t time = options.time.empty() ? require(task.session, task.what, task.path).modified
                                              : parseTime(task.what, QString::fromStdString(options.time));
    wchar_t pid[260] = {};
    uint32_t word = 0;
    const uint32_t dwStatus = WFMTorviVersioningCommitUpload(
        task.session.context(), task.session.server(), task.session.port(), task.session.node(),
        wide(task.path).c_str(), wide(record.lock()).c_str(), wide(record.version()).c_str(), time, nullptr,
        &word, pid);
    if (dwStatus != 0 || word != 0) task.fail(dwStatus, word);
    follow(task, options, QString::fromWCharArray(pid), {});
    sayJob(task, options, record, QString::fromWCharArray(pid),
           QStringLiteral("version %1 of %2 is kept").arg(record.version(), task.path),
           Json{{"mtime", time}});
}

}  // namespace

void addVersionCommands(const Commands& commands) {
    const GlobalOptions& global = commands.global;
    Action& action = commands.action;

    CLI::App* probeCommand =
        commands.app.add_subcommand("version-probe", "Ask whether the server keeps versions of files");
    probeCommand->group(kGroup);
    probeCommand->callback([&global, &action] { action = [&global] { probe(global); }; });

    struct Row {
        const char* name;
        const char* help;
        void (*run)(const GlobalOptions&, const VersionOptions&);
        bool takesLock, takesVersion, startsJob;
    };
    static constexpr Row kRows[] = {
        {"version-lock", "Lock a file for a new version, or ask whether the lock still holds", lock, false,
         false, false},
        {"version-unlock", "Give a file's lock back", unlock, true, false, false},
        {"version-clean", "Have the server drop a version's work files", clean, true, true, false},
        {"version-sig", "Have the server make the signature of a version", signature, true, true, true},
        {"version-delta", "Have the server make a delta for a version", delta, true, true, true},
        {"version-stat", "Ask whether a version has a delta", stat, false, true, false},
        {"version-commit", "Make what was uploaded under the lock the new version", commit, true, true, true},
    };
    for (const Row& row : kRows) {
        CLI::App* command = commands.app.add_subcommand(row.name, row.help);
        command->group(kGroup);
        auto options = std::make_shared<VersionOptions>();
        command->add_option("path", options->path, "The file on the server")->type_name("")->required();
        if (row.takesLock) {
            command
                ->add_option("--lock", options->lock, "Id of the lock, if not the one kept by version-lock")
                ->type_name("ID");
        }
        if (row.takesVersion) {
            command
                ->add_option("--version-id", options->version,
                             "Id of the version, if not the one kept by version-lock")
                ->type_name("ID");
        }
        if (row.startsJob) {
            command->add_flag("--detach", options->detach, "Don't wait for the end; tell the job instead");
        }
        if (row.run == lock) {
            command->add_flag("--new", options->renew, "Don't ask about the lock that is kept; take another");
        }
        if (row.run == clean) command->add_flag("--dry-run", options->dryRun, "Only tell what would go");
        if (row.run == commit) {
            command
                ->add_option("--time", options->time,
                             "The version's time, as touch takes it (the file's time on the server)")
                ->type_name("TIME");
        }
        command->callback([&global, &action, options, run = row.run] {
            action = [&global, options, run] { run(global, *options); };
        });
    }
}

}  // namespace torvi
