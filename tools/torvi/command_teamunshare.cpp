#include <QStringList>
#include <memory>

#include "jobid.h"
#include "jobs.h"
#include "output.h"
#include "session.h"
#include "teamactions.h"
#include "teamcommands.h"
#include "teamowner.h"
#include "teamrecords.h"

namespace torvi {
namespace {

struct UnshareOptions {
    std::string folder;
    bool detach = false;
    bool dryRun = false;
};

QStringList memberNames(const TeamRecord& folder) {
    QStringList names;
    for (const TeamMember& member : folder.members) names << member.name;
    return names;
}

void unshare(const GlobalOptions& global, const UnshareOptions& options) {
    const QString what = QStringLiteral("team unshare %1").arg(QString::fromStdString(options.folder));
    TeamRecord folder;
    QString pid;
    {
        const Session session(resolveConnection(global, Needs::Login));
        folder = findOwn(session, what, options.folder);
        if (!options.dryRun) pid = startUnshare(session, what, folder);
        if (!options.dryRun && !options.detach) {
            waitForEnd(session,
                       jobOf(global, what, QStringLiteral("unsharing %1").arg(folder.name), pid,
                             [&] { return sameTeamFolder(session, what, kOwn, folder.shareId).empty(); }));
        }
    }
    const QStringList names = memberNames(folder);
    if (global.json) {
        return printJson(Json{{"shareId", utf8(folder.shareId)},
                              {"path", utf8(folder.path)},
                              {"users", jsonTexts(names)},
                              {"pid", pidJson(pid)},
                              {"state", stateOf(options.detach, options.dryRun)}});
    }
    if (global.quiet && !options.dryRun && !options.detach) return;
    printLine(QStringLiteral("%1 %2 (%3)%4")
                  .arg(options.dryRun   ? QStringLiteral("would unshare")
                       : options.detach ? QStringLiteral("unsharing")
                                        : QStringLiteral("unshared"),
                       folder.path, listText(names), options.detach ? asJob(pid) : QString()));
}

}  // namespace

void addTeamUnshareCommand(const Commands& commands) {
    CLI::App* command =
        commands.app.add_subcommand("unshare", "Take a folder back from everybody; its content stays");
    auto options = std::make_shared<UnshareOptions>();
    addFolder(command, options->folder);
    addEnds(command, *options);
    runs(commands, command, options, unshare);
}

}  // namespace torvi
