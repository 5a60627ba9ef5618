#include "teamowner.h"

#include "failure.h"

namespace torvi {

TeamRecord findOwn(const Session& session, const QString& what, const std::string& which) {
    return findTeamFolder(session, what, kOwn, QString::fromStdString(which));
}

void requireMember(const QString& what, const TeamRecord& folder, const QString& user) {
    if (folder.member(user) != nullptr) return;
    throw Failure(Exit::NotFound, QStringLiteral("%1: %2 neither has it nor is invited").arg(what, user));
}

JobWait jobOf(const GlobalOptions& global, const QString& what, const QString& label, const QString& pid,
              std::function<bool()> done) {
    return {what, label, pid, {}, global.quiet, std::move(done)};
}

const char* stateOf(bool detach, bool dryRun) {
    return dryRun ? "planned" : detach ? "started" : "done";
}

QString listText(const QStringList& names) {
    return names.isEmpty() ? QStringLiteral("nobody") : names.join(QStringLiteral(", "));
}

void addFolder(CLI::App* command, std::string& folder) {
    command->add_option("folder", folder, "Its path, name or share id")->type_name("")->required();
}

CLI::Option* addDetach(CLI::App* command, bool& detach) {
    return command->add_flag("--detach", detach, "Don't wait for the end; tell the job instead");
}

}  // namespace torvi
