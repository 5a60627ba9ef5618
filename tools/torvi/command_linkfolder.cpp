#include <WebFileManShareAPI.h>

#include <memory>

#include "failure.h"
#include "linkcommands.h"
#include "output.h"
#include "remote.h"
#include "session.h"
#include "sharedfolders.h"
#include "signals.h"
#include "status.h"
#include "teams.h"

namespace torvi {
namespace {

struct WhereOptions {
    std::string folder = "/home";
};

struct RepairOptions {
    std::string folder;
    std::string from;
};

struct MoveOptions {
    std::string source;
    std::string destination;
};

/// The server doesn't tell one user of another's shares.
void requireOwn(const Session& session, const QString& what, const QString& path) {
    if (teamFolderOf(session.teams(), path) == nullptr) return;
    throw Failure(Exit::Denied, QStringLiteral("%1: that is another user's").arg(what))
        .withAdvice(QStringLiteral("`torvi team list` tells whose"));
}

void where(const GlobalOptions& global, const WhereOptions& options) {
    const QString folder = remotePath(QString::fromStdString(options.folder));
    const QString what = QStringLiteral("link where %1").arg(folder);
    std::vector<SharedFolder> found;
    {
        const Session session(resolveConnection(global, Needs::Login));
        requireOwn(session, what, folder);
        if (const auto own = sharedAt(session, what, folder)) found.push_back(*own);
        for (const SharedFolder& below : sharedBelow(session, what, folder)) {
            // Some servers count the folder itself.
            if (!found.empty() && below.shareId == found.front().shareId) continue;
            // The list doesn't tell what is gone.
            found.push_back(sharedAt(session, what, below.path).value_or(below));
        }
    }
    if (global.json) {
        Json all = Json::array();
        for (const SharedFolder& one : found) {
            all.push_back(
                Json{{"path", utf8(one.path)}, {"shareId", utf8(one.shareId)}, {"exists", one.exists}});
        }
        return printJson(Json{{"folder", utf8(folder)}, {"count", found.size()}, {"shares", all}});
    }
    if (found.empty()) {
        if (!global.quiet) printLine(QStringLiteral("Nothing is shared in %1").arg(folder));
        return;
    }
    Table table;
    table.addColumn(QStringLiteral("SHARE"));
    table.addColumn(QStringLiteral("PATH"));
    for (const SharedFolder& one : found)
        table.addRow({one.shareId, one.exists ? one.path : one.path + QStringLiteral(" (gone)")});
    table.print(stdout);
}

/// The folder is where it belongs, and its receivers shall find it there.
bool repairHere(const Session& session, const QString& what, const QString& folder) {
    constexpr uint32_t kSyncType = 4;
    constexpr uint32_t kOlderType = 8;
    uint32_t fixed = 0;
    const uint32_t dwStatus = WFMFixTeamFolderLink(
        session.context(), session.server(), session.port(), nullptr,
        session.service() == Service::Sync ? kSyncType : kOlderType, wide(folder).c_str(), &fixed);
    if (interrupted()) throwCancelled(what);
    if (dwStatus != 0) throw statusFailure(what, dwStatus);
    return fixed == 1;
}

/// Tells that what was at one path is at another. Of the paths the call sends the new folder and the name.
void follow(const Session& session, const QString& what, const QString& from, const QString& to) {
    uint32_t word = 0;
    const uint32_t dwStatus =
        WebFileManUpdateLink(session.context(), session.server(), session.port(), session.nodeOf(to).c_str(),
                             wide(from).c_str(), wide(to).c_str(), 0, nullptr, &word);
    check(what, dwStatus, word);
}

void repair(const GlobalOptions& global, const RepairOptions& options) {
    const QString folder = remotePath(QString::fromStdString(options.folder));
    const QString what = QStringLiteral("link repair %1").arg(folder);
    const QString from = options.from.empty() ? QString() : remotePath(QString::fromStdString(options.from));
    if (!from.isEmpty() && leafOf(from) != leafOf(folder)) {
        throw Failure(Exit::Usage,
                      QStringLiteral("%1: the server looks for the folder by its name, which was "
                                     "%2; without --from the name doesn't matter")
                          .arg(what, leafOf(from)));
    }
    bool repaired = true;
    {
        const Session session(resolveConnection(global, Needs::Login));
        require(session, what, folder);
        if (from.isEmpty()) {
            repaired = repairHere(session, what, folder);
            // What needs none, and what isn't shared, get the same answer.
            if (!repaired && !sharedAt(session, what, folder))
                throw Failure(Exit::NotFound, QStringLiteral("%1: it isn't shared").arg(what));
        } else {
            follow(session, what, from, folder);
        }
    }
    if (global.json) return printJson(Json{{"path", utf8(folder)}, {"repaired", repaired}});
    if (global.quiet) return;
    printLine(repaired ? QStringLiteral("%1 is shared again").arg(folder)
                       : QStringLiteral("%1 needs no repair").arg(folder));
}

/// Where it goes: a path that ends in "/", or a folder that is there, takes it in.
QString targetOf(const Session& session, const QString& source, const std::string& destination) {
    const QString given = QString::fromStdString(destination);
    const QString target = remotePath(given);
    if (given.endsWith(QLatin1Char('/'))) return joined(target, leafOf(source));
    const auto there = target == source ? std::nullopt : lookUp(session, target);
    return there && there->folder ? joined(target, leafOf(source)) : target;
}

void move(const GlobalOptions& global, const MoveOptions& options) {
    const QString source = remotePath(QString::fromStdString(options.source));
    const QString what = QStringLiteral("link mv %1").arg(source);
    QString target;
    bool renames = false;
    {
        const Session session(resolveConnection(global, Needs::Login));
        requireOwn(session, what, source);
        require(session, what, source);
        target = targetOf(session, source, options.destination);
        if (target == source) throw Failure(Exit::Usage, QStringLiteral("%1: it is there already").arg(what));
        if (lookUp(session, target))
            throw Failure(Exit::AlreadyExists, QStringLiteral("%1: %2 exists already").arg(what, target));
        renames = parentOf(source) == parentOf(target);
        // What keeps its name in another folder is to be told of by the call of its own.
        const bool tellsOf = leafOf(source) == leafOf(target) && sharedAt(session, what, source).has_value();
        const auto call = renames ? WebFileManRenameShareFolder : WebFileManMoveShareFolder;
        uint32_t word = 0;
        const uint32_t dwStatus = call(session.context(), session.server(), session.port(),
                                       wide(source).c_str(), wide(target).c_str(), 0, nullptr, &word);
        check(what, dwStatus, word);
        if (tellsOf) follow(session, what, source, target);
    }
    if (global.json) {
        return printJson(Json{{"source", utf8(source)},
                              {"destination", utf8(target)},
                              {"operation", renames ? "rename" : "move"},
                              {"done", true}});
    }
    if (global.quiet) return;
    printLine(QStringLiteral("%1 %2 to %3")
                  .arg(renames ? QStringLiteral("renamed") : QStringLiteral("moved"), source, target));
}

}  // namespace

void addSharedFolderCommands(const Commands& commands) {
    CLI::App* whereCommand =
        commands.app.add_subcommand("where", "List the folders that this user shares with others");
    auto whereOptions = std::make_shared<WhereOptions>();
    whereCommand->add_option("folder", whereOptions->folder, "This one, and what is below it")
        ->type_name("")
        ->capture_default_str();
    runs(commands, whereCommand, whereOptions, where);

    CLI::App* moveCommand =
        commands.app.add_subcommand("mv", "Rename or move a shared folder; whoever has it keeps it");
    auto moveOptions = std::make_shared<MoveOptions>();
    moveCommand->add_option("source", moveOptions->source, "The folder")->type_name("")->required();
    moveCommand
        ->add_option("destination", moveOptions->destination, "Its new path, or the folder to put it in")
        ->type_name("")
        ->required();
    runs(commands, moveCommand, moveOptions, move);

    CLI::App* repairCommand = commands.app.add_subcommand(
        "repair", "Bring back to its receivers a shared folder that was renamed or moved by other means");
    auto repairOptions = std::make_shared<RepairOptions>();
    repairCommand->add_option("folder", repairOptions->folder, "Where it is now")->type_name("")->required();
    repairCommand
        ->add_option("--from", repairOptions->from,
                     "Where it was: for a copy in place of a folder that is gone")
        ->type_name("PATH");
    runs(commands, repairCommand, repairOptions, repair);
}

}  // namespace torvi
