#include <WebFileManShareAPI.h>

#include <QStringList>
#include <algorithm>
#include <memory>

#include "failure.h"
#include "jobs.h"
#include "output.h"
#include "people.h"
#include "remote.h"
#include "session.h"
#include "sharedfolders.h"
#include "signals.h"
#include "status.h"
#include "teamactions.h"
#include "teamcommands.h"
#include "teamrecords.h"

namespace torvi {
namespace {

struct ShareOptions {
    std::string path;
    std::vector<std::string> users;
    bool detach = false;
};

struct MembersOptions {
    std::string folder;
    std::string directory;
    std::string filter;
    bool candidates = false;
    bool all = false;
    bool refresh = false;
};

struct SetMemberOptions {
    std::string folder;
    std::vector<std::string> changes;
    bool detach = false;
    bool dryRun = false;
};

struct KickOptions {
    std::string folder;
    std::string user;
    bool detach = false;
    bool dryRun = false;
};

struct UnshareOptions {
    std::string folder;
    bool detach = false;
    bool dryRun = false;
};

/// What becomes of a command's work when it ends.
const char* stateOf(bool detach, bool dryRun) {
    return dryRun ? "planned" : detach ? "started" : "done";
}

Json pidJson(const QString& pid) {
    return pid.isEmpty() ? Json(nullptr) : Json(utf8(pid));
}

/// " as job 4711", where there is one to name.
QString asJob(const QString& pid) {
    return pid.isEmpty() ? QString() : QStringLiteral(" as job %1").arg(pid);
}

QStringList memberNames(const TeamRecord& folder) {
    QStringList names;
    for (const TeamMember& member : folder.members) names << member.name;
    return names;
}

QString listText(const QStringList& names) {
    return names.isEmpty() ? QStringLiteral("nobody") : names.join(QStringLiteral(", "));
}

/// Jobs of shares run on the session's own node.
JobWait jobOf(const GlobalOptions& global, const QString& what, const QString& label, const QString& pid,
              std::function<bool()> done) {
    return {what, label, pid, {}, global.quiet, std::move(done)};
}

TeamRecord findOwn(const Session& session, const QString& what, const std::string& which) {
    return findTeamFolder(session, what, kOwn, QString::fromStdString(which));
}

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

/// The server's own users come first.
std::vector<std::optional<Domain>> placesOf(const Session& session, const QString& what,
                                            const std::string& directory) {
    if (!directory.empty()) return {findDomain(session, what, QString::fromStdString(directory))};
    std::vector<std::optional<Domain>> places = {std::nullopt};
    for (const Domain& domain : directoryDomains(session, what)) places.emplace_back(domain);
    return places;
}

std::vector<SharePerson> askMembers(const Session& session, const QString& what, const TeamRecord& folder,
                                    const MembersOptions& options) {
    PeopleQuery query;
    query.filter = QString::fromStdString(options.filter);
    // A member stays one who may not sync any more.
    query.all = options.all || !options.candidates;
    query.refresh = options.refresh;
    std::vector<SharePerson> people;
    for (const auto& place : placesOf(session, what, options.directory)) {
        query.domain = place;
        const auto some =
            sharePeople(session, what, folder.nasId, folder.shareId, query, !options.candidates);
        people.insert(people.end(), some.begin(), some.end());
    }
    return people;
}

Json memberJson(const SharePerson& one, int32_t permission) {
    Json json = {{"name", utf8(one.person.name)}, {"member", one.member}};
    json["state"] = one.member ? Json(one.state) : Json(nullptr);
    json["stateName"] = one.member ? Json(utf8(memberStateText(one.state))) : Json(nullptr);
    json["permission"] = permission == 0 ? Json(nullptr) : Json(permission);
    json["sync"] = one.person.sync;
    json["description"] =
        one.person.description.isEmpty() ? Json(nullptr) : Json(utf8(one.person.description));
    json["event"] = one.event == 0 ? Json(nullptr) : Json(one.event);
    return json;
}

void members(const GlobalOptions& global, const MembersOptions& options) {
    const QString what = QStringLiteral("team members %1").arg(QString::fromStdString(options.folder));
    const Session session(resolveConnection(global, Needs::Login));
    const TeamRecord folder = findOwn(session, what, options.folder);
    const std::vector<SharePerson> people = askMembers(session, what, folder, options);
    const auto permissionOf = [&](const SharePerson& one) {
        const TeamMember* member = folder.member(one.person.name);
        return member != nullptr ? member->permission : 0;
    };
    if (global.json) {
        Json all = Json::array();
        for (const SharePerson& one : people) all.push_back(memberJson(one, permissionOf(one)));
        return printJson(Json{{"shareId", utf8(folder.shareId)},
                              {"path", utf8(folder.path)},
                              {"count", people.size()},
                              {"members", all}});
    }
    if (people.empty()) {
        if (!global.quiet) printLine(QStringLiteral("There are none"));
        return;
    }
    Table table;
    for (const char* title : {"USER", "STATE", "ACCESS", "SYNC", "DESCRIPTION"})
        table.addColumn(QLatin1String(title));
    for (const SharePerson& one : people) {
        table.addRow({one.person.name, one.member ? memberStateText(one.state) : QStringLiteral("-"),
                      permissionText(permissionOf(one)), syncText(one.person.sync), one.person.description});
    }
    table.print(stdout);
}

/// USER=none|read|write.
MemberChange parseChange(const QString& what, const std::string& given) {
    const QString text = QString::fromStdString(given);
    const int equals = text.lastIndexOf(QLatin1Char('='));
    const QString access = text.mid(equals + 1);
    for (const auto& [word, meaning] :
         {std::pair{"none", MemberAccess::None}, std::pair{"read", MemberAccess::Read},
          std::pair{"write", MemberAccess::Write}}) {
        if (equals > 0 && access == QLatin1String(word)) return {text.left(equals), meaning};
    }
    throw Failure(Exit::Usage,
                  QStringLiteral("%1: %2 is not USER=none, USER=read or USER=write").arg(what, text));
}

QString changeText(const TeamRecord& folder, const MemberChange& change) {
    const bool member = folder.member(change.name) != nullptr;
    switch (change.access) {
        case MemberAccess::None:
            return QStringLiteral("take it from %1").arg(change.name);
        case MemberAccess::Read:
            return (member ? QStringLiteral("let %1 read only") : QStringLiteral("invite %1 to read"))
                .arg(change.name);
        case MemberAccess::Write:
            break;
    }
    return (member ? QStringLiteral("let %1 read and write") : QStringLiteral("invite %1 to read and write"))
        .arg(change.name);
}

const char* accessName(MemberAccess access) {
    return access == MemberAccess::None ? "none" : access == MemberAccess::Read ? "read" : "write";
}

bool isAsWanted(const TeamRecord& folder, const MemberChange& change) {
    const TeamMember* member = folder.member(change.name);
    if (change.access == MemberAccess::None || member == nullptr)
        return (change.access == MemberAccess::None) == (member == nullptr);
    // The older service tells no permission.
    return member->permission == 0 || member->permission == static_cast<int32_t>(change.access);
}

bool areAsWanted(const Session& session, const QString& what, const TeamRecord& folder,
                 const std::vector<MemberChange>& changes) {
    for (const TeamRecord& now : sameTeamFolder(session, what, kOwn, folder.shareId)) {
        return std::all_of(changes.begin(), changes.end(),
                           [&](const MemberChange& change) { return isAsWanted(now, change); });
    }
    return false;
}

std::vector<MemberChange> parseChanges(const QString& what, const std::vector<std::string>& given) {
    std::vector<MemberChange> changes;
    for (const std::string& text : given) {
        const MemberChange change = parseChange(what, text);
        for (const MemberChange& other : changes) {
            if (other.name == change.name)
                throw Failure(Exit::Usage, QStringLiteral("%1: %2 is there twice").arg(what, change.name));
        }
        changes.push_back(change);
    }
    return changes;
}

void requireMember(const QString& what, const TeamRecord& folder, const QString& user) {
    if (folder.member(user) != nullptr) return;
    throw Failure(Exit::NotFound, QStringLiteral("%1: %2 neither has it nor is invited").arg(what, user));
}

void printChanges(const GlobalOptions& global, const SetMemberOptions& options, const TeamRecord& folder,
                  const std::vector<MemberChange>& changes, const QString& pid) {
    if (global.json) {
        Json all = Json::array();
        for (const MemberChange& change : changes)
            all.push_back(Json{{"name", utf8(change.name)}, {"access", accessName(change.access)}});
        return printJson(Json{{"shareId", utf8(folder.shareId)},
                              {"path", utf8(folder.path)},
                              {"members", all},
                              {"pid", pidJson(pid)},
                              {"state", stateOf(options.detach, options.dryRun)}});
    }
    if (options.dryRun) {
        for (const MemberChange& change : changes)
            printLine(QStringLiteral("%1: would %2").arg(folder.path, changeText(folder, change)));
        return;
    }
    if (options.detach) return printLine(QStringLiteral("changing %1%2").arg(folder.path, asJob(pid)));
    if (global.quiet) return;
    for (const MemberChange& change : changes)
        printLine(QStringLiteral("%1: %2: %3")
                      .arg(folder.path, change.name, QLatin1String(accessName(change.access))));
}

void setMember(const GlobalOptions& global, const SetMemberOptions& options) {
    const QString what = QStringLiteral("team set-member %1").arg(QString::fromStdString(options.folder));
    const std::vector<MemberChange> changes = parseChanges(what, options.changes);
    TeamRecord folder;
    QString pid;
    {
        const Session session(resolveConnection(global, Needs::Login));
        folder = findOwn(session, what, options.folder);
        for (const MemberChange& change : changes) {
            if (change.access == MemberAccess::None) requireMember(what, folder, change.name);
        }
        if (!options.dryRun) pid = startMemberChanges(session, what, folder, changes);
        if (!options.dryRun && !options.detach) {
            waitForEnd(session, jobOf(global, what, QStringLiteral("members of %1").arg(folder.name), pid,
                                      [&] { return areAsWanted(session, what, folder, changes); }));
        }
    }
    printChanges(global, options, folder, changes, pid);
}

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

void addFolder(CLI::App* command, std::string& folder) {
    command->add_option("folder", folder, "Its path, name or share id")->type_name("")->required();
}

template <typename Options>
CLI::Option* addDetach(CLI::App* command, Options& options) {
    return command->add_flag("--detach", options.detach, "Don't wait for the end; tell the job instead");
}

template <typename Options>
void addEnds(CLI::App* command, Options& options) {
    auto* detach = addDetach(command, options);
    command->add_flag("--dry-run", options.dryRun, "Only tell what would be done")->excludes(detach);
}

void addMembers(const Commands& commands) {
    CLI::App* command = commands.app.add_subcommand("members", "List who has a folder, or is invited to it");
    auto options = std::make_shared<MembersOptions>();
    addFolder(command, options->folder);
    auto* candidates =
        command->add_flag("--candidates", options->candidates, "Those, too, whom it could be shared with");
    command->add_flag("--all", options->all, "And of them those, too, who may not sync")->needs(candidates);
    command->add_option("--filter", options->filter, "Only those in whose name this is, in any case")
        ->type_name("TEXT");
    command
        ->add_option("--directory", options->directory,
                     "Only those of this directory domain, by either of its names")
        ->type_name("NAME");
    command->add_flag("--refresh", options->refresh, "Have the server look anew");
    runs(commands, command, options, members);
}

}  // namespace

void addTeamOwnerCommands(const Commands& commands) {
    CLI::App* shareCommand =
        commands.app.add_subcommand("share", "Share a folder with users: they are invited");
    auto shared = std::make_shared<ShareOptions>();
    shareCommand->add_option("path", shared->path, "The folder on the server")->type_name("")->required();
    shareCommand->add_option("users", shared->users, "Whom to invite")->type_name("")->required();
    addDetach(shareCommand, *shared);
    runs(commands, shareCommand, shared, share);

    addMembers(commands);

    CLI::App* setCommand = commands.app.add_subcommand(
        "set-member", "Say what members may do with a folder, or take it from them");
    auto set = std::make_shared<SetMemberOptions>();
    addFolder(setCommand, set->folder);
    setCommand
        ->add_option("changes", set->changes,
                     "USER=read, USER=write or USER=none; who is no member yet is invited")
        ->type_name("")
        ->required();
    addEnds(setCommand, *set);
    runs(commands, setCommand, set, setMember);

    CLI::App* kickCommand = commands.app.add_subcommand("kick", "Take a folder back from one user");
    auto kicked = std::make_shared<KickOptions>();
    addFolder(kickCommand, kicked->folder);
    kickCommand->add_option("user", kicked->user, "From whom")->type_name("")->required();
    addEnds(kickCommand, *kicked);
    runs(commands, kickCommand, kicked, kick);

    CLI::App* unshareCommand =
        commands.app.add_subcommand("unshare", "Take a folder back from everybody; its content stays");
    auto unshared = std::make_shared<UnshareOptions>();
    addFolder(unshareCommand, unshared->folder);
    addEnds(unshareCommand, *unshared);
    runs(commands, unshareCommand, unshared, unshare);
}

}  // namespace torvi
