#include <memory>

#include "commands.h"
#include "failure.h"
#include "jobs.h"
#include "listing.h"
#include "output.h"
#include "session.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

const QString kRecycle = QStringLiteral("/@Recycle");

struct RestoreOptions {
    std::string path;
    bool overwrite = false;
    bool detach = false;
    bool dryRun = false;
};

int recycleAt(const QString& path) {
    const int at = path.indexOf(kRecycle);
    const int end = at + kRecycle.size();
    return at > 0 && (end == path.size() || path[end] == QLatin1Char('/')) ? at : -1;
}

/// Where something waits that was deleted from there; a path in the trash stays as it is.
QString inTrash(const QString& path) {
    if (recycleAt(path) >= 0) return path;
    const int share = path.indexOf(QLatin1Char('/'), 1);
    return share < 0 ? path + kRecycle : path.left(share) + kRecycle + path.mid(share);
}

/// Where something was that is in the trash.
QString outOfTrash(const QString& path) {
    const int at = recycleAt(path);
    return at < 0 ? path : path.left(at) + path.mid(at + kRecycle.size());
}

void trash(const GlobalOptions& global, const std::string& given) {
    const QString folder = inTrash(remotePath(QString::fromStdString(given)));
    const QString what = QStringLiteral("trash %1").arg(folder);
    std::vector<Found> found;
    {
        const Session session(resolveConnection(global, Needs::Login));
        // There is none until something has been deleted.
        if (const auto entry = lookUp(session, folder); entry && entry->folder) {
            found = walk(session, what, folder);
        } else if (folder != inTrash(outOfTrash(folder).section(QLatin1Char('/'), 0, 1))) {
            throw callFailure(what, 0, 3);
        }
    }
    if (global.json) {
        Json entries = Json::array();
        for (const Found& one : found) {
            Json json = toJson(one.entry, one.path);
            json["original"] = utf8(outOfTrash(one.path));
            entries.push_back(json);
        }
        return printJson(Json{{"path", utf8(folder)}, {"count", found.size()}, {"entries", entries}});
    }
    if (found.empty()) {
        if (!global.quiet) printLine(QStringLiteral("The trash is empty"));
        return;
    }
    Table table;
    table.addColumn(QStringLiteral("WAS AT"));
    table.addColumn(QStringLiteral("SIZE"), Table::Align::Right);
    table.addColumn(QStringLiteral("MODIFIED"));
    for (const Found& one : found) {
        const QString path = outOfTrash(one.path);
        table.addRow({one.entry.folder ? path + QLatin1Char('/') : path,
                      one.entry.folder ? QStringLiteral("-") : humanSize(one.entry.size),
                      localTime(one.entry.modified)});
    }
    table.print(stdout);
}

void restore(const GlobalOptions& global, const RestoreOptions& options) {
    const QString path = inTrash(remotePath(QString::fromStdString(options.path)));
    const QString former = outOfTrash(path);
    const QString what = QStringLiteral("restore %1").arg(former);
    QString pid;
    {
        const Session session(resolveConnection(global, Needs::Login));
        if (const TeamFolder* team = teamFolderOf(session.teams(), former)) {
            throw Failure(Exit::Denied,
                          QStringLiteral("%1: only the owner of %2 can bring back what was deleted in it")
                              .arg(what, team->client));
        }
        if (!lookUp(session, path)) {
            throw Failure(
                Exit::NotFound,
                QStringLiteral("%1: it is not in the trash; `torvi trash` lists what is").arg(what));
        }
        if (options.dryRun) {
            if (global.json) {
                return printJson(Json{
                    {"trash", utf8(path)}, {"path", utf8(former)}, {"restored", false}, {"dryRun", true}});
            }
            const bool replaces = options.overwrite && lookUp(session, former);
            return printLine(
                QStringLiteral("would restore %1%2")
                    .arg(former, replaces ? QStringLiteral(", replacing what is there now") : QString()));
        }
        wchar_t buffer[260] = {};
        uint32_t word = 0;
        // The mode tells what to do with a file that is in the way.
        const uint32_t dwStatus = WFMTrashRecovery(
            session.context(), session.server(), session.port(), session.node(), options.overwrite ? 1 : 0,
            wide(parentOf(path)).c_str(), wide(leafOf(path)).c_str(), nullptr, buffer,
            static_cast<uint32_t>(std::size(buffer)), &word);
        if (dwStatus != 0 || word != 0) {
            if (interrupted()) throwCancelled(what);
            Failure failure = callFailure(what, dwStatus, word);
            if (failure.exit() == Exit::AlreadyExists)
                failure = failure.withAdvice(QStringLiteral("--overwrite replaces what is there now"));
            throw failure;
        }
        pid = QString::fromWCharArray(buffer);
        if (!pid.isEmpty() && !options.detach) {
            waitForJob(session, {what, leafOf(former), pid, session.node(), global.quiet,
                                 [&] { return !lookUp(session, path) && lookUp(session, former); }});
        }
    }
    if (global.json) {
        return printJson(Json{{"trash", utf8(path)},
                              {"path", utf8(former)},
                              {"pid", pid.isEmpty() ? Json(nullptr) : Json(utf8(pid))},
                              {"restored", !options.detach}});
    }
    if (options.detach) return printLine(QStringLiteral("restoring %1 as job %2").arg(former, pid));
    if (!global.quiet) printLine(QStringLiteral("restored %1").arg(former));
}

}  // namespace

void addTrashCommands(const Commands& commands) {
    const GlobalOptions& global = commands.global;
    Action& action = commands.action;

    CLI::App* list = commands.app.add_subcommand("trash", "List what was deleted and can be brought back");
    auto folder = std::make_shared<std::string>("/home");
    list->add_option("folder", *folder, "What was deleted from this folder, or from below it")
        ->type_name("")
        ->capture_default_str();
    list->callback([&global, &action, folder] { action = [&global, folder] { trash(global, *folder); }; });

    CLI::App* bring = commands.app.add_subcommand("restore", "Bring back what was deleted");
    auto options = std::make_shared<RestoreOptions>();
    bring->add_option("path", options->path, "Where it was, or where it is in the trash")
        ->type_name("")
        ->required();
    bring->add_flag("--overwrite,-f", options->overwrite, "Replace a file that is there now");
    auto* detach =
        bring->add_flag("--detach", options->detach, "Don't wait for the end; tell the job instead");
    bring->add_flag("--dry-run", options->dryRun, "Only tell what would be done")->excludes(detach);
    bring->callback(
        [&global, &action, options] { action = [&global, options] { restore(global, *options); }; });
}

}  // namespace torvi
