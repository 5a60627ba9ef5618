#pragma once

#include <CLI/CLI.hpp>
#include <QString>
#include <QStringList>
#include <functional>
#include <string>

#include "jobs.h"
#include "options.h"
#include "session.h"
#include "teamrecords.h"

namespace torvi {

// What the commands that an owner gives have in common.

/// The one among the user's own folders. Throws if there is none, or more than one.
TeamRecord findOwn(const Session& session, const QString& what, const std::string& which);
/// Throws unless this user has the folder, or is invited.
void requireMember(const QString& what, const TeamRecord& folder, const QString& user);
/// What is to be waited for. Jobs of shares run on the session's own node.
JobWait jobOf(const GlobalOptions& global, const QString& what, const QString& label, const QString& pid,
              std::function<bool()> done);

/// What becomes of a command's work when it ends.
const char* stateOf(bool detach, bool dryRun);
/// Users in a row, or "nobody".
QString listText(const QStringList& names);

/// The argument that names the folder.
void addFolder(CLI::App* command, std::string& folder);
/// --detach.
CLI::Option* addDetach(CLI::App* command, bool& detach);
/// --detach, and --dry-run in its place.
template <typename Options>
void addEnds(CLI::App* command, Options& options) {
    auto* detach = addDetach(command, options.detach);
    command->add_flag("--dry-run", options.dryRun, "Only tell what would be done")->excludes(detach);
}

}  // namespace torvi
