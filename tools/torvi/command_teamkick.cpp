#include <WebFileManShareAPI.h>

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

struct KickOptions {
    std::string folder;
    std::string user;
    bool detach = false;
    bool dryRun = false;
};

/// Gives the job's process id, empty if the server names none.
QString startKick(const Session& session, const QString& what, const TeamRecord& folder,
                  const QString& user) {
    // A share id alone doesn't tell which of several members is meant.
    if (session.service() == Service::Sync && folder.members.size() > 1)
        return startMemberChanges(session, what, folder, {{user, MemberAccess::None}});
    runShareAction(session, what, WebFileManKickOutShareMember, folder, folder.member(user)->event);
    return {};
}

void kick(const GlobalOptions& global, const KickOptions& options) {
    const QString user = QString::fromStdString(options.user);
    const QString what =
        QStringLiteral("team kick %1 out of %2").arg(user, QString::fromStdString(options.folder));
    TeamRecord folder;
    QString pid;
    {
        const Session session(resolveConnection(global, Needs::Login));
        folder = findOwn(session, what, options.folder);
        requireMember(what, folder, user);
        if (!options.dryRun) pid = startKick(session, what, folder, user);
        if (!options.dryRun && !options.detach) {
            waitForEnd(session, jobOf(global, what, QStringLiteral("kicking out %1").arg(user), pid, [&] {
                           return areAsWanted(session, what, folder, {{user, MemberAccess::None}});
                       }));
        }
    }
    if (global.json) {
        return printJson(Json{{"shareId", utf8(folder.shareId)},
                              {"path", utf8(folder.path)},
                              {"user", utf8(user)},
                              {"pid", pidJson(pid)},
                              {"state", stateOf(options.detach, options.dryRun)}});
    }
    if (global.quiet && !options.dryRun) return;
    printLine(QStringLiteral("%1 %2 out of %3%4")
                  .arg(options.dryRun   ? QStringLiteral("would kick")
                       : options.detach ? QStringLiteral("kicking")
                                        : QStringLiteral("kicked"),
                       user, folder.path, options.detach ? asJob(pid) : QString()));
}

}  // namespace

void addTeamKickCommand(const Commands& commands) {
    CLI::App* command = commands.app.add_subcommand("kick", "Take a folder back from one user");
    auto options = std::make_shared<KickOptions>();
    addFolder(command, options->folder);
    command->add_option("user", options->user, "From whom")->type_name("")->required();
    addEnds(command, *options);
    runs(commands, command, options, kick);
}

}  // namespace torvi
