#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>
#include <vector>

#include "output.h"
#include "session.h"
#include "teams.h"

namespace torvi {

/// What a team folder is to the user who asks; several are their sum.
enum TeamRole : uint32_t { kInvited = 1, kOver = 2, kOwn = 4, kReceived = 8 };

/// One who has the folder, or is invited.
struct TeamMember {
    QString name;
    QString displayName;     ///< what the folder is called there, if the server tells
    int32_t permission = 0;  ///< 0 where the server doesn't tell
    int32_t state = 0;
    uint32_t event = 0;  ///< of the older service
};

/// One team folder, from whichever service.
struct TeamRecord {
    int32_t role = 0;
    QString shareId;
    QString nasId;
    QString parentId;
    QString owner;
    QString name;
    QString path;        ///< where this user finds it; empty for an invitation
    QString serverPath;  ///< where the server has a received one, "vtf://anna-Plans/"; the sync service alone
                         ///< tells
    bool there = true;
    uint32_t event = 0;  ///< of the older service, for what this user was invited to
    std::vector<TeamMember> members;

    bool is(TeamRole asked) const { return role == static_cast<int32_t>(asked); }
    const TeamMember* member(const QString& user) const;
    /// How the library is told where a received one lies.
    TeamFolder place() const { return {path + QLatin1Char('/'), serverPath, nasId}; }
};

struct TeamQuery {
    uint32_t roles = kInvited | kOwn | kReceived;
    QString user;  ///< only what this one shares or has, too
    QString path;  ///< only what is there, or below
};

std::vector<TeamRecord> teamFolders(const Session& session, const QString& what, const TeamQuery& query);
/// The one that the user means, by its share id, its path, its name, or the number of its event. Throws if
/// there is none, or more than one.
TeamRecord findTeamFolder(const Session& session, const QString& what, uint32_t roles, const QString& which);
/// The same one as it is now; nothing if it is none any more.
std::vector<TeamRecord> sameTeamFolder(const Session& session, const QString& what, uint32_t roles,
                                       const QString& shareId);

/// One event of the older service.
struct TeamEvent {
    uint32_t number = 0;
    int32_t role = 0;
    int32_t state = 0;
    QString with;
    QString file;
    QString shareId;
    QString date;
    QString time;
};
std::vector<TeamEvent> teamEvents(const Session& session, const QString& what, uint32_t roles);

// The server's numbers in words; a number without one stands as it is.
QString roleText(int32_t role);
QString memberStateText(int32_t state);
QString permissionText(int32_t permission);

Json toJson(const TeamRecord& record);
Json toJson(const TeamEvent& event);

}  // namespace torvi
