#include <memory>

#include "failure.h"
#include "jobs.h"
#include "output.h"
#include "session.h"
#include "signals.h"
#include "status.h"
#include "teamactions.h"
#include "teamcommands.h"
#include "teamrecords.h"

namespace torvi {
namespace {

/// The library tests no capacity.
constexpr size_t kFileCapacity = 2048;

struct AcceptOptions {
    std::string folder;
    std::string name;
};

struct LeaveOptions {
    std::string folder;
    bool detach = false;
    bool dryRun = false;
};

/// Gives the path under which the folder appears, empty if the server doesn't tell.
QString acceptNow(const Session& session, const QString& what, const TeamRecord& invitation,
                  const QString& name) {
    std::vector<wchar_t> file(kFileCapacity);
    uint32_t word = 0;
    const uint32_t dwStatus = WebFileManAcceptShare(
        session.context(), session.server(), session.port(), wide(invitation.nasId).c_str(),
        wide(name).c_str(), invitation.event, wide(invitation.shareId).c_str(), nullptr, file.data(), &word);
    if (dwStatus != 0 || word != 0) {
        if (interrupted()) throwCancelled(what);
        const Failure failure = callFailure(what, dwStatus, word);
        if (failure.exit() != Exit::AlreadyExists) throw failure;
        throw failure.withAdvice(QStringLiteral("--name gives it another name"));
    }
    return QString::fromWCharArray(file.data());
}

void accept(const GlobalOptions& global, const AcceptOptions& options) {
    const QString which = QString::fromStdString(options.folder);
    const QString given = QString::fromStdString(options.name);
    const QString what = QStringLiteral("team accept %1").arg(which);
    const Session session(resolveConnection(global, Needs::Login));
    if (session.service() != Service::Sync && !given.isEmpty()) {
        throw Failure(
            Exit::Usage,
            QStringLiteral("%1: the older service chooses the name by itself, leave out --name").arg(what));
    }
    const TeamRecord invitation = findTeamFolder(session, what, kInvited, which);
    QString path = acceptNow(session, what, invitation, given.isEmpty() ? invitation.name : given);
    QString place;
    for (const TeamRecord& folder : sameTeamFolder(session, what, kReceived, invitation.shareId)) {
        if (path.isEmpty()) path = folder.path;
        if (!folder.serverPath.isEmpty()) place = folder.place().text();
    }
    if (global.json) {
        return printJson(Json{{"shareId", utf8(invitation.shareId)},
                              {"nasId", utf8(invitation.nasId)},
                              {"owner", utf8(invitation.owner)},
                              {"path", utf8(path)},
                              {"team", place.isEmpty() ? Json(nullptr) : Json(utf8(place))}});
    }
    if (global.quiet) return;
    printLine(QStringLiteral("%1 of %2 is at %3 now").arg(invitation.name, invitation.owner, path));
    if (place.isEmpty()) return;
    printLine(
        QStringLiteral("Commands find it with --team %1, or by themselves after `torvi team list --remember`")
            .arg(place));
}

void deny(const GlobalOptions& global, const std::string& given) {
    const QString which = QString::fromStdString(given);
    const QString what = QStringLiteral("team deny %1").arg(which);
    TeamRecord invitation;
    {
        const Session session(resolveConnection(global, Needs::Login));
        invitation = findTeamFolder(session, what, kInvited, which);
        runShareAction(session, what, WebFileManDenyShare, invitation, invitation.event);
    }
    if (global.json) {
        return printJson(Json{{"shareId", utf8(invitation.shareId)},
                              {"owner", utf8(invitation.owner)},
                              {"name", utf8(invitation.name)},
                              {"denied", true}});
    }
    if (!global.quiet) printLine(QStringLiteral("denied %1 of %2").arg(invitation.name, invitation.owner));
}

void leave(const GlobalOptions& global, const LeaveOptions& options) {
    const QString which = QString::fromStdString(options.folder);
    const QString what = QStringLiteral("team leave %1").arg(which);
    TeamRecord folder;
    {
        const Session session(resolveConnection(global, Needs::Login));
        folder = findTeamFolder(session, what, kReceived, which);
        if (!options.dryRun) runShareAction(session, what, WebFileManLeaveShare, folder, folder.event);
        if (!options.dryRun && !options.detach) {
            waitForEnd(session,
                       {what, QStringLiteral("leaving %1").arg(folder.name), {}, {}, global.quiet, [&] {
                            return sameTeamFolder(session, what, kReceived, folder.shareId).empty();
                        }});
        }
    }
    if (global.json) {
        return printJson(Json{{"shareId", utf8(folder.shareId)},
                              {"owner", utf8(folder.owner)},
                              {"path", utf8(folder.path)},
                              {"left", !options.dryRun && !options.detach},
                              {"dryRun", options.dryRun}});
    }
    if (global.quiet && !options.dryRun) return;
    printLine(QStringLiteral("%1 %2 (%3 of %4)")
                  .arg(options.dryRun   ? QStringLiteral("would leave")
                       : options.detach ? QStringLiteral("leaving")
                                        : QStringLiteral("left"),
                       folder.path, folder.name, folder.owner));
}

}  // namespace

void addTeamReceiverCommands(const Commands& commands) {
    CLI::App* acceptCommand =
        commands.app.add_subcommand("accept", "Accept an invitation: the folder appears");
    auto accepted = std::make_shared<AcceptOptions>();
    acceptCommand->add_option("folder", accepted->folder, "Its name, share id or event")
        ->type_name("")
        ->required();
    acceptCommand->add_option("--name", accepted->name, "What it is to be called here")->type_name("NAME");
    runs(commands, acceptCommand, accepted, accept);

    CLI::App* denyCommand = commands.app.add_subcommand("deny", "Turn an invitation down");
    auto denied = std::make_shared<std::string>();
    denyCommand->add_option("folder", *denied, "Its name, share id or event")->type_name("")->required();
    runs(commands, denyCommand, denied, deny);

    CLI::App* leaveCommand =
        commands.app.add_subcommand("leave", "Give a received folder back: it disappears here");
    auto left = std::make_shared<LeaveOptions>();
    leaveCommand->add_option("folder", left->folder, "Its name, path, share id or event")
        ->type_name("")
        ->required();
    auto* detach = leaveCommand->add_flag("--detach", left->detach, "Don't wait for the end");
    leaveCommand->add_flag("--dry-run", left->dryRun, "Only tell what would be done")->excludes(detach);
    runs(commands, leaveCommand, left, leave);
}

}  // namespace torvi
