#include <algorithm>
#include <memory>
#include <optional>
#include <string>

// A session without an id has no clone, so it is copied as it stands.
#include "../../src/core/authcontext.h"
#include "WebFileManShareAPI.h"
#include "callrows.h"
#include "support/session.h"

namespace {

/// A session of the file manager in place of the given one, whose texts it shares, for the calls that the
/// sync service doesn't have.
class AtFileManager {
public:
    explicit AtFileManager(Context given) {
        if (given == nullptr) return;
        m_session = *given;
        wire::useFileManager(*m_session);
    }
    Context session() { return m_session ? &*m_session : nullptr; }

private:
    std::optional<_WFM_AUTH_CONTEXT> m_session;
};

uint32_t teamFolders(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    auto folder = std::make_unique<_WFM_TORVI_TEAM_FOLDER_INFORMATION>();
    _WFM_TORVI_TEAM_FOLDER_INFORMATION* list[] = {folder.get()};
    uint32_t total = 0;
    uint32_t count = 1;
    return WebFileManNuboGetTeamFolder(context, server, port, 4, nullptr, nullptr, 0, 50, 0, &total, &count,
                                       list, result);
}

uint32_t myEvents(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    AtFileManager fileManager(context);
    _WFM_TORVI_EVENT_INFORMATION event;
    _WFM_TORVI_EVENT_INFORMATION* list[] = {&event};
    uint32_t total = 0;
    uint32_t count = 1;
    return WebFileManGetMyEvent(fileManager.session(), server, port, 4, 0, 50, nullptr, result, &total,
                                &count, list);
}

uint32_t findShare(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    uint32_t count = 0;
    _WFM_TORVI_SHARE_INFORMATION** list = nullptr;
    const uint32_t status = WFMTorviFindShare(context, server, port, L"/home", 0, 50, result, &count, &list);
    std::for_each(list, list + count, [](auto* share) { delete share; });
    delete[] list;
    return status;
}

uint32_t folderOfShare(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    uint32_t status = 0;
    _WFM_TORVI_SHARE_FOLDER_INFORMATION information;
    return WFMGetTorviShareFolderInformation(context, server, port, nullptr, L"/home/a", nullptr, result,
                                             &status, &information);
}

uint32_t shareTo(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    const wchar_t* const targets[] = {L"ann"};
    wchar_t pid[260];
    return WebFileManShareTo(context, server, port, 1, targets, L"/home/a", 260, nullptr, pid, result,
                             nullptr);
}

uint32_t endShare(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    wchar_t pid[260];
    return WebFileManUnshare(context, server, port, L"", L"share", 260, nullptr, pid, result);
}

uint32_t acceptShare(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    wchar_t file[2048];
    return WebFileManAcceptShare(context, server, port, L"", L"name", 7, L"share", nullptr, file, result);
}

uint32_t denyShare(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WebFileManDenyShare(context, server, port, L"", L"share", 7, nullptr, result);
}

uint32_t leaveShare(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WebFileManLeaveShare(context, server, port, L"", L"share", 7, nullptr, result);
}

uint32_t kickOutMember(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WebFileManKickOutShareMember(context, server, port, L"", L"share", 7, nullptr, result);
}

uint32_t removeEvent(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    AtFileManager fileManager(context);
    return WebFileManRemoveEvent(fileManager.session(), server, port, 7, nullptr, result);
}

uint32_t shareMembers(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    _WFM_SHARE_MEMBER_INFORMATION member{};
    _WFM_SHARE_MEMBER_INFORMATION* list[] = {&member};
    uint32_t total = 0;
    uint32_t count = 1;
    const uint32_t status =
        WebFileManGetShareMember(context, server, port, L"", L"share", 0, 50, 1, L"", L"", L"", false, false,
                                 false, nullptr, &total, &count, list, result);
    delete[] member.pszDescription;
    return status;
}

uint32_t setShareMember(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    const _WFM_SHARE_MEMBER_ACTION ann{L"ann", 1, 7};
    const _WFM_SHARE_MEMBER_ACTION* const members[] = {&ann};
    wchar_t pid[260];
    return WebFileManSetShareMember(context, server, port, L"", L"share", 1, members, 260, nullptr, pid,
                                    result);
}

/// A row of the family's usual wording, of a call that asks each service in its own words.
CallRow teamRow(const char* name, decltype(CallRow::run) run, const char* goodReply) {
    CallRow row = spelledRow(name, std::move(run), std::string("[WFMShare] ") + name);
    row.servicesDiffer = true;
    row.goodReply = goodReply;
    return row;
}

}  // namespace

void addTeamRows(std::vector<CallRow>& rows) {
    const char* const emptyList = R"({"status":0,"total":0})";
    CallRow row = teamRow("WebFileManNuboGetTeamFolder", teamFolders, emptyList);
    row.failed = "[WFMShare] WebFileManNuboGetTeamFolder {word}";
    row.nonObjectIsUnderstood = true;
    rows.push_back(row);

    row = teamRow("WebFileManGetMyEvent", myEvents, R"({"status":1,"total":0})");
    row.failed = "[WFMShare] WebFileManGetMyEvent {word}";
    row.nonObjectIsUnderstood = true;
    rows.push_back(row);

    row = teamRow("WFMTorviFindShare", findShare, R"({"status":1,"total":1,"event":[
        {"file":"/home/a","event_type":4,"event_status":1,"share_id":"s"}]})");
    row.servicesDiffer = false;
    row.notUnderstood = "[WFMShare] WFMTorviFindShare: WFM_PARSE_XML_FAIL(path=/home)";
    rows.push_back(row);

    row = teamRow("WFMGetTorviShareFolderInformation", folderOfShare,
                  R"({"file_exist":1,"nubo_type":8,"event_status":1,"share_id":"s"})");
    rows.push_back(row);

    const char* const job = R"({"status":1,"pid":"7"})";
    rows.push_back(teamRow("WebFileManShareTo", shareTo, job));
    rows.push_back(teamRow("WebFileManUnshare", endShare, job));
    rows.push_back(teamRow("WebFileManSetShareMember", setShareMember, job));

    const char* const done = R"({"status":0,"success":"true","file":"/home/a"})";
    for (const auto& [name, run] : {std::pair{"WebFileManAcceptShare", acceptShare},
                                    {"WebFileManDenyShare", denyShare},
                                    {"WebFileManLeaveShare", leaveShare},
                                    {"WebFileManKickOutShareMember", kickOutMember},
                                    {"WebFileManRemoveEvent", removeEvent}}) {
        row = teamRow(name, run, done);
        row.nonObjectIsUnderstood = true;
        rows.push_back(row);
    }
    rows.back().notUnderstood = "[WFMShare] WebFileManRemoveEvent: WFM_PARSE_XML_INVALID_PARAMETER";

    rows.push_back(teamRow("WebFileManGetShareMember", shareMembers, emptyList));
}
