#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "session.h"

namespace torvi {

/// A folder that this user shares with others.
struct SharedFolder {
    QString path;
    QString shareId;
    bool exists = true;
};

/// What this user shares at this very path; nothing if it isn't shared, or by another.
std::optional<SharedFolder> sharedAt(const Session& session, const QString& what, const QString& path);
/// What is shared below it. That one is gone isn't told here.
std::vector<SharedFolder> sharedBelow(const Session& session, const QString& what, const QString& folder);

}  // namespace torvi
