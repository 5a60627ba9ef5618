#pragma once

#include <QString>
#include <cstdint>
#include <optional>

#include "output.h"
#include "session.h"

namespace torvi {

/// One path on the server.
struct Entry {
    QString name;
    bool folder = false;
    int64_t size = 0;
    int64_t modified = 0;
    uint32_t access = 0;
    int32_t privilegeEx = -1;
    uint32_t nuboType = 0;
    QString shareId;
};

/// Which fields of a record the library fills.
enum FieldMask : uint32_t {
    kAccess = 0x01,
    kModified = 0x02,
    kIsFolder = 0x08,
    kSize = 0x10,
    kName = 0x20,
    kShare = 0x40,
    kPrivileges = 0x80,
};

enum TypeFilter : uint32_t { kFiles = 1, kFolders = 2 };

/// With a "/" in front and none behind.
QString remotePath(const QString& text);
/// What stands before the last "/", "/" at the top.
QString parentOf(const QString& path);
QString leafOf(const QString& path);
QString joined(const QString& folder, const QString& name);

Entry toEntry(const _WFM_PATH_INFORMATION& record);
/// Asks the server. Nothing if there is no such path; throws where the server doesn't tell.
std::optional<Entry> lookUp(const Session& session, const QString& path);
/// The same where the path must exist.
Entry require(const Session& session, const QString& what, const QString& path);

/// Throws if the server could not be told what the entry is.
void requireCheckable(const QString& what, const Entry& entry);

QString typeText(const Entry& entry);
QString accessText(const Entry& entry);
Json toJson(const Entry& entry, const QString& path);

}  // namespace torvi
