#include "teamrecords.h"

#include <WebFileManShareAPI.h>

#include <algorithm>
#include <cwchar>

#include "failure.h"
#include "recordpage.h"
#include "remote.h"
#include "sharedfolders.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

// The records are large.
constexpr uint32_t kPageSize = 50;

struct Word {
    int32_t number;
    const char* text;
};
constexpr Word kRoles[] = {{kInvited, "invited"}, {kOver, "over"}, {kOwn, "own"}, {kReceived, "received"}};
constexpr Word kStates[] = {{1, "waiting"}, {2, "accepted"}, {3, "denied"}, {4, "left"}, {5, "taken away"}};
constexpr Word kPermissions[] = {{1, "read"}, {2, "write"}};

template <size_t N>
QString wordOf(const Word (&words)[N], int32_t number) {
    for (const Word& word : words) {
        if (word.number == number) return QString::fromLatin1(word.text);
    }
    return QString::number(number);
}

/// A text that may fill its field to the last character.
template <size_t N>
QString fieldText(const wchar_t (&field)[N]) {
    return QString::fromWCharArray(field, static_cast<int>(::wcsnlen(field, N)));
}

TeamRecord toRecord(const _WFM_TORVI_TEAM_FOLDER_INFORMATION& folder) {
    TeamRecord record;
    record.role = folder.nType;
    record.there = folder.nStatus != 0;
    record.owner = fieldText(folder.szOwner);
    record.shareId = fieldText(folder.szShareID);
    record.nasId = fieldText(folder.szNasID);
    record.parentId = fieldText(folder.szParentID);
    record.name = text(folder.szName);
    // Of its owner's own both are the same.
    const QString seen = text(folder.szOriginalPath);
    record.path = seen.isEmpty() ? seen : remotePath(seen);
    record.serverPath = record.is(kReceived) ? text(folder.szPath) : QString();
    for (uint32_t i = 0; i < folder.dwReceiverCount; ++i) {
        const auto& receiver = *folder.lppReceivers[i];
        record.members.push_back(
            {text(receiver.szName), text(receiver.szDisplayName), receiver.nPermission, receiver.nStatus, 0});
    }
    return record;
}

std::vector<TeamRecord> ofSyncService(const Session& session, const QString& what, const TeamQuery& query) {
    std::vector<TeamRecord> records;
    const auto ask = [&](uint32_t lower, uint32_t upper,
                         RecordPage<_WFM_TORVI_TEAM_FOLDER_INFORMATION>& page) {
        uint32_t total = 0;
        uint32_t status = 0;
        const uint32_t dwStatus = WebFileManNuboGetTeamFolder(
            session.context(), session.server(), session.port(), query.roles, wide(query.user).c_str(),
            wide(query.path).c_str(), lower, upper, 0, &total, page.count(), page.list(), &status);
        if (interrupted()) throwCancelled(what);
        if (dwStatus != 0) throw statusFailure(what, dwStatus);
        if (status != 0) throw rawFailure(what, dwStatus, status);
        return total;
    };
    eachRecord<_WFM_TORVI_TEAM_FOLDER_INFORMATION>(
        {0, 0, kPageSize}, ask, [&](const auto& folder) { records.push_back(toRecord(folder)); });
    return records;
}

TeamRecord* ownRecord(std::vector<TeamRecord>& records, const QString& shareId) {
    const auto it = std::find_if(records.begin(), records.end(), [&](const TeamRecord& record) {
        return record.is(kOwn) && record.shareId == shareId;
    });
    return it == records.end() ? nullptr : &*it;
}

TeamRecord& addOwn(std::vector<TeamRecord>& records, const Session& session, const QString& shareId,
                   const QString& file) {
    if (TeamRecord* known = ownRecord(records, shareId)) return *known;
    TeamRecord record;
    record.role = kOwn;
    record.shareId = shareId;
    record.owner = session.connection().user;
    record.path = remotePath(file);
    record.name = leafOf(record.path);
    records.push_back(record);
    return records.back();
}

/// A folder of one's own that nobody has, has no event either.
void addUnreceived(std::vector<TeamRecord>& records, const Session& session, const QString& what) {
    for (const SharedFolder& folder : sharedBelow(session, what, QStringLiteral("/")))
        addOwn(records, session, folder.shareId, folder.path);
}

TeamRecord receivedRecord(const TeamEvent& event) {
    TeamRecord record;
    record.role = event.role;
    record.shareId = event.shareId;
    record.owner = event.with;
    record.name = leafOf(remotePath(event.file));
    if (record.is(kReceived)) record.path = remotePath(event.file);
    record.event = event.number;
    return record;
}

bool isWanted(const TeamRecord& record, const TeamQuery& query) {
    const bool users = query.user.isEmpty() || record.owner == query.user || record.member(query.user);
    const bool placed = query.path.isEmpty() || record.path == query.path ||
                        record.path.startsWith(query.path + QLatin1Char('/'));
    return users && placed;
}

/// Put together from the events, of which an own folder has one for each member.
std::vector<TeamRecord> ofOlderService(const Session& session, const QString& what, const TeamQuery& query) {
    std::vector<TeamRecord> records;
    for (const TeamEvent& event : teamEvents(session, what, query.roles)) {
        if (event.role == kOwn) {
            addOwn(records, session, event.shareId, event.file)
                .members.push_back({event.with, {}, 0, event.state, event.number});
        } else {
            records.push_back(receivedRecord(event));
        }
    }
    if ((query.roles & kOwn) != 0) addUnreceived(records, session, what);
    records.erase(std::remove_if(records.begin(), records.end(),
                                 [&](const TeamRecord& record) { return !isWanted(record, query); }),
                  records.end());
    return records;
}

std::vector<TeamRecord> filtered(const std::vector<TeamRecord>& records,
                                 bool (*fits)(const TeamRecord&, const QString&), const QString& which) {
    std::vector<TeamRecord> found;
    for (const TeamRecord& record : records) {
        if (fits(record, which)) found.push_back(record);
    }
    return found;
}

bool hasId(const TeamRecord& record, const QString& which) {
    return record.shareId == which;
}

bool hasEvent(const TeamRecord& record, const QString& which) {
    return record.event != 0 && QString::number(record.event) == which;
}

bool hasPath(const TeamRecord& record, const QString& which) {
    return (!record.path.isEmpty() && record.path == remotePath(which)) ||
           (!record.serverPath.isEmpty() && remotePath(record.serverPath) == remotePath(which));
}

bool hasName(const TeamRecord& record, const QString& which) {
    return record.name == which;
}

Failure ambiguous(const QString& what, const std::vector<TeamRecord>& found) {
    QStringList choices;
    for (const TeamRecord& record : found)
        choices << QStringLiteral("%1 (%2, %3)").arg(record.shareId, roleText(record.role), record.owner);
    return Failure(Exit::Usage, QStringLiteral("%1: there are several; name one by its id: %2")
                                    .arg(what, choices.join(QStringLiteral(", "))));
}

}  // namespace

const TeamMember* TeamRecord::member(const QString& user) const {
    const auto it = std::find_if(members.begin(), members.end(),
                                 [&](const TeamMember& member) { return member.name == user; });
    return it == members.end() ? nullptr : &*it;
}

std::vector<TeamRecord> teamFolders(const Session& session, const QString& what, const TeamQuery& query) {
    return session.service() == Service::Sync ? ofSyncService(session, what, query)
                                              : ofOlderService(session, what, query);
}

TeamRecord findTeamFolder(const Session& session, const QString& what, uint32_t roles, const QString& which) {
    const std::vector<TeamRecord> all = teamFolders(session, what, {roles, {}, {}});
    // What names one alone goes before what may name several.
    for (const auto fits : {hasId, hasEvent, hasPath, hasName}) {
        const std::vector<TeamRecord> found = filtered(all, fits, which);
        if (found.size() > 1) throw ambiguous(what, found);
        if (!found.empty()) return found.front();
    }
    throw Failure(
        Exit::NotFound,
        QStringLiteral("%1: there is no such %2; `torvi team list` tells what there is")
            .arg(what, roles == kInvited ? QStringLiteral("invitation") : QStringLiteral("team folder")));
}

std::vector<TeamRecord> sameTeamFolder(const Session& session, const QString& what, uint32_t roles,
                                       const QString& shareId) {
    return filtered(teamFolders(session, what, {roles, {}, {}}), hasId, shareId);
}

std::vector<TeamEvent> teamEvents(const Session& session, const QString& what, uint32_t roles) {
    std::vector<TeamEvent> events;
    const auto ask = [&](uint32_t lower, uint32_t upper, RecordPage<_WFM_TORVI_EVENT_INFORMATION>& page) {
        uint32_t total = 0;
        uint32_t word = 0;
        const uint32_t dwStatus =
            WebFileManGetMyEvent(session.context(), session.server(), session.port(), roles, lower, upper,
                                 nullptr, &word, &total, page.count(), page.list());
        if (interrupted()) throwCancelled(what);
        check(what, dwStatus, word);
        return total;
    };
    eachRecord<_WFM_TORVI_EVENT_INFORMATION>({0, 0, kPageSize}, ask, [&](const auto& event) {
        events.push_back({static_cast<uint32_t>(event.nEventID), event.nEventType, event.nEventStatus,
                          text(event.szTargetName), text(event.szFile), text(event.szShareID),
                          text(event.szDate), text(event.szTime)});
    });
    return events;
}

QString roleText(int32_t role) {
    return wordOf(kRoles, role);
}

QString memberStateText(int32_t state) {
    return wordOf(kStates, state);
}

QString permissionText(int32_t permission) {
    return permission == 0 ? QStringLiteral("-") : wordOf(kPermissions, permission);
}

Json toJson(const TeamRecord& record) {
    Json members = Json::array();
    for (const TeamMember& member : record.members) {
        Json json = {{"name", utf8(member.name)},
                     {"state", member.state},
                     {"stateName", utf8(memberStateText(member.state))}};
        json["permission"] = member.permission == 0 ? Json(nullptr) : Json(member.permission);
        json["displayName"] = member.displayName.isEmpty() ? Json(nullptr) : Json(utf8(member.displayName));
        json["event"] = member.event == 0 ? Json(nullptr) : Json(member.event);
        members.push_back(json);
    }
    Json json;
    json["role"] = record.role;
    json["roleName"] = utf8(roleText(record.role));
    json["shareId"] = utf8(record.shareId);
    json["nasId"] = utf8(record.nasId);
    json["parentId"] = utf8(record.parentId);
    json["owner"] = utf8(record.owner);
    json["name"] = utf8(record.name);
    json["path"] = utf8(record.path);
    json["serverPath"] = utf8(record.serverPath);
    json["exists"] = record.there;
    json["event"] = record.event == 0 ? Json(nullptr) : Json(record.event);
    json["members"] = members;
    return json;
}

Json toJson(const TeamEvent& event) {
    return Json{{"event", event.number},
                {"role", event.role},
                {"roleName", utf8(roleText(event.role))},
                {"state", event.state},
                {"stateName", utf8(memberStateText(event.state))},
                {"with", utf8(event.with)},
                {"path", utf8(event.file)},
                {"shareId", utf8(event.shareId)},
                {"date", utf8(event.date)},
                {"time", utf8(event.time)}};
}

}  // namespace torvi
