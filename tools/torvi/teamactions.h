#pragma once

#include <WebFileManShareAPI.h>

#include <QString>
#include <cstdint>
#include <vector>

#include "session.h"
#include "teamrecords.h"

namespace torvi {

/// Denying, leaving or kicking out: calls that the server answers by yes or no alone.
using ShareAction = decltype(&WebFileManDenyShare);
void runShareAction(const Session& session, const QString& what, ShareAction action, const TeamRecord& folder,
                    uint32_t event);

/// What a member is to have of a folder from now on, by the server's numbers.
enum class MemberAccess : uint32_t { None = 0, Read = 1, Write = 2 };

struct MemberChange {
    QString name;
    MemberAccess access;
};

/// Starts the job and gives its process id, empty if the server names none.
QString startMemberChanges(const Session& session, const QString& what, const TeamRecord& folder,
                           const std::vector<MemberChange>& changes);
/// Whether the server has done all of them.
bool areAsWanted(const Session& session, const QString& what, const TeamRecord& folder,
                 const std::vector<MemberChange>& changes);
QString startUnshare(const Session& session, const QString& what, const TeamRecord& folder);

}  // namespace torvi
