#include <sys/stat.h>

#include <QElapsedTimer>
#include <QFile>
#include <cerrno>
#include <filesystem>
#include <memory>

#include "failure.h"
#include "options.h"
#include "output.h"
#include "partial.h"
#include "progress.h"
#include "remote.h"
#include "session.h"
#include "signals.h"
#include "status.h"
#include "transfer.h"

namespace torvi {
namespace {

struct PutOptions {
    std::string local;
    std::string remote;
    std::string uploadRoot;
    std::string rename;
    bool overwrite = false;
    bool plain = false;
};

struct Source {
    std::string path;
    int64_t size = 0;
    int64_t modified = 0;
};

Source openSource(const std::string& path, QFile& file) {
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0) throw localFailure(QStringLiteral("cannot read"), path, errno);
    if (!S_ISREG(status.st_mode)) {
        throw Failure(
            Exit::Local,
            QStringLiteral("%1 is not a plain file; put sends one file").arg(QString::fromStdString(path)));
    }
    file.setFileName(localName(path));
    if (!file.open(QIODevice::ReadOnly)) {
        throw Failure(Exit::Local,
                      QStringLiteral("cannot read %1: %2").arg(file.fileName(), file.errorString()));
    }
    return {path, static_cast<int64_t>(status.st_size), static_cast<int64_t>(status.st_mtim.tv_sec)};
}

/// The path of the new file: below the one that was given if that is a folder.
QString destination(const Session& session, const PutOptions& options, const QString& what) {
    const QString given = QString::fromStdString(options.remote);
    const QString leaf = QString::fromStdString(std::filesystem::path(options.local).filename().string());
    QString path = given.endsWith(QLatin1Char('/')) ? joined(remotePath(given), leaf) : remotePath(given);
    std::optional<Entry> entry = lookUp(session, path);
    if (entry && entry->folder && !given.endsWith(QLatin1Char('/'))) {
        path = joined(path, leaf);
        entry = lookUp(session, path);
    }
    if (entry && entry->folder) {
        throw Failure(Exit::AlreadyExists, QStringLiteral("%1: %2 is a folder").arg(what, path));
    }
    // Asked beforehand, for the server says so only after it has got all of the file.
    if (entry && !options.overwrite && options.rename.empty()) {
        throw Failure(Exit::AlreadyExists,
                      QStringLiteral("%1: %2 exists already; --overwrite replaces it").arg(what, path));
    }
    return path;
}

/// The share of the destination: there the server moves the finished file without copying it.
QString uploadRoot(const PutOptions& options, const QString& path) {
    if (!options.uploadRoot.empty()) return QString::fromStdString(options.uploadRoot);
    const int second = path.indexOf(QLatin1Char('/'), 1);
    return second < 0 ? QStringLiteral("/") : path.left(second);
}

void put(const GlobalOptions& global, const PutOptions& options) {
    QFile file;
    const Source source = openSource(options.local, file);
    QString what = QStringLiteral("put %1").arg(file.fileName());
    QElapsedTimer clock;
    QString path;
    {
        const Session session(resolveConnection(global, Needs::Login));
        path = destination(session, options, what);
        what += QStringLiteral(" to %1").arg(path);
        Progress progress(leafOf(path), source.size, 0, global.quiet);
        clock.start();
        const std::wstring target = wide(path);
        const uint32_t overwrite = options.overwrite ? 1 : 0;
        uint32_t word = 0;
        uint32_t dwStatus = 0;
        if (options.plain) {
            dwStatus = WFMUploadFilewithHandle(session.context(), session.server(), session.port(),
                                               session.node(), &file, target.c_str(), &progress, onProgress,
                                               overwrite, nullptr, &word);
        } else {
            dwStatus = WFMTorviUploadandMovewithHandle(
                session.context(), session.server(), session.port(), session.node(), &file, target.c_str(),
                wide(uploadRoot(options, path)).c_str(), wide(QString::fromStdString(options.rename)).c_str(),
                source.size, source.modified, &progress, onProgress, overwrite, nullptr, &word);
        }
        const bool done = dwStatus == 0 && word == 0;
        if (!done && interrupted()) throwCancelled(what);
        // Stopped, but not by the user: the server hung up in the middle.
        if (dwStatus == 0 && word == 1235) {
            throw Failure(Exit::Incomplete,
                          QStringLiteral("%1: the server did not take all of the file").arg(what))
                .withNumbers(dwStatus, 1235);
        }
        if (!done) throw callFailure(what, dwStatus, word);
        progress.finish();
    }
    if (!global.json) return;
    printJson(Json{{"local", options.local},
                   {"remote", utf8(path)},
                   {"size", source.size},
                   {"mtime", options.plain ? Json(nullptr) : Json(source.modified)},
                   {"milliseconds", clock.elapsed()}});
}

}  // namespace

void addPutCommand(const Commands& commands) {
    const GlobalOptions& global = commands.global;
    Action& action = commands.action;
    CLI::App* command = commands.app.add_subcommand("put", "Upload a file; it keeps its modification time");
    auto options = std::make_shared<PutOptions>();
    command->add_option("local", options->local, "The file on this machine")->type_name("")->required();
    command->add_option("remote", options->remote, "Its path on the server, or the folder to put it in")
        ->type_name("")
        ->required();
    command->add_flag("--overwrite,-f", options->overwrite, "Replace a file that exists");
    auto* plain = command->add_flag("--plain", options->plain,
                                    "The older upload: the file gets the time of its arrival");
    command->add_option("--rename", options->rename, "Name or path that the server gives the file in the end")
        ->type_name("TARGET")
        ->excludes(plain);
    command
        ->add_option("--upload-root", options->uploadRoot,
                     "Folder under which the server keeps its temporary files (the destination's share)")
        ->type_name("FOLDER")
        ->excludes(plain);
    command->callback(
        [&global, &action, options] { action = [&global, options] { put(global, *options); }; });
}

}  // namespace torvi
