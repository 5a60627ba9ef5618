#include <WebFileManShareAPI.h>

#include <QStringList>
#include <memory>

#include "failure.h"
#include "output.h"
#include "profile.h"
#include "remote.h"
#include "session.h"
#include "signals.h"
#include "status.h"
#include "teamcommands.h"
#include "teamrecords.h"

namespace torvi {
namespace {

struct ListOptions {
    bool invited = false;
    bool own = false;
    bool received = false;
    std::string user;
    std::string path;
    bool remember = false;
};

struct EventOptions {
    std::vector<uint32_t> remove;
};

uint32_t rolesOf(const ListOptions& options) {
    const uint32_t roles =
        (options.invited ? kInvited : 0u) | (options.own ? kOwn : 0u) | (options.received ? kReceived : 0u);
    return roles != 0 ? roles : kInvited | kOwn | kReceived;
}

QString membersText(const TeamRecord& record) {
    QStringList members;
    for (const TeamMember& member : record.members) {
        const bool has = memberStateText(member.state) == QLatin1String("accepted");
        members << (has ? member.name
                        : QStringLiteral("%1 (%2)").arg(member.name, memberStateText(member.state)));
    }
    return members.isEmpty() ? QStringLiteral("-") : members.join(QStringLiteral(", "));
}

void printFolders(const std::vector<TeamRecord>& folders) {
    Table table;
    for (const char* title : {"NAME", "ROLE", "OWNER", "PATH", "MEMBERS", "ID"})
        table.addColumn(QLatin1String(title));
    for (const TeamRecord& folder : folders) {
        const QString role = roleText(folder.role);
        table.addRow({folder.name, folder.there ? role : QStringLiteral("%1, gone").arg(role), folder.owner,
                      folder.path.isEmpty() ? QStringLiteral("-") : folder.path, membersText(folder),
                      folder.shareId});
    }
    table.print(stdout);
}

/// The folders that the user has received go into the profile, where later commands find them.
size_t remember(const Session& session, const QString& what) {
    const Connection& connection = session.connection();
    std::optional<Profile> profile = loadProfile();
    if (!profile || profile->server != connection.server || profile->port != connection.port ||
        profile->user != connection.user) {
        throw Failure(Exit::Usage, QStringLiteral("%1: there is no profile of %2; `torvi login` stores one")
                                       .arg(what, connection.identity()));
    }
    if (session.service() != Service::Sync)
        throw Failure(Exit::Usage, QStringLiteral("%1: received folders of the older service are where they "
                                                  "are seen, and needn't be remembered")
                                       .arg(what));
    profile->teams.clear();
    for (const TeamRecord& folder : teamFolders(session, what, {kReceived, {}, {}}))
        profile->teams.push_back(folder.place());
    saveProfile(*profile);
    return profile->teams.size();
}

void list(const GlobalOptions& global, const ListOptions& options) {
    const QString what = QStringLiteral("team list");
    const QString path = QString::fromStdString(options.path);
    const Session session(resolveConnection(global, Needs::Login));
    const std::vector<TeamRecord> folders = teamFolders(
        session, what,
        {rolesOf(options), QString::fromStdString(options.user), path.isEmpty() ? path : remotePath(path)});
    const size_t remembered = options.remember ? remember(session, what) : 0;
    if (global.json) {
        Json all = Json::array();
        for (const TeamRecord& folder : folders) all.push_back(toJson(folder));
        Json json = {{"count", folders.size()}, {"folders", all}};
        if (options.remember) json["remembered"] = remembered;
        return printJson(json);
    }
    if (!folders.empty()) printFolders(folders);
    if (global.quiet) return;
    if (folders.empty()) printLine(QStringLiteral("There are none"));
    if (options.remember) printLine(QStringLiteral("The profile has %1 of them").arg(remembered));
}

void removeEvent(const Session& session, uint32_t number) {
    const QString what = QStringLiteral("team events: event %1").arg(number);
    uint32_t word = 0;
    const uint32_t dwStatus =
        WebFileManRemoveEvent(session.context(), session.server(), session.port(), number, nullptr, &word);
    if (dwStatus == 0 && word == 0) return;
    if (interrupted()) throwCancelled(what);
    throw callFailure(what, dwStatus, word).withAdvice(QStringLiteral("only what is over can be removed"));
}

void printEvents(const std::vector<TeamEvent>& events) {
    Table table;
    table.addColumn(QStringLiteral("EVENT"), Table::Align::Right);
    for (const char* title : {"ROLE", "STATE", "WITH", "PATH", "WHEN"}) table.addColumn(QLatin1String(title));
    for (const TeamEvent& event : events) {
        table.addRow({QString::number(event.number), roleText(event.role), memberStateText(event.state),
                      event.with, event.file, QStringLiteral("%1 %2").arg(event.date, event.time)});
    }
    table.print(stdout);
}

void events(const GlobalOptions& global, const EventOptions& options) {
    const QString what = QStringLiteral("team events");
    const Session session(resolveConnection(global, Needs::Login));
    if (session.service() == Service::Sync) {
        throw Failure(
            Exit::Usage,
            QStringLiteral("%1: the sync service keeps none; `torvi team list` tells what it has").arg(what));
    }
    for (const uint32_t number : options.remove) removeEvent(session, number);
    const std::vector<TeamEvent> events = teamEvents(session, what, kInvited | kOver | kOwn | kReceived);
    if (global.json) {
        Json all = Json::array();
        for (const TeamEvent& event : events) all.push_back(toJson(event));
        return printJson(Json{{"removed", options.remove.size()}, {"count", events.size()}, {"events", all}});
    }
    if (!events.empty()) return printEvents(events);
    if (!global.quiet) printLine(QStringLiteral("There are none"));
}

void addListCommand(const Commands& commands) {
    CLI::App* command = commands.app.add_subcommand(
        "list", "List the folders that one shares, has received or is invited to");
    auto options = std::make_shared<ListOptions>();
    command->add_flag("--own", options->own, "Those that one shares");
    command->add_flag("--received", options->received, "Those that one has received");
    command->add_flag("--invited", options->invited, "Those that wait for an answer");
    command->add_option("--with", options->user, "Only what this user shares or has, too")->type_name("NAME");
    command->add_option("--path", options->path, "Only what is there, or below")->type_name("PATH");
    command->add_flag("--remember", options->remember,
                      "Keep in the profile where the received ones lie, so that later commands find them");
    runs(commands, command, options, list);
}

void addEventsCommand(const Commands& commands) {
    CLI::App* command = commands.app.add_subcommand(
        "events", "List what was shared and what came of it; the older service's");
    auto options = std::make_shared<EventOptions>();
    command->add_option("--remove", options->remove, "First take this one, which is over, out; repeatable")
        ->allow_extra_args(false)
        ->type_name("EVENT");
    runs(commands, command, options, events);
}

}  // namespace

void addTeamCommands(const Commands& commands) {
    CLI::App* team =
        commands.app.add_subcommand("team", "Share folders with other users, and answer their invitations");
    team->require_subcommand(1);
    const Commands below{*team, commands.global, commands.action};
    addListCommand(below);
    addEventsCommand(below);
    addTeamReceiverCommands(below);
    addTeamShareCommand(below);
    addTeamMembersCommand(below);
    addTeamSetMemberCommand(below);
    addTeamKickCommand(below);
    addTeamUnshareCommand(below);
}

}  // namespace torvi
