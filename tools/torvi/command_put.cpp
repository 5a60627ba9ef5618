#include <QElapsedTimer>
#include <memory>
#include <optional>

#include "batch.h"
#include "commands.h"
#include "failure.h"
#include "output.h"
#include "remote.h"
#include "session.h"
#include "slicedupload.h"
#include "source.h"
#include "wholeupload.h"

namespace torvi {
namespace {

/// From here on a file is too large to be sent again from its beginning.
constexpr int64_t kLarge = 256 << 20;

struct PutOptions {
    std::vector<std::string> paths;
    std::string uploadRoot;
    std::string rename;
    bool batch = false;
    bool overwrite = false;
    bool plain = false;
    bool restart = false;
    bool dryRun = false;
    std::optional<bool> resume;
};

enum class Road { Plain, Whole, Sliced };

/// What is to be sent where, and how.
struct Plan {
    QString path;
    QString what;
    bool replaces = false;
    Road road = Road::Whole;
};

const char* nameOf(Road road) {
    switch (road) {
        case Road::Plain:
            return "plain";
        case Road::Whole:
            return "whole";
        case Road::Sliced:
            return "sliced";
    }
    return "";
}

Plan planFor(const Session& session, const PutOptions& options, Source& source) {
    Plan plan;
    const QString given = QString::fromStdString(options.paths.back());
    plan.path =
        given.endsWith(QLatin1Char('/')) ? joined(remotePath(given), source.leaf()) : remotePath(given);
    plan.what = QStringLiteral("put %1 to %2").arg(source.file()->fileName(), plan.path);
    std::optional<Entry> entry = lookUp(session, plan.path);
    if (entry && entry->folder && !given.endsWith(QLatin1Char('/'))) {
        plan.path = joined(plan.path, source.leaf());
        plan.what = QStringLiteral("put %1 to %2").arg(source.file()->fileName(), plan.path);
        entry = lookUp(session, plan.path);
    }
    if (entry && entry->folder) {
        throw Failure(Exit::AlreadyExists, QStringLiteral("%1: it is a folder").arg(plan.what));
    }
    const bool begun = UploadRecord::exists(session, plan.path, source);
    if (options.plain) {
        plan.road = Road::Plain;
    } else if (options.resume.value_or(begun || options.restart || source.size() >= kLarge)) {
        plan.road = Road::Sliced;
    }
    // An upload whose last reply was lost may be what is there.
    const bool maybeOwn = plan.road == Road::Sliced && begun && entry && entry->size == source.size() &&
                          entry->modified == source.modified();
    // Asked beforehand, for the server says so only after it has got all of the file.
    if (entry && !maybeOwn && !options.overwrite && options.rename.empty()) {
        throw Failure(Exit::AlreadyExists,
                      QStringLiteral("%1: it exists already; --overwrite replaces it").arg(plan.what));
    }
    plan.replaces = entry && options.rename.empty();
    return plan;
}

/// Gives the byte at which a sliced upload went on.
std::optional<int64_t> send(const GlobalOptions& global, const Session& session, const PutOptions& options,
                            const Plan& plan, Source& source) {
    const QString root =
        options.uploadRoot.empty() ? shareOf(plan.path) : QString::fromStdString(options.uploadRoot);
    const QString rename = QString::fromStdString(options.rename);
    if (plan.road == Road::Sliced) {
        SlicedUpload::Target target;
        target.path = plan.path;
        target.rename = rename;
        target.root = root;
        target.overwrite = options.overwrite;
        target.restart = options.restart;
        return SlicedUpload(global, session, plan.what, source, target).run();
    }
    WholeUpload upload;
    upload.path = plan.path;
    upload.rename = rename;
    upload.root = root;
    upload.overwrite = options.overwrite;
    upload.plain = plan.road == Road::Plain;
    sendWhole(global, session, plan.what, source, upload);
    return 0;
}

void putOne(const GlobalOptions& global, const PutOptions& options) {
    Source source(options.paths.front());
    Plan plan;
    std::optional<int64_t> resumedAt;
    QElapsedTimer clock;
    {
        const Session session(resolveConnection(global, Needs::Login));
        plan = planFor(session, options, source);
        clock.start();
        if (!options.dryRun) resumedAt = send(global, session, options, plan, source);
    }
    if (global.json) {
        Json json = {{"local", source.path()},
                     {"remote", utf8(plan.path)},
                     {"size", source.size()},
                     {"mtime", plan.road == Road::Plain ? Json(nullptr) : Json(source.modified())},
                     {"road", nameOf(plan.road)}};
        if (options.dryRun) {
            json["replaces"] = plan.replaces;
            json["dryRun"] = true;
        } else {
            json["resumedAt"] = resumedAt.value_or(source.size());
            json["milliseconds"] = clock.elapsed();
        }
        return printJson(json);
    }
    if (options.dryRun) {
        printLine(QStringLiteral("would send %1 to %2%3")
                      .arg(humanSize(source.size()), plan.path,
                           plan.replaces ? QStringLiteral(", replacing what is there") : QString()));
    }
}

void put(const GlobalOptions& global, const PutOptions& options) {
    if (!options.batch) {
        if (options.paths.size() > 2) {
            throw Failure(Exit::Usage,
                          QStringLiteral("put sends one file: give its path and where to put it, or "
                                         "--batch for several"));
        }
        return putOne(global, options);
    }
    std::vector<std::string> files = options.paths;
    files.pop_back();
    putBatch(global, files, options.paths.back(), options.overwrite, options.dryRun);
}

}  // namespace

void addPutCommand(const Commands& commands) {
    const GlobalOptions& global = commands.global;
    Action& action = commands.action;
    CLI::App* command = commands.app.add_subcommand(
        "put", "Upload a file; run it again to go on with a large one that was stopped");
    auto options = std::make_shared<PutOptions>();
    command
        ->add_option("paths", options->paths,
                     "The file on this machine, then its path on the server or the folder to put it in")
        ->type_name("")
        ->expected(2, 1000000)
        ->required();
    command->add_flag("--overwrite,-f", options->overwrite, "Replace a file that exists");
    auto* resume = command->add_flag_function(
        "--resume,!--no-resume", [options](int64_t count) { options->resume = count > 0; },
        "Send it in slices, so that it can be gone on with; files from 256 MiB on are sent so by themselves");
    auto* restart =
        command->add_flag("--restart", options->restart, "Drop what the server has of an earlier try");
    auto* batch = command
                      ->add_flag("--batch", options->batch,
                                 "Send several small files into one folder, many in one request")
                      ->excludes(resume)
                      ->excludes(restart);
    command->add_flag("--plain", options->plain, "The older upload: the file gets the time of its arrival")
        ->excludes(resume)
        ->excludes(restart)
        ->excludes(batch);
    auto* plain = command->get_option("--plain");
    command->add_option("--rename", options->rename, "Name or path that the server gives the file in the end")
        ->type_name("TARGET")
        ->excludes(plain)
        ->excludes(batch);
    command
        ->add_option("--upload-root", options->uploadRoot,
                     "Folder under which the server keeps what isn't finished (the destination's share)")
        ->type_name("FOLDER")
        ->excludes(plain)
        ->excludes(batch);
    command->add_flag("--dry-run", options->dryRun, "Only tell what would be done");
    command->callback(
        [&global, &action, options] { action = [&global, options] { put(global, *options); }; });
}

}  // namespace torvi
