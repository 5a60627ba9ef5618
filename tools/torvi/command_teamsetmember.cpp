#include <memory>

#include "failure.h"
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

struct SetMemberOptions {
    std::string folder;
    std::vector<std::string> changes;
    bool detach = false;
    bool dryRun = false;
};

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

}  // namespace

void addTeamSetMemberCommand(const Commands& commands) {
    CLI::App* command = commands.app.add_subcommand(
        "set-member", "Say what members may do with a folder, or take it from them");
    auto options = std::make_shared<SetMemberOptions>();
    addFolder(command, options->folder);
    command
        ->add_option("changes", options->changes,
                     "USER=read, USER=write or USER=none; who is no member yet is invited")
        ->type_name("")
        ->required();
    addEnds(command, *options);
    runs(commands, command, options, setMember);
}

}  // namespace torvi
