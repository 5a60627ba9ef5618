#pragma once

#include "WebFileManShareAPI.h"
#include "lib_records.h"
#include "lib_support.h"

/// What users of a server do with each other.
namespace e2e {

/// What a share is to who asks, and what became of an invitation, by the numbers of the server.
inline constexpr std::uint32_t kInvited = 1, kOver = 2, kOwned = 4, kReceived = 8;
inline constexpr std::int32_t kWaits = 1, kAccepted = 2, kDenied = 3, kLeft = 4, kTakenAway = 5;

bool usesSyncService(const Client& client);

/// A team folder in the sync service's list, without its 44 KB.
struct TeamFolder {
    std::int32_t type = 0, status = 0;
    std::string owner;
    std::wstring share, nas, parent;
    std::string name, path, originalPath;
    /// Such as "name=ben display=Pictures permission=2 status=2".
    std::vector<std::string> receivers;
};
struct TeamFolders : Window {
    std::uint32_t type = 0;
    std::wstring target, path;
    std::vector<TeamFolder> folders;
};
Numbers ask(const Client& client, TeamFolders& question);

/// An event in the file manager's list, without its 20 KB.
struct Event {
    std::uint32_t id = 0;
    std::int32_t type = 0, status = 0;
    std::string target;
    std::wstring share;
    std::string file, date, time;
};
struct Events : Window {
    std::uint32_t type = 0;
    std::vector<Event> events;
};
Numbers ask(const Client& client, Events& question);

/// A share as the list of the session's own service tells it. The sync service names it by an id, the file
/// manager by an event.
struct Shared {
    std::wstring id = {}, nas = {};
    std::uint32_t event = 0;
    std::string name = {};
    std::int32_t status = 0;  ///< what became of it; the sync service's list doesn't tell
};
std::vector<Shared> sharedOf(const Client& client, std::uint32_t type);
template <class Named>
std::vector<std::string> namesOf(const std::vector<Named>& all) {
    std::vector<std::string> names;
    for (const Named& one : all) names.push_back(one.name);
    return names;
}

/// Tells a session of the sync service the team folders that its user received, as the server lists them.
void learnReceived(const Client& client);
/// Waits for the end of a job; false if it fails.
bool finishes(const Client& client, const std::wstring& pid);

Numbers shareTo(const Client& client, const std::vector<std::wstring>& targets, const std::wstring& path,
                std::wstring& pid, std::int32_t* status = nullptr);
Numbers accept(const Client& client, const Shared& share, const std::wstring& display, std::wstring& file);
Numbers deny(const Client& client, const Shared& share);
Numbers leave(const Client& client, const Shared& share);
Numbers kickOut(const Client& client, const Shared& share);
Numbers unshare(const Client& client, const Shared& share, std::wstring& pid, std::uint32_t capacity = 260);
Numbers removeEvent(const Client& client, std::uint32_t event);

/// Users of a list, and where it looks for them.
struct UserQuestion : Window {
    std::uint32_t type = 1;
    std::wstring domain, netbios, filter;
    bool all = true, refresh = false;
};
struct Person {
    std::string name, description;
    bool hasDescription = false;
    std::int32_t syncs = 0;
};
struct User : Person {
    std::string policy;
};
struct Users : UserQuestion {
    std::vector<User> users;
};
Numbers ask(const Client& client, Users& question);

struct Member : Person {
    std::int32_t isMember = 0, status = 0;
    std::uint32_t event = 0;
};
struct Members : UserQuestion {
    Shared share;
    bool onlyMembers = false;
    std::vector<Member> members;
};
Numbers ask(const Client& client, Members& question);

struct MemberChange {
    std::wstring name;
    std::uint32_t action = 0;  ///< 0 takes the folder away, 1 lets read, 2 lets write
    std::uint32_t event = 0;
};
Numbers setMembers(const Client& client, const Shared& share, const std::vector<MemberChange>& changes,
                   std::wstring& pid);

/// "NETBIOS: domain" of each.
Numbers domains(const Client& client, std::vector<std::string>& domains, std::uint32_t& count,
                std::int32_t capacity = 10);
Numbers sharePath(const Client& client, const std::wstring& share, std::wstring& path,
                  std::uint32_t capacity = 4096);
struct Found {
    std::string file;
    std::wstring share;
    std::int32_t status = 0;
};
Numbers findShares(const Client& client, const std::wstring& folder, std::vector<Found>& found);
Numbers folderInformation(const Client& client, const std::wstring& path, std::int32_t& status,
                          _WFM_TORVI_SHARE_FOLDER_INFORMATION& record);

bool recycleBin(const Client& client);
Numbers setRecycleBin(const Client& client, std::uint32_t value);
std::uint32_t policy(const Client& client);
Numbers setPolicy(const Client& client, std::uint32_t value);
Numbers renameShared(const Client& client, const std::wstring& from, const std::wstring& to);
Numbers moveShared(const Client& client, const std::wstring& from, const std::wstring& to);
Numbers updateLink(const Client& client, const std::wstring& from, const std::wstring& to,
                   const std::wstring& node = {});
/// The status, and whether there was something to repair.
std::pair<std::uint32_t, bool> fixLink(const Client& client, const std::wstring& path);

/// anna has a folder Photos to share; ben and carl are there to receive it.
class LibSharing : public LibRoad {
protected:
    explicit LibSharing(std::vector<std::string> arguments = {});

    /// Shares a folder and waits for the job's end.
    void share(const std::vector<std::wstring>& targets, const std::wstring& path = L"/home/Photos");
    /// ben takes a folder, which the file manager gives its own name.
    void accept(const std::wstring& display = L"Pictures", const std::string& name = "Photos");
    void shareWithBen() {
        share({L"ben"});
        accept();
    }
    /// The name that ben's folder has then.
    std::string shown() const { return isSync() ? "Pictures" : "Photos"; }
    std::wstring shownPath() const { return L"/home/.Torvi/" + wide(shown()); }

    /// The share of that name in a user's list; a failure if there is none.
    Shared the(const Client& client, std::uint32_t type, const std::string& name = "Photos") const;
    std::vector<std::string> names(const Client& client, std::uint32_t type) const {
        return namesOf(sharedOf(client, type));
    }
    /// What ben's computer comes to in the team folder; it has heard of it before.
    Numbers reach() const { return reach(shown()); }
    Numbers reach(const std::string& name) const {
        std::int64_t size = 0;
        return device.folderSize(L"/home/.Torvi", wide(name), size);
    }

    Client ben{nas, GetParam(), L"ben", L"hidden"};
    Client carl{nas, GetParam(), L"carl", L"third"};
    /// ben's own, which syncs: the file manager can't go into team folders.
    Client device{nas, {isSync() ? GetParam().service : Service::Sync, GetParam().tls}, L"ben", L"hidden"};
};

}  // namespace e2e
