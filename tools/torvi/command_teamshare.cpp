#include <WebFileManShareAPI.h>

#include <QStringList>
#include <algorithm>
#include <memory>

#include "failure.h"
#include "jobid.h"
#include "jobs.h"
#include "output.h"
#include "remote.h"
#include "session.h"
#include "sharedfolders.h"
#include "signals.h"
#include "status.h"
#include "teamcommands.h"
#include "teamowner.h"
#include "teamrecords.h"

namespace torvi {
namespace {

struct ShareOptions {
    std::string path;
    std::vector<std::string> users;
    bool detach = false;
};

Failure sharingFailure(const QString& what, uint32_t dwStatus, uint32_t word, uint32_t status) {
    constexpr auto kRefused = static_cast<uint32_t>(-1);
    const bool tells = dwStatus == 0 && word == kRefused && status != 0;
    const Failure failure = callFailure(what, dwStatus, tells ? status : word);
    // The folder has been looked at before.
    if (failure.exit() == Exit::NotFound)
        return failure.withAdvice(QStringLiteral("is there such a user? `torvi users` lists them"));
    if (failure.exit() == Exit::Denied) {
        return failure.withAdvice(
            QStringLiteral("nobody can share a whole share or home, with oneself, or with somebody who takes "
                           "no invitations"));
    }
    return failure;
}

QString startSharing(const Session& session, const QString& what, const QString& path,
                     const QStringList& users) {
    std::vector<std::wstring> names;
    for (const QString& user : users) names.push_back(wide(user));
    std::vector<const wchar_t*> targets;
    for (const std::wstring& name : names) targets.push_back(name.c_str());
    wchar_t pid[260] = {};
    uint32_t word = 0;
    uint32_t status = 0;
    const uint32_t dwStatus =
        WebFileManShareTo(session.context(), session.server(), session.port(),
                          static_cast<uint32_t>(targets.size()), targets.data(), wide(path).c_str(),
                          static_cast<uint32_t>(std::size(pid)), nullptr, pid, &word, &status);
    if (dwStatus != 0 || word != 0) {
        if (interrupted()) throwCancelled(what);
        throw sharingFailure(what, dwStatus, word, status);
    }
    return QString::fromWCharArray(pid);
}

void requireShareable(const Session& session, const QString& what, const QString& path) {
    if (teamFolderOf(session.teams(), path) != nullptr) {
        throw Failure(
            Exit::Denied,
            QStringLiteral("%1: what was shared with you can be shared by its owner alone").arg(what));
    }
    if (!require(session, what, path).folder)
        throw Failure(Exit::Usage,
                      QStringLiteral("%1: it is a file, and only folders can be shared").arg(what));
}

bool hasAll(const Session& session, const QString& what, const QString& path, const QStringList& users) {
    for (const TeamRecord& folder : teamFolders(session, what, {kOwn, {}, path})) {
        if (folder.path != path) continue;
        return std::all_of(users.begin(), users.end(),
                           [&](const QString& user) { return folder.member(user) != nullptr; });
    }
    return false;
}

void share(const GlobalOptions& global, const ShareOptions& options) {
    const QString path = remotePath(QString::fromStdString(options.path));
    const QString what = QStringLiteral("team share %1").arg(path);
    QStringList users;
    for (const std::string& user : options.users) users << QString::fromStdString(user);
    users.removeDuplicates();
    QString pid;
    QString shareId;
    {
        const Session session(resolveConnection(global, Needs::Login));
        requireShareable(session, what, path);
        pid = startSharing(session, what, path, users);
        if (!options.detach) {
            waitForEnd(session, jobOf(global, what, QStringLiteral("sharing %1").arg(leafOf(path)), pid,
                                      [&] { return hasAll(session, what, path, users); }));
            if (const auto shared = sharedAt(session, what, path)) shareId = shared->shareId;
        }
    }
    if (global.json) {
        return printJson(Json{{"path", utf8(path)},
                              {"users", jsonTexts(users)},
                              {"shareId", shareId.isEmpty() ? Json(nullptr) : Json(utf8(shareId))},
                              {"pid", pidJson(pid)},
                              {"state", stateOf(options.detach, false)}});
    }
    if (options.detach) return printLine(QStringLiteral("sharing %1%2").arg(path, asJob(pid)));
    if (!global.quiet) {
        printLine(QStringLiteral("shared %1 with %2%3")
                      .arg(path, listText(users),
                           shareId.isEmpty() ? QString() : QStringLiteral(" (share id %1)").arg(shareId)));
    }
}

}  // namespace

void addTeamShareCommand(const Commands& commands) {
    CLI::App* command = commands.app.add_subcommand("share", "Share a folder with users: they are invited");
    auto options = std::make_shared<ShareOptions>();
    command->add_option("path", options->path, "The folder on the server")->type_name("")->required();
    command->add_option("users", options->users, "Whom to invite")->type_name("")->required();
    addDetach(command, options->detach);
    runs(commands, command, options, share);
}

}  // namespace torvi
