#include "teamactions.h"

#include <algorithm>
#include <iterator>

#include "failure.h"
#include "output.h"
#include "status.h"

namespace torvi {
namespace {

constexpr uint32_t kPidCapacity = 260;

_WFM_SHARE_MEMBER_ACTION recordOf(const QString& what, const TeamRecord& folder, const MemberChange& change) {
    _WFM_SHARE_MEMBER_ACTION record = {};
    const std::wstring name = wide(change.name);
    if (name.size() >= std::size(record.szName))
        throw Failure(Exit::Usage, QStringLiteral("%1: a user's name can't be that long").arg(what));
    std::copy(name.begin(), name.end(), record.szName);
    record.dwAction = static_cast<uint32_t>(change.access);
    if (const TeamMember* member = folder.member(change.name)) record.dwEventID = member->event;
    return record;
}

bool isAsWanted(const TeamRecord& folder, const MemberChange& change) {
    const TeamMember* member = folder.member(change.name);
    if (change.access == MemberAccess::None || member == nullptr)
        return (change.access == MemberAccess::None) == (member == nullptr);
    // The older service tells no permission.
    return member->permission == 0 || member->permission == static_cast<int32_t>(change.access);
}

}  // namespace

void runShareAction(const Session& session, const QString& what, ShareAction action, const TeamRecord& folder,
                    uint32_t event) {
    uint32_t word = 0;
    const uint32_t dwStatus =
        action(session.context(), session.server(), session.port(), wide(folder.nasId).c_str(),
               wide(folder.shareId).c_str(), event, nullptr, &word);
    check(what, dwStatus, word);
}

QString startMemberChanges(const Session& session, const QString& what, const TeamRecord& folder,
                           const std::vector<MemberChange>& changes) {
    std::vector<_WFM_SHARE_MEMBER_ACTION> records;
    for (const MemberChange& change : changes) records.push_back(recordOf(what, folder, change));
    std::vector<const _WFM_SHARE_MEMBER_ACTION*> list;
    for (const auto& record : records) list.push_back(&record);
    wchar_t pid[kPidCapacity] = {};
    uint32_t word = 0;
    const uint32_t dwStatus = WebFileManSetShareMember(
        session.context(), session.server(), session.port(), wide(folder.nasId).c_str(),
        wide(folder.shareId).c_str(), static_cast<uint32_t>(list.size()), list.data(), kPidCapacity, nullptr,
        pid, &word);
    check(what, dwStatus, word);
    return QString::fromWCharArray(pid);
}

bool areAsWanted(const Session& session, const QString& what, const TeamRecord& folder,
                 const std::vector<MemberChange>& changes) {
    for (const TeamRecord& now : sameTeamFolder(session, what, kOwn, folder.shareId)) {
        return std::all_of(changes.begin(), changes.end(),
                           [&](const MemberChange& change) { return isAsWanted(now, change); });
    }
    return false;
}

QString startUnshare(const Session& session, const QString& what, const TeamRecord& folder) {
    wchar_t pid[kPidCapacity] = {};
    uint32_t word = 0;
    const uint32_t dwStatus =
        WebFileManUnshare(session.context(), session.server(), session.port(), wide(folder.nasId).c_str(),
                          wide(folder.shareId).c_str(), kPidCapacity, nullptr, pid, &word);
    check(what, dwStatus, word);
    return QString::fromWCharArray(pid);
}

}  // namespace torvi
