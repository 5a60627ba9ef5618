#pragma once

#include <QString>
#include <string>
#include <vector>

namespace torvi {

/// A folder that another user shares: where this user sees it, where the server keeps it, and on which node.
struct TeamFolder {
    QString client;  ///< "/home/.Torvi/Plans/"
    QString server;  ///< "vtf://anna-Plans/"
    QString node;

    /// As the option takes it.
    QString text() const;
};

/// CLIENTPATH=SERVERPATH[@NODE].
TeamFolder parseTeamFolder(const QString& text);
/// All values of the option; "none" alone is none.
std::vector<TeamFolder> parseTeamFolders(const std::vector<std::string>& texts);

/// The folder that the path is in, or is; null if it is none's.
const TeamFolder* teamFolderOf(const std::vector<TeamFolder>& teams, const QString& path);

}  // namespace torvi
