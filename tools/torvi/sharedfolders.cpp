#include "sharedfolders.h"

#include <WebFileManShareAPI.h>

#include "output.h"
#include "recordlist.h"
#include "remote.h"
#include "status.h"
#include "teamrecords.h"

namespace torvi {

std::optional<SharedFolder> sharedAt(const Session& session, const QString& what, const QString& path) {
    constexpr uint32_t kShared = 0;
    constexpr uint32_t kGone = 2;
    _WFM_TORVI_SHARE_FOLDER_INFORMATION record = {};
    uint32_t word = 0;
    uint32_t state = 0;
    const uint32_t dwStatus =
        WFMGetTorviShareFolderInformation(session.context(), session.server(), session.port(), nullptr,
                                          wide(path).c_str(), nullptr, &word, &state, &record);
    check(what, dwStatus, word);
    const QString id = QString::fromWCharArray(record.szShareID);
    const bool own = record.nNuboType == static_cast<int32_t>(kOwn);
    if (!own || (state != kShared && state != kGone) || id.isEmpty()) return std::nullopt;
    return SharedFolder{path, id, state == kShared};
}

std::vector<SharedFolder> sharedBelow(const Session& session, const QString& what, const QString& folder) {
    constexpr uint32_t kMost = 10000;
    RecordList<_WFM_TORVI_SHARE_INFORMATION> list;
    uint32_t word = 0;
    const uint32_t dwStatus =
        WFMTorviFindShare(session.context(), session.server(), session.port(), wide(folder).c_str(), 0, kMost,
                          &word, list.count(), list.list());
    check(what, dwStatus, word);
    std::vector<SharedFolder> found;
    for (const auto* record : list.records()) {
        found.push_back({remotePath(QString::fromWCharArray(record->szFile)),
                         QString::fromWCharArray(record->szShareID)});
    }
    return found;
}

}  // namespace torvi
