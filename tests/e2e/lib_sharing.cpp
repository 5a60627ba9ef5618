#include "lib_sharing.h"

#include <thread>

#include "support/teamrecords.h"

namespace e2e {

namespace {

/// Runs a call that fills records of the caller's, and takes those over that it filled.
template <class Record, class Result, class Call, class Make>
Numbers fill(Window& window, std::vector<Result>& results, Call call, Make make) {
    OwnRecords<Record> records(window.capacity);
    window.count = window.capacity;
    const Numbers numbers = numbersOf([&](std::uint32_t* result) { return call(result, records.list()); });
    results.clear();
    const bool filled = numbers == kDone;
    for (std::uint32_t i = 0; filled && i < window.count; ++i) results.push_back(make(records[i]));
    return numbers;
}

TeamFolder folderOf(const _WFM_TORVI_TEAM_FOLDER_INFORMATION& record) {
    TeamFolder folder;
    folder.type = record.nType;
    folder.status = record.nStatus;
    folder.owner = utf8(widthOf(record.szOwner));
    folder.share = widthOf(record.szShareID);
    folder.nas = widthOf(record.szNasID);
    folder.parent = widthOf(record.szParentID);
    folder.name = utf8(record.szName);
    folder.path = utf8(record.szPath);
    folder.originalPath = utf8(record.szOriginalPath);
    for (std::uint32_t i = 0; i < record.dwReceiverCount; ++i) {
        folder.receivers.push_back(describe(*record.lppReceivers[i]));
        delete record.lppReceivers[i];
    }
    delete[] record.lppReceivers;
    return folder;
}

Event eventOf(const _WFM_TORVI_EVENT_INFORMATION& record) {
    Event event;
    event.id = static_cast<std::uint32_t>(record.nEventID);
    event.type = record.nEventType;
    event.status = record.nEventStatus;
    event.target = utf8(record.szTargetName);
    event.share = record.szShareID;
    event.file = utf8(record.szFile);
    event.date = utf8(record.szDate);
    event.time = utf8(record.szTime);
    return event;
}

/// Takes over the name and the description, which is the library's to allocate and ours to free.
template <class Record>
void takePerson(const Record& record, Person& person) {
    person.name = utf8(record.szName);
    person.hasDescription = record.pszDescription != nullptr;
    if (person.hasDescription) person.description = utf8(record.pszDescription);
    person.syncs = record.nTorviUser;
    delete[] record.pszDescription;
}

User userOf(const _WFM_USER_INFORMATION& record) {
    User user;
    takePerson(record, user);
    user.policy = utf8(record.szPolicy);
    return user;
}

Member memberOf(const _WFM_SHARE_MEMBER_INFORMATION& record) {
    Member member;
    takePerson(record, member);
    member.isMember = record.nShareMember;
    member.status = record.nEventStatus;
    member.event = static_cast<std::uint32_t>(record.nEventID);
    return member;
}

/// Runs a call that starts a job.
template <class Call>
Numbers startJob(std::wstring& pid, Call call, std::uint32_t capacity = 260) {
    std::vector<wchar_t> buffer(260, L'\0');
    const Numbers numbers =
        numbersOf([&](std::uint32_t* result) { return call(capacity, buffer.data(), result); });
    pid = buffer.data();
    return numbers;
}

std::vector<std::string> withCarl(std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--user", "carl:third"});
    return arguments;
}

}  // namespace

bool usesSyncService(const Client& client) {
    bool isSync = false;
    WFMGetUseNuboCGI(client.context(), &isSync);
    return isSync;
}

Numbers ask(const Client& client, TeamFolders& question) {
    return fill<_WFM_TORVI_TEAM_FOLDER_INFORMATION>(
        question, question.folders,
        [&](std::uint32_t* result, _WFM_TORVI_TEAM_FOLDER_INFORMATION** list) {
            return WebFileManNuboGetTeamFolder(client.context(), kServer, client.port(), question.type,
                                               question.target.c_str(), question.path.c_str(), question.lower,
                                               question.upper, 0, &question.total, &question.count, list,
                                               result);
        },
        folderOf);
}

Numbers ask(const Client& client, Events& question) {
    return fill<_WFM_TORVI_EVENT_INFORMATION>(
        question, question.events,
        [&](std::uint32_t* result, _WFM_TORVI_EVENT_INFORMATION** list) {
            return WebFileManGetMyEvent(client.context(), kServer, client.port(), question.type,
                                        question.lower, question.upper, nullptr, result, &question.total,
                                        &question.count, list);
        },
        eventOf);
}

std::vector<Shared> sharedOf(const Client& client, std::uint32_t type) {
    std::vector<Shared> shares;
    if (usesSyncService(client)) {
        TeamFolders question;
        question.type = type;
        EXPECT_EQ(ask(client, question), kDone);
        for (const TeamFolder& folder : question.folders)
            shares.push_back({folder.share, folder.nas, 0, folder.name});
        return shares;
    }
    Events question;
    question.type = type;
    EXPECT_EQ(ask(client, question), kDone);
    for (const Event& event : question.events)
        shares.push_back(
            {event.share, {}, event.id, event.file.substr(event.file.rfind('/') + 1), event.status});
    return shares;
}

void learnReceived(const Client& client) {
    TeamFolders question;
    question.type = kReceived;
    EXPECT_EQ(ask(client, question), kDone);
    std::vector<std::wstring> texts[3];
    for (const TeamFolder& folder : question.folders) {
        texts[0].push_back(wide(folder.originalPath));
        texts[1].push_back(wide(folder.path));
        texts[2].push_back(folder.nas);
    }
    std::vector<wchar_t*> lists[3];
    for (int i = 0; i < 3; ++i) {
        for (std::wstring& text : texts[i]) lists[i].push_back(text.data());
    }
    EXPECT_EQ(WFMUpdateTeamFolderInfo(client.context(), static_cast<std::int32_t>(lists[0].size()),
                                      lists[0].data(), lists[1].data(), lists[2].data()),
              0u);
}

bool finishes(const Client& client, const std::wstring& pid) {
    for (;;) {
        const JobState state = client.askJob(pid);
        if (!(state.numbers == kDone) || state.error != 0) return false;
        if (state.percent == 100) return true;
        std::this_thread::yield();
    }
}

Numbers shareTo(const Client& client, const std::vector<std::wstring>& targets, const std::wstring& path,
                std::wstring& pid, std::int32_t* status) {
    std::vector<const wchar_t*> names;
    for (const std::wstring& target : targets) names.push_back(target.c_str());
    std::uint32_t statusWord = 0xABCD;
    const Numbers numbers =
        startJob(pid, [&](std::uint32_t capacity, wchar_t* buffer, std::uint32_t* result) {
            return WebFileManShareTo(client.context(), kServer, client.port(),
                                     static_cast<std::uint32_t>(names.size()), names.data(), path.c_str(),
                                     capacity, nullptr, buffer, result, &statusWord);
        });
    if (status != nullptr) *status = static_cast<std::int32_t>(statusWord);
    return numbers;
}

Numbers accept(const Client& client, const Shared& share, const std::wstring& display, std::wstring& file) {
    std::vector<wchar_t> buffer(2048, L'\0');
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WebFileManAcceptShare(client.context(), kServer, client.port(), share.nas.c_str(),
                                     display.c_str(), share.event, share.id.c_str(), nullptr, buffer.data(),
                                     result);
    });
    file = buffer.data();
    return numbers;
}

Numbers deny(const Client& client, const Shared& share) {
    return numbersOf([&](std::uint32_t* result) {
        return WebFileManDenyShare(client.context(), kServer, client.port(), share.nas.c_str(),
                                   share.id.c_str(), share.event, nullptr, result);
    });
}

Numbers leave(const Client& client, const Shared& share) {
    return numbersOf([&](std::uint32_t* result) {
        return WebFileManLeaveShare(client.context(), kServer, client.port(), share.nas.c_str(),
                                    share.id.c_str(), share.event, nullptr, result);
    });
}

Numbers kickOut(const Client& client, const Shared& share) {
    return numbersOf([&](std::uint32_t* result) {
        return WebFileManKickOutShareMember(client.context(), kServer, client.port(), share.nas.c_str(),
                                            share.id.c_str(), share.event, nullptr, result);
    });
}

Numbers unshare(const Client& client, const Shared& share, std::wstring& pid, std::uint32_t capacity) {
    return startJob(
        pid,
        [&](std::uint32_t room, wchar_t* buffer, std::uint32_t* result) {
            return WebFileManUnshare(client.context(), kServer, client.port(), share.nas.c_str(),
                                     share.id.c_str(), room, nullptr, buffer, result);
        },
        capacity);
}

Numbers removeEvent(const Client& client, std::uint32_t event) {
    return numbersOf([&](std::uint32_t* result) {
        return WebFileManRemoveEvent(client.context(), kServer, client.port(), event, nullptr, result);
    });
}

Numbers ask(const Client& client, Users& question) {
    return fill<_WFM_USER_INFORMATION>(
        question, question.users,
        [&](std::uint32_t* result, _WFM_USER_INFORMATION** list) {
            return WebFileManGetUserList(
                client.context(), kServer, client.port(), question.type, question.domain.c_str(),
                question.netbios.c_str(), question.filter.c_str(), question.lower, question.upper,
                question.all, question.refresh, nullptr, result, &question.total, &question.count, list);
        },
        userOf);
}

Numbers ask(const Client& client, Members& question) {
    return fill<_WFM_SHARE_MEMBER_INFORMATION>(
        question, question.members,
        [&](std::uint32_t* result, _WFM_SHARE_MEMBER_INFORMATION** list) {
            return WebFileManGetShareMember(
                client.context(), kServer, client.port(), question.share.nas.c_str(),
                question.share.id.c_str(), question.lower, question.upper, question.type,
                question.domain.c_str(), question.netbios.c_str(), question.filter.c_str(), question.all,
                question.refresh, question.onlyMembers, nullptr, &question.total, &question.count, list,
                result);
        },
        memberOf);
}

Numbers setMembers(const Client& client, const Shared& share, const std::vector<MemberChange>& changes,
                   std::wstring& pid) {
    std::vector<_WFM_SHARE_MEMBER_ACTION> records(changes.size());
    std::vector<const _WFM_SHARE_MEMBER_ACTION*> list;
    for (std::size_t i = 0; i < changes.size(); ++i) {
        changes[i].name.copy(records[i].szName, 259);
        records[i].dwAction = changes[i].action;
        records[i].dwEventID = changes[i].event;
        list.push_back(&records[i]);
    }
    return startJob(pid, [&](std::uint32_t capacity, wchar_t* buffer, std::uint32_t* result) {
        return WebFileManSetShareMember(client.context(), kServer, client.port(), share.nas.c_str(),
                                        share.id.c_str(), static_cast<std::uint32_t>(list.size()),
                                        list.data(), capacity, nullptr, buffer, result);
    });
}

Numbers domains(const Client& client, std::vector<std::string>& domains, std::uint32_t& count,
                std::int32_t capacity) {
    OwnRecords<_WFM_TORVI_AD_INFORMATION> records(static_cast<std::uint32_t>(capacity));
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WebFileManGetAdInfo(client.context(), kServer, client.port(), capacity, nullptr, result,
                                   records.list(), &count);
    });
    domains.clear();
    for (std::uint32_t i = 0; numbers == kDone && i < count; ++i)
        domains.push_back(utf8(records[i].szNetbios) + ": " + utf8(records[i].szDomain));
    return numbers;
}

Numbers sharePath(const Client& client, const std::wstring& share, std::wstring& path,
                  std::uint32_t capacity) {
    std::vector<wchar_t> buffer(4096, L'\0');
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WebFileManGetSharePath(client.context(), kServer, client.port(), share.c_str(), capacity,
                                      nullptr, buffer.data(), result);
    });
    path = buffer.data();
    return numbers;
}

Numbers findShares(const Client& client, const std::wstring& folder, std::vector<Found>& found) {
    std::uint32_t count = 0;
    _WFM_TORVI_SHARE_INFORMATION** list = nullptr;
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMTorviFindShare(client.context(), kServer, client.port(), folder.c_str(), 0, 100, result,
                                 &count, &list);
    });
    found.clear();
    for (std::uint32_t i = 0; i < count; ++i) {
        found.push_back({utf8(list[i]->szFile), list[i]->szShareID, list[i]->nEventStatus});
        delete list[i];
    }
    delete[] list;
    return numbers;
}

Numbers folderInformation(const Client& client, const std::wstring& path, std::int32_t& status,
                          _WFM_TORVI_SHARE_FOLDER_INFORMATION& record) {
    std::uint32_t statusWord = 0xABCD;
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMGetTorviShareFolderInformation(client.context(), kServer, client.port(), nullptr,
                                                 path.c_str(), nullptr, result, &statusWord, &record);
    });
    status = static_cast<std::int32_t>(statusWord);
    return numbers;
}

bool recycleBin(const Client& client) {
    bool enabled = false;
    EXPECT_EQ(WebFileManGetRecycleBin(client.context(), kServer, client.port(), nullptr, &enabled), 0u);
    return enabled;
}

Numbers setRecycleBin(const Client& client, std::uint32_t value) {
    return numbersOf([&](std::uint32_t* result) {
        return WebFileManSetRecycleBin(client.context(), kServer, client.port(), value, nullptr, result);
    });
}

std::uint32_t policy(const Client& client) {
    std::uint32_t value = 0xABCD;
    EXPECT_EQ(WebFileManGetPolicy(client.context(), kServer, client.port(), nullptr, &value), 0u);
    return value;
}

Numbers setPolicy(const Client& client, std::uint32_t value) {
    return numbersOf([&](std::uint32_t* result) {
        return WebFileManSetPolicy(client.context(), kServer, client.port(), value, nullptr, result);
    });
}

Numbers renameShared(const Client& client, const std::wstring& from, const std::wstring& to) {
    return numbersOf([&](std::uint32_t* result) {
        return WebFileManRenameShareFolder(client.context(), kServer, client.port(), from.c_str(), to.c_str(),
                                           0, nullptr, result);
    });
}

Numbers moveShared(const Client& client, const std::wstring& from, const std::wstring& to) {
    return numbersOf([&](std::uint32_t* result) {
        return WebFileManMoveShareFolder(client.context(), kServer, client.port(), from.c_str(), to.c_str(),
                                         0, nullptr, result);
    });
}

Numbers updateLink(const Client& client, const std::wstring& from, const std::wstring& to,
                   const std::wstring& node) {
    return numbersOf([&](std::uint32_t* result) {
        return WebFileManUpdateLink(client.context(), kServer, client.port(), node.c_str(), from.c_str(),
                                    to.c_str(), 0, nullptr, result);
    });
}

std::pair<std::uint32_t, bool> fixLink(const Client& client, const std::wstring& path) {
    constexpr std::uint32_t kOfSyncService = 4, kOfFileManager = 8;
    std::uint32_t fixed = 0;
    const std::uint32_t status =
        WFMFixTeamFolderLink(client.context(), kServer, client.port(), nullptr,
                             usesSyncService(client) ? kOfSyncService : kOfFileManager, path.c_str(), &fixed);
    return {status, fixed == 1};
}

LibSharing::LibSharing(std::vector<std::string> arguments)
    : LibRoad(withArguments(withCarl(std::move(arguments)))) {
    nas.folder().write("homes/anna/Photos/p", "picture");
}

void LibSharing::share(const std::vector<std::wstring>& targets, const std::wstring& path) {
    std::wstring pid;
    ASSERT_EQ(shareTo(client, targets, path, pid), kDone);
    ASSERT_TRUE(finishes(client, pid));
}

void LibSharing::accept(const std::wstring& display, const std::string& name) {
    std::wstring file;
    ASSERT_EQ(e2e::accept(ben, the(ben, kInvited, name), display, file), kDone);
    learnReceived(device);
}

Shared LibSharing::the(const Client& client, std::uint32_t type, const std::string& name) const {
    for (const Shared& share : sharedOf(client, type)) {
        if (share.name == name) return share;
    }
    ADD_FAILURE() << "no share " << name;
    return {};
}

}  // namespace e2e
