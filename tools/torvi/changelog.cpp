#include "changelog.h"

#include <algorithm>
#include <memory>

#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

constexpr uint32_t kInOneRequest = 100;

/// Room for a request's records, which are large.
class Page {
public:
    Page() {
        for (uint32_t i = 0; i < kInOneRequest; ++i) {
            m_records.push_back(std::make_unique<_WFM_SYNC_LOG_INFORMATION>());
            m_pointers.push_back(m_records.back().get());
        }
    }
    _WFM_SYNC_LOG_INFORMATION** list() { return m_pointers.data(); }
    const _WFM_SYNC_LOG_INFORMATION& at(uint32_t index) const { return *m_records[index]; }

private:
    std::vector<std::unique_ptr<_WFM_SYNC_LOG_INFORMATION>> m_records;
    std::vector<_WFM_SYNC_LOG_INFORMATION*> m_pointers;
};

Change toChange(const _WFM_SYNC_LOG_INFORMATION& record) {
    Change change;
    change.number = record.llLogID;
    change.action = record.nAction;
    change.isFolder = record.nIsFolder;
    change.path = QString::fromWCharArray(record.szFilePath);
    change.oldPath = QString::fromWCharArray(record.szOldFilePath);
    change.device = QString::fromWCharArray(record.szDevice);
    return change;
}

// The client's numbers of what happened, as far as they have names.
struct ActionName {
    int32_t action;
    const char* name;
};
constexpr ActionName kActions[] = {
    {-1, "unknown"}, {1, "made"},  {2, "changed"},   {3, "deleted"},
    {4, "renamed"},  {5, "moved"}, {6, "recovered"}, {18, "time set"},
};

}  // namespace

QString actionText(int32_t action) {
    for (const ActionName& known : kActions) {
        if (known.action == action) return QString::fromUtf8(known.name);
    }
    return QStringLiteral("action %1").arg(action);
}

QString kindText(int32_t isFolder) {
    switch (isFolder) {
        case 1:
            return QStringLiteral("folder");
        case 2:
            return QStringLiteral("file");
        default:
            return QStringLiteral("-");
    }
}

Json toJson(const Change& change) {
    Json json;
    json["number"] = change.number;
    json["action"] = change.action;
    json["actionName"] = utf8(actionText(change.action));
    json["type"] = change.isFolder == 0 ? Json(nullptr) : Json(utf8(kindText(change.isFolder)));
    json["path"] = utf8(change.path);
    json["oldPath"] = change.oldPath.isEmpty() ? Json(nullptr) : Json(utf8(change.oldPath));
    json["device"] = utf8(change.device);
    return json;
}

int64_t ChangeLog::newest() const {
    const QString what = QStringLiteral("log");
    _TORVI_MAX_LOG_NUMBERS numbers = {};
    uint32_t word = 0;
    const uint32_t dwStatus = WFMTorviGetMaxLog(m_session.context(), m_session.server(), m_session.port(),
                                                m_session.node(), m_folder.c_str(), nullptr, &numbers, &word);
    if (interrupted()) throwCancelled(what);
    if (dwStatus != 0 || word != 0) throw callFailure(what, dwStatus, word);
    return numbers.llMaxLog;
}

bool ChangeLog::next(int64_t& last, std::vector<Change>& changes) const {
    const QString what = QStringLiteral("log");
    Page page;
    uint32_t count = kInOneRequest;
    bool isEnd = false;
    uint32_t word = 0;
    const uint32_t dwStatus = WFMTorviGetSyncLog(m_session.context(), m_session.server(), m_session.port(),
                                                 m_session.node(), kInOneRequest, last, m_folder.c_str(),
                                                 nullptr, &count, page.list(), &isEnd, &word);
    if (interrupted()) throwCancelled(what);
    if (dwStatus != 0 || word != 0) throw rawFailure(what, dwStatus, word);
    const int64_t before = last;
    for (uint32_t i = 0; i < count; ++i) {
        // The number that one begins at may be told once more.
        if (page.at(i).llLogID <= before) continue;
        changes.push_back(toChange(page.at(i)));
        last = std::max(last, changes.back().number);
    }
    return !isEnd && last > before;
}

}  // namespace torvi
