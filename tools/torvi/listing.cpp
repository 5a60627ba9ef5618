#include "listing.h"

#include <algorithm>

#include "recordlist.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

constexpr uint32_t kNoMoreFiles = 18;
// The node of the tree under which all shares stand.
constexpr const wchar_t* kShareRoot = L"share_root";

using PathList = RecordList<_WFM_PATH_INFORMATION>;

void append(std::vector<Entry>& entries, const PathList& list) {
    for (const auto* record : list.records()) entries.push_back(toEntry(*record));
}

std::vector<Entry> listShares(const Session& session, const QString& what) {
    PathList records;
    uint32_t word = 0;
    const uint32_t dwStatus = WFMGetFolderList(session.context(), session.server(), session.port(),
                                               session.node(), kName | kIsFolder | kAccess, kShareRoot,
                                               cancelFlag(), &word, records.count(), records.list());
    if (interrupted()) throwCancelled(what);
    if (dwStatus != 0 || word != 0) throw callFailure(what, dwStatus, word);
    std::vector<Entry> entries;
    append(entries, records);
    return entries;
}

/// An empty listing is also what a missing folder, a refusal and a plain file look like: this tells them
/// apart.
Listing listWithoutPages(const Session& session, const ListQuery& query, const QString& what,
                         const QString& path) {
    Listing listing;
    if (path == QLatin1String("/")) {
        if ((query.typeFilter & kFolders) != 0) listing.entries = listShares(session, what);
    } else {
        const Entry entry = require(session, what, path);
        if (!entry.folder) listing.entries = {entry};
    }
    listing.total = static_cast<uint32_t>(listing.entries.size());
    return listing;
}

/// The shares come by another call than what lies in them.
Listing listWithoutFiles(const Session& session, const ListQuery& query, const QString& what,
                         const QString& path) {
    if (path != QLatin1String("/")) {
        throw Failure(Exit::Refused,
                      QStringLiteral("%1: a session that took a second step at the older service "
                                     "cannot list files; what takes a path works")
                          .arg(what));
    }
    return listWithoutPages(session, query, what, path);
}

}  // namespace

Listing listFolder(const Session& session, const ListQuery& query, const QString& what, const QString& path) {
    const std::wstring pattern = wide(QString::fromStdString(query.pattern));
    const std::wstring folder = wide(path);
    if (!session.canListFiles()) return listWithoutFiles(session, query, what, path);
    Listing listing;
    uint32_t start = 0;
    uint32_t teamIndex = 0;
    uint32_t teamCount = 0;
    for (;;) {
        PathList records;
        uint32_t word = 0;
        uint32_t total = 0;
        const uint32_t before = start;
        const uint32_t dwStatus = WFMGetNodeList(
            session.context(), session.server(), session.port(), session.node(), pattern.c_str(),
            folder.c_str(), query.typeFilter, kName | kIsFolder | kSize | kModified | kAccess | kShare,
            cancelFlag(), query.pageSize, query.serverSorts, &word, &total, &start, records.count(),
            &teamIndex, &teamCount, records.list());
        if (interrupted()) throwCancelled(what);
        if (dwStatus != 0) throw callFailure(what, dwStatus, word);
        if (before == 0 && total == 0) {
            if (word != kNoMoreFiles) throw callFailure(what, dwStatus, word);
            return listWithoutPages(session, query, what, path);
        }
        if (total > 0) listing.total = total;
        append(listing.entries, records);
        if (start >= listing.total) return listing;
        if (query.enough > 0 && listing.entries.size() >= query.enough) return listing;
        if (start <= before || total == 0) {
            // The server announced more than it gives.
            listing.complete = false;
            return listing;
        }
    }
}

std::vector<Found> walk(const Session& session, const QString& what, const QString& folder) {
    std::vector<Found> found;
    std::vector<QString> waiting = {folder};
    while (!waiting.empty()) {
        const QString next = waiting.back();
        waiting.pop_back();
        const Listing listing = listFolder(session, ListQuery(), what, next);
        if (!listing.complete) {
            throw Failure(Exit::Incomplete,
                          QStringLiteral("%1: the server announced %2 entries in %3 and gave "
                                         "fewer")
                              .arg(what, QString::number(listing.total), next));
        }
        for (const Entry& entry : listing.entries) {
            const QString path = joined(next, entry.name);
            found.push_back({path, entry});
            if (entry.folder) waiting.push_back(path);
        }
    }
    std::sort(found.begin(), found.end(), [](const Found& a, const Found& b) {
        // "/" before all else, so that a folder's content follows it.
        return QString(a.path).replace(QLatin1Char('/'), QChar(1)) <
               QString(b.path).replace(QLatin1Char('/'), QChar(1));
    });
    return found;
}

Census countOf(const std::vector<Found>& found) {
    Census census;
    for (const Found& one : found) {
        ++(one.entry.folder ? census.folders : census.files);
        if (!one.entry.folder) census.size += one.entry.size;
    }
    return census;
}

QString Census::text() const {
    const auto counted = [](int64_t count, const char* one, const char* several) {
        return QStringLiteral("%1 %2").arg(count).arg(QLatin1String(count == 1 ? one : several));
    };
    return QStringLiteral("%1, %2, %3")
        .arg(counted(files, "file", "files"), counted(folders, "folder", "folders"), humanSize(size));
}

}  // namespace torvi
