#pragma once

#include <QString>
#include <cstdint>
#include <optional>
#include <vector>

#include "output.h"
#include "session.h"

namespace torvi {

/// One change that the server recorded.
struct Change {
    int64_t number = 0;
    int32_t action = -1;
    int32_t isFolder = 0;
    QString path;
    QString oldPath;  ///< of what was renamed or moved
    QString device;
};

QString actionText(int32_t action);
QString kindText(int32_t isFolder);
Json toJson(const Change& change);

/// The server's numbered record of changes, below one folder or all of it.
class ChangeLog {
public:
    ChangeLog(const Session& session, const QString& folder) : m_session(session), m_folder(wide(folder)) {}

    /// -1 if the server knows none.
    int64_t newest() const;
    /// One request's worth of what comes after that number; `last` moves on. False once there is no more.
    bool next(int64_t& last, std::vector<Change>& changes) const;

private:
    const Session& m_session;
    std::wstring m_folder;
};

}  // namespace torvi
