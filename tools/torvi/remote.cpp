#include "remote.h"

#include <memory>

#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

constexpr uint32_t kAllFields = kAccess | kModified | kIsFolder | kSize | kName | kShare | kPrivileges;

}  // namespace

QString remotePath(const QString& text) {
    QString path = text.startsWith(QLatin1Char('/')) ? text : QLatin1Char('/') + text;
    while (path.size() > 1 && path.endsWith(QLatin1Char('/'))) path.chop(1);
    return path;
}

QString parentOf(const QString& path) {
    const int slash = path.lastIndexOf(QLatin1Char('/'));
    return slash <= 0 ? QStringLiteral("/") : path.left(slash);
}

QString leafOf(const QString& path) {
    return path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
}

QString joined(const QString& folder, const QString& name) {
    return folder.endsWith(QLatin1Char('/')) ? folder + name : folder + QLatin1Char('/') + name;
}

Entry toEntry(const _WFM_PATH_INFORMATION& record) {
    Entry entry;
    entry.name = QString::fromWCharArray(record.szPathName);
    entry.folder = record.bIsFolder;
    entry.size = record.llSize;
    entry.modified = record.llModifiedTime;
    entry.access = record.dwAccess;
    entry.privilegeEx = record.nPrivilegeEx;
    entry.nuboType = record.dwNuboType;
    entry.shareId = QString::fromWCharArray(record.szShareID);
    return entry;
}

std::optional<Entry> lookUp(const Session& session, const QString& path) {
    const QString what = QStringLiteral("stat %1").arg(path);
    if (path == QLatin1String("/")) {
        // The root of all shares has no record of its own.
        Entry root;
        root.name = path;
        root.folder = true;
        return root;
    }
    const std::wstring parent = wide(parentOf(path));
    const std::wstring name = wide(leafOf(path));
    const auto record = std::make_unique<_WFM_PATH_INFORMATION>();
    uint32_t word = 0;
    uint32_t dwStatus = WFMGetPathInformation(session.context(), session.server(), session.port(),
                                              session.node(), name.c_str(), parent.c_str(), kAllFields, 0,
                                              false, cancelFlag(), &word, record.get());
    if (dwStatus == 0 && word == 0) return toEntry(*record);
    if (interrupted()) throwCancelled(what);

    if (parent == L"/" && dwStatus != 2) {
        // A share at the top is in the tree of folders, even where it can't be asked by name.
        dwStatus =
            WFMGetFolderInformation(session.context(), session.server(), session.port(), session.node(), L"/",
                                    name.c_str(), kAllFields, false, cancelFlag(), &word, record.get());
        if (dwStatus == 0 && word == 0) return toEntry(*record);
        if (interrupted()) throwCancelled(what);
    }
    const bool absent = dwStatus == 0 && (word == 2 || word == 3);
    if (absent) return std::nullopt;
    throw callFailure(what, dwStatus, word);
}

Entry require(const Session& session, const QString& what, const QString& path) {
    if (auto entry = lookUp(session, path)) return *entry;
    throw callFailure(what, 0, 3);
}

void requireCheckable(const QString& what, const Entry& entry) {
    if (entry.modified != 0) return;
    throw Failure(Exit::Usage, QStringLiteral("%1: it has no time on the server, and --check needs one; "
                                              "`torvi touch --time now` gives it one")
                                   .arg(what));
}

QString typeText(const Entry& entry) {
    return entry.folder ? QStringLiteral("folder") : QStringLiteral("file");
}

QString accessText(const Entry& entry) {
    switch (entry.access) {
        case 1:
            return QStringLiteral("read");
        case 2:
            return QStringLiteral("write");
        default:
            return QStringLiteral("-");
    }
}

Json toJson(const Entry& entry, const QString& path) {
    Json json;
    json["name"] = utf8(entry.name);
    json["path"] = utf8(path);
    json["type"] = utf8(typeText(entry));
    json["size"] = entry.size;
    json["mtime"] = entry.modified;
    json["modified"] = isoTime(entry.modified);
    json["access"] = entry.access == 2 ? "write" : entry.access == 1 ? "read" : "none";
    if (entry.nuboType != 0) json["shareType"] = entry.nuboType;
    if (!entry.shareId.isEmpty()) json["shareId"] = utf8(entry.shareId);
    return json;
}

}  // namespace torvi
