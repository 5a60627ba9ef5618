#pragma once

#include <vector>

#include "remote.h"

namespace torvi {

struct ListQuery {
    std::string pattern = "*";
    uint32_t typeFilter = kFiles | kFolders;
    uint32_t pageSize = 500;
    bool serverSorts = false;
    uint32_t enough = 0;  ///< fetch no more pages than so many entries need; 0 for all
};

struct Listing {
    std::vector<Entry> entries;
    uint32_t total = 0;  ///< what the server says that the folder holds, whatever the pattern
    bool complete = true;
};

/// The pages of a folder. A file is listed as itself.
Listing listFolder(const Session& session, const ListQuery& query, const QString& what, const QString& path);

/// One entry somewhere below a folder.
struct Found {
    QString path;
    Entry entry;
};

/// All that lies below a folder, each folder before its content.
std::vector<Found> walk(const Session& session, const QString& what, const QString& folder);

/// What there is in a walk.
struct Census {
    int64_t files = 0;
    int64_t folders = 0;
    int64_t size = 0;
    QString text() const;
};
Census countOf(const std::vector<Found>& found);

}  // namespace torvi
