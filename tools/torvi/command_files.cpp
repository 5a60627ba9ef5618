#include <memory>

#include "commands.h"
#include "failure.h"
#include "listing.h"
#include "output.h"
#include "progress.h"
#include "remote.h"
#include "session.h"
#include "signals.h"
#include "status.h"
#include "times.h"

namespace torvi {
namespace {

constexpr uint32_t kExists = 183;

struct MkdirOptions {
    std::string path;
    bool parents = false;
};

struct TouchOptions {
    std::string path;
    std::string time;
};

struct RemoveOptions {
    std::string path;
    bool recursive = false;
    bool check = false;
    bool cleanThumbnails = false;
    bool dryRun = false;
};

[[noreturn]] void fail(const QString& what, uint32_t dwStatus, uint32_t word) {
    if (interrupted()) throwCancelled(what);
    throw callFailure(what, dwStatus, word);
}

/// False if it is there already.
bool makeFolder(const Session& session, const QString& what, const QString& path) {
    uint32_t word = 0;
    const uint32_t dwStatus =
        WFMCreateFolder(session.context(), session.server(), session.port(), session.node(),
                        wide(parentOf(path)).c_str(), wide(leafOf(path)).c_str(), cancelFlag(), &word);
    if (dwStatus == 0 && word == kExists) return false;
    if (dwStatus != 0 || word != 0) {
        if (interrupted()) throwCancelled(what);
        Failure failure = callFailure(what, dwStatus, word);
        if (failure.exit() == Exit::NotFound)
            failure = failure.withAdvice(QStringLiteral("-p makes the folders on the way, too"));
        throw failure;
    }
    return true;
}

/// The folders that are missing on the way to it, it being the last.
std::vector<QString> missingFolders(const Session& session, const QString& what, const QString& path) {
    std::vector<QString> missing;
    for (QString at = path; at != QLatin1String("/"); at = parentOf(at)) {
        if (const auto entry = lookUp(session, at)) {
            if (entry->folder) break;
            throw Failure(Exit::AlreadyExists, QStringLiteral("%1: %2 is a file").arg(what, at));
        }
        missing.insert(missing.begin(), at);
    }
    return missing;
}

void makeFolders(const GlobalOptions& global, const MkdirOptions& options) {
    const QString path = remotePath(QString::fromStdString(options.path));
    const QString what = QStringLiteral("mkdir %1").arg(path);
    std::vector<QString> made;
    {
        const Session session(resolveConnection(global, Needs::Login));
        const std::vector<QString> wanted =
            options.parents ? missingFolders(session, what, path) : std::vector<QString>{path};
        for (const QString& folder : wanted) {
            // With -p another client may have been quicker.
            if (makeFolder(session, what, folder)) {
                made.push_back(folder);
            } else if (!options.parents) {
                throw callFailure(what, 0, kExists);
            }
        }
    }
    if (global.json) {
        Json created = Json::array();
        for (const QString& folder : made) created.push_back(utf8(folder));
        return printJson(Json{{"path", utf8(path)}, {"created", created}});
    }
    if (global.quiet) return;
    for (const QString& folder : made) printLine(QStringLiteral("made %1").arg(folder));
}

void touch(const GlobalOptions& global, const TouchOptions& options) {
    const QString path = remotePath(QString::fromStdString(options.path));
    const QString what = QStringLiteral("touch %1").arg(path);
    const bool setsTime = !options.time.empty();
    const int64_t time = setsTime ? parseTime(what, QString::fromStdString(options.time)) : 0;
    bool created = false;
    {
        const Session session(resolveConnection(global, Needs::Login));
        // Creating a file that is there already would empty it.
        const bool exists = lookUp(session, path).has_value();
        if (exists && !setsTime) {
            throw Failure(Exit::AlreadyExists,
                          QStringLiteral("%1: it exists already; --time sets its time").arg(what));
        }
        uint32_t word = 0;
        if (!exists) {
            const uint32_t dwStatus = WFMCreateFile(session.context(), session.server(), session.port(),
                                                    session.node(), wide(path).c_str(), cancelFlag(), &word);
            if (dwStatus != 0 || word != 0) fail(what, dwStatus, word);
            created = true;
        }
        if (setsTime) {
            const uint32_t dwStatus = WFMSetFileTime(session.context(), session.server(), session.port(),
                                                     session.node(), wide(leafOf(path)).c_str(),
                                                     wide(parentOf(path)).c_str(), time, cancelFlag(), &word);
            if (dwStatus != 0 || word != 0) fail(what, dwStatus, word);
        }
    }
    if (!global.json) return;
    Json json = {{"path", utf8(path)}, {"created", created}};
    if (setsTime) json["mtime"] = time;
    printJson(json);
}

/// What is to go, and what goes with it.
struct Doomed {
    Entry entry;
    std::vector<Found> below;
    Census census;
};

Doomed lookBeforeRemoving(const GlobalOptions& global, const Session& session, const QString& what,
                          const QString& path, const RemoveOptions& options) {
    Doomed doomed;
    doomed.entry = require(session, what, path);
    if (doomed.entry.folder && !options.recursive) {
        throw Failure(Exit::Usage,
                      QStringLiteral("%1: it is a folder; -r removes it with all that it holds").arg(what));
    }
    if (options.check) requireCheckable(what, doomed.entry);
    const bool tells = global.json || !global.quiet || options.dryRun;
    // A share is refused anyway.
    const bool isShare = parentOf(path) == QLatin1String("/");
    if (doomed.entry.folder && tells && !isShare) doomed.below = walk(session, what, path);
    doomed.census = countOf(doomed.below);
    ++(doomed.entry.folder ? doomed.census.folders : doomed.census.files);
    if (!doomed.entry.folder) doomed.census.size += doomed.entry.size;
    return doomed;
}

void removeNow(const GlobalOptions& global, const Session& session, const QString& what, const QString& path,
               const RemoveOptions& options, const Doomed& doomed) {
    const Activity activity(QStringLiteral("removing %1 (%2)").arg(path, doomed.census.text()),
                            global.quiet || !doomed.entry.folder);
    uint32_t word = 0;
    uint32_t dwStatus = 0;
    if (options.check) {
        dwStatus =
            WFMDeletePathwithCheckProfile(session.context(), session.server(), session.port(), session.node(),
                                          wide(path).c_str(), doomed.entry.modified, doomed.entry.size,
                                          doomed.entry.folder, options.cleanThumbnails, cancelFlag(), &word);
    } else {
        dwStatus = WFMDeletePath(session.context(), session.server(), session.port(), session.node(),
                                 wide(path).c_str(), cancelFlag(), &word);
    }
    if (dwStatus != 0 || word != 0) {
        if (interrupted()) throwCancelled(what);
        throw checkedFailure(what, dwStatus, word);
    }
    // Most refusals of the plain call look like a success.
    if (!options.check && lookUp(session, path)) {
        throw Failure(
            Exit::Refused,
            QStringLiteral("%1: it is still there, the server refused and gave no reason").arg(what));
    }
}

void remove(const GlobalOptions& global, const RemoveOptions& options) {
    const QString path = remotePath(QString::fromStdString(options.path));
    const QString what = QStringLiteral("rm %1").arg(path);
    Doomed doomed;
    {
        const Session session(resolveConnection(global, Needs::Login));
        doomed = lookBeforeRemoving(global, session, what, path, options);
        if (!options.dryRun) removeNow(global, session, what, path, options, doomed);
    }
    if (global.json) {
        Json entries = Json::array();
        for (const Found& one : doomed.below) entries.push_back(toJson(one.entry, one.path));
        return printJson(Json{{"path", utf8(path)},
                              {"type", utf8(typeText(doomed.entry))},
                              {"removed", !options.dryRun},
                              {"files", doomed.census.files},
                              {"folders", doomed.census.folders},
                              {"size", doomed.census.size},
                              {"below", entries}});
    }
    if (options.dryRun) {
        for (const Found& one : doomed.below) {
            printLine(QStringLiteral("would remove %1%2")
                          .arg(one.path, one.entry.folder ? QStringLiteral("/") : QString()));
        }
    }
    if (global.quiet && !options.dryRun) return;
    const QString detail = doomed.entry.folder ? doomed.census.text() : humanSize(doomed.entry.size);
    printLine(
        QStringLiteral("%1 %2 (%3)")
            .arg(options.dryRun ? QStringLiteral("would remove") : QStringLiteral("removed"), path, detail));
}

void canUpload(const GlobalOptions& global, const std::string& given) {
    const QString path = remotePath(QString::fromStdString(given));
    const QString what = QStringLiteral("can-upload %1").arg(path);
    uint32_t word = 0;
    {
        const Session session(resolveConnection(global, Needs::Login));
        const uint32_t dwStatus =
            WFMTorviCheckPermission(session.context(), session.server(), session.port(), session.node(),
                                    wide(parentOf(path)).c_str(), wide(leafOf(path)).c_str(), nullptr, &word);
        const bool answered = dwStatus == 0 && (word == 0 || word == 5);
        if (!answered) fail(what, dwStatus, word);
    }
    if (word != 0) throw callFailure(what, 0, word);
    if (global.json) return printJson(Json{{"path", utf8(path)}, {"allowed", true}});
    if (!global.quiet) printLine(QStringLiteral("%1: allowed").arg(path));
}

}  // namespace

void addFileCommands(const Commands& commands) {
    const GlobalOptions& global = commands.global;
    Action& action = commands.action;

    CLI::App* mkdirCommand = commands.app.add_subcommand("mkdir", "Make a folder");
    auto folder = std::make_shared<MkdirOptions>();
    mkdirCommand->add_option("path", folder->path, "The new folder")->type_name("")->required();
    mkdirCommand->add_flag("--parents,-p", folder->parents,
                           "Make the folders on the way, too; one that exists is no failure");
    mkdirCommand->callback(
        [&global, &action, folder] { action = [&global, folder] { makeFolders(global, *folder); }; });

    CLI::App* touchCommand =
        commands.app.add_subcommand("touch", "Create an empty file; one that exists is left as it is");
    auto file = std::make_shared<TouchOptions>();
    touchCommand->add_option("path", file->path, "The path on the server")->type_name("")->required();
    touchCommand
        ->add_option(
            "--time", file->time,
            "Set the time of modification, of a file or folder that exists, too: seconds since 1970, "
            "2024-02-29T12:34:56Z, or now")
        ->type_name("TIME");
    touchCommand->callback([&global, &action, file] { action = [&global, file] { touch(global, *file); }; });

    CLI::App* rmCommand =
        commands.app.add_subcommand("rm", "Remove a file, or a folder with all that it holds");
    auto doomed = std::make_shared<RemoveOptions>();
    rmCommand->add_option("path", doomed->path, "What to remove")->type_name("")->required();
    rmCommand->add_flag("--recursive,-r", doomed->recursive, "Remove folders, too");
    auto* check = rmCommand->add_flag("--check", doomed->check,
                                      "Let the server refuse if it has changed since it was looked at");
    rmCommand->add_flag("--clean-thumbnails", doomed->cleanThumbnails, "Remove its thumbnails, too")
        ->needs(check);
    rmCommand->add_flag("--dry-run", doomed->dryRun, "Only tell what would go");
    rmCommand->callback(
        [&global, &action, doomed] { action = [&global, doomed] { remove(global, *doomed); }; });

    addPathCommand(commands, "can-upload", "Ask whether an upload to the path would be allowed", canUpload);
}

}  // namespace torvi
