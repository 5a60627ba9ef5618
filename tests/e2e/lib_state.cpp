#include "lib_state.h"

#include <map>
#include <memory>

#include "WebFileManShareAPI.h"

namespace e2e {

namespace {

std::string actionName(std::int32_t action) {
    static const std::map<std::int32_t, std::string> names = {
        {1, "made"},  {2, "rewritten"}, {3, "deleted"},  {4, "renamed"},
        {5, "moved"}, {6, "recovered"}, {18, "set time"}};
    const auto found = names.find(action);
    return found == names.end() ? "action " + std::to_string(action) : found->second;
}

LoggedChange changeOf(const _WFM_SYNC_LOG_INFORMATION& record) {
    const std::string kind = record.nIsFolder == 1 ? "folder" : record.nIsFolder == 2 ? "file" : "?";
    const std::string from = utf8(record.szOldFilePath);
    return {record.llLogID,
            actionName(record.nAction) + " " + kind + " " + (from.empty() ? "" : from + " -> ") +
                utf8(record.szFilePath),
            utf8(record.szDevice)};
}

/// Takes over a list of the library.
template <class Record, class Make, class Result>
void take(std::uint32_t count, Record** list, std::vector<Result>& results, Make make) {
    for (std::uint32_t i = 0; i < count; ++i) {
        results.push_back(make(*list[i]));
        delete list[i];
    }
    delete[] list;
}

}  // namespace

Numbers newest(const Client& client, Newest& newest, const std::wstring& folder, const std::wstring& node) {
    _TORVI_MAX_LOG_NUMBERS record;
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMTorviGetMaxLog(client.context(), kServer, client.port(), node.c_str(), folder.c_str(),
                                 nullptr, &record, result);
    });
    newest = {record.llMaxLog, record.llNotify, record.llGlobalNotify, record.llSyncSignal};
    return numbers;
}

Numbers newestOf(const Client& client, const std::vector<std::wstring>& folders,
                 std::vector<std::int64_t>& changes, Newest* overall, const std::wstring& node) {
    std::vector<_TORVI_MAX_LOG_FOLDER> records(folders.size());
    std::vector<_TORVI_MAX_LOG_FOLDER*> list;
    for (std::size_t i = 0; i < folders.size(); ++i) {
        folders[i].copy(records[i].szPath, 259);
        list.push_back(&records[i]);
    }
    _TORVI_MAX_LOG_INFORMATION question;
    question.dwFolderCount = static_cast<std::uint32_t>(list.size());
    question.lppFolders = list.data();
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMTorviNuboGetMaxLog(client.context(), kServer, client.port(), node.c_str(), nullptr,
                                     &question, result);
    });
    changes.clear();
    for (const _TORVI_MAX_LOG_FOLDER& record : records) changes.push_back(record.llMaxLog);
    if (overall != nullptr) *overall = {question.llMaxLog, question.llNotify, question.llGlobalNotify, -1};
    return numbers;
}

std::vector<std::string> texts(const std::vector<LoggedChange>& changes) {
    std::vector<std::string> result;
    for (const LoggedChange& change : changes) result.push_back(change.text);
    return result;
}

Numbers ask(const Client& client, ChangeQuestion& question) {
    const std::unique_ptr<_WFM_SYNC_LOG_INFORMATION[]> records(
        new _WFM_SYNC_LOG_INFORMATION[question.capacity]);
    std::vector<_WFM_SYNC_LOG_INFORMATION*> list;
    for (std::uint32_t i = 0; i < question.capacity; ++i) list.push_back(&records[i]);
    std::uint32_t count = question.capacity;
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMTorviGetSyncLog(client.context(), kServer, client.port(), question.node.c_str(),
                                  question.number, question.from, question.folder.c_str(), nullptr, &count,
                                  list.data(), &question.isEnd, result);
    });
    question.changes.clear();
    const bool filled = numbers == kDone || numbers == Numbers{0, -23};
    for (std::uint32_t i = 0; filled && i < count; ++i) question.changes.push_back(changeOf(records[i]));
    return numbers;
}

std::vector<LoggedChange> changes(const Client& client, const std::wstring& folder) {
    ChangeQuestion question;
    question.folder = folder;
    question.capacity = 100;
    EXPECT_EQ(ask(client, question), kDone);
    EXPECT_TRUE(question.isEnd);
    return question.changes;
}

Numbers syncFolders(const Client& client, std::vector<SyncFolder>& folders, bool detail, bool refresh) {
    std::uint32_t count = 0;
    _NAS_SYNCING_FOLDER_INFORMATION** list = nullptr;
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMTorviGetNASSyncinFolderList(client.context(), kServer, client.port(), detail, refresh,
                                              nullptr, result, &count, &list);
    });
    folders.clear();
    take(count, list, folders, [](const _NAS_SYNCING_FOLDER_INFORMATION& record) -> SyncFolder {
        return {utf8(record.szSlaveID), utf8(record.szHostName), utf8(record.szName),
                utf8(record.szPath),    record.nPrivilege,       record.nVolumeID,
                record.llUsed,          record.llCapacity,       record.llFree};
    });
    return numbers;
}

Numbers quota(const Client& client, Quota& quota, bool all) {
    std::uint32_t count = 0;
    USER_QUOTA_INFO** list = nullptr;
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WebFileManGetQuotaInformation(client.context(), kServer, client.port(), nullptr, all, nullptr,
                                             &quota.enabled, &quota.volumeFree, &quota.volumeTotal, &count,
                                             &list, result);
    });
    quota.volumes.clear();
    take(count, list, quota.volumes, [](const USER_QUOTA_INFO& record) { return record; });
    return numbers;
}

std::wstring homeOf(const Client& client, const std::wstring& user, std::uint32_t capacity) {
    std::vector<wchar_t> buffer(4096, L'\0');
    EXPECT_EQ(WFMGetUserHomePath(client.context(), kServer, client.port(), user.c_str(), capacity, nullptr,
                                 nullptr, buffer.data()),
              0u);
    return buffer.data();
}

Numbers lastModified(const Client& client, std::int64_t& time) {
    return numbersOf([&](std::uint32_t* result) {
        return WFMGetTorviLastModifiedTime(client.context(), kServer, client.port(), nullptr, &time, result);
    });
}

Numbers beginSync(const Client& client, std::uint32_t channel) {
    return numbersOf([&](std::uint32_t* result) {
        return WFMGetTorviSyncStart(client.context(), kServer, client.port(), nullptr, channel, result);
    });
}

Numbers endSync(const Client& client, std::uint32_t number) {
    return numbersOf([&](std::uint32_t* result) {
        return WFMGetTorviSyncStop(client.context(), kServer, client.port(), number, nullptr, result);
    });
}

}  // namespace e2e
