#pragma once

#include "lib_support.h"

namespace e2e {

/// The numbers of the change log.
struct Newest {
    std::int64_t change = -1, byOthers = -1, ofServer = -1, syncSignal = -1;
};
/// Of one folder, or of all.
Numbers newest(const Client& client, Newest& newest, const std::wstring& folder = {},
               const std::wstring& node = {});
/// Of several folders, in their order.
Numbers newestOf(const Client& client, const std::vector<std::wstring>& folders,
                 std::vector<std::int64_t>& changes, Newest* overall = nullptr,
                 const std::wstring& node = {});

/// A record of the change log, without its 34 KB.
struct LoggedChange {
    std::int64_t id = 0;
    /// Such as "renamed file /home/a -> /home/b".
    std::string text;
    std::string device;
};
std::vector<std::string> texts(const std::vector<LoggedChange>& changes);

/// A question to the change log, with what comes back.
struct ChangeQuestion {
    std::int64_t from = 0;
    std::wstring folder = {};  ///< empty: all
    std::uint32_t number = 1000, capacity = 1000;
    std::wstring node = {};

    std::vector<LoggedChange> changes = {};
    bool isEnd = false;
};
Numbers ask(const Client& client, ChangeQuestion& question);
/// All of them, or those of a folder.
std::vector<LoggedChange> changes(const Client& client, const std::wstring& folder = {});

/// A folder that can be synced, without its 5 KB.
struct SyncFolder {
    std::string node, host, name, path;
    std::int32_t privilege = 0, volume = 0;
    std::int64_t used = 0, capacity = 0, free = 0;
};
Numbers syncFolders(const Client& client, std::vector<SyncFolder>& folders, bool detail = false,
                    bool refresh = false);

struct Quota {
    bool enabled = false;
    std::int64_t volumeFree = 0, volumeTotal = 0;
    std::vector<USER_QUOTA_INFO> volumes;
};
Numbers quota(const Client& client, Quota& quota, bool all = false);

/// Where a user's home lies; empty if the server doesn't tell.
std::wstring homeOf(const Client& client, const std::wstring& user, std::uint32_t capacity = 4096);
Numbers lastModified(const Client& client, std::int64_t& time);
Numbers beginSync(const Client& client, std::uint32_t channel);
Numbers endSync(const Client& client, std::uint32_t number);

}  // namespace e2e
