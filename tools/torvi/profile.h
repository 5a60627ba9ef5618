#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "teams.h"

namespace torvi {

/// What `torvi login` remembers. The passwords are there only when the user asked for it.
struct Profile {
    QString server;
    int port = 0;
    bool tls = false;
    QString user;
    std::optional<QString> password;
    QString proxy;
    QString proxyUser;
    std::optional<QString> proxyPassword;
    QString node;
    bool fcgi = false;
    bool olderService = false;  ///< the server had no sync service when it was asked
    QString uid;                ///< what the server calls itself, empty if it didn't tell
    std::vector<TeamFolder> teams;
};

/// $XDG_STATE_HOME/torvi/profile.json, or the same below ~/.local/state.
QString profilePath();
std::optional<Profile> loadProfile();
/// Replaces the file as a whole; it is readable by its owner alone.
void saveProfile(const Profile& profile);
/// False if there was none.
bool removeProfile();

}  // namespace torvi
