#include <algorithm>

#include "files/GetNodeInfoJson.h"
#include "files/GetPath.h"
#include "files/PathRecord.h"
#include "files/RouteTo.h"

using namespace Lattice;

namespace {

constexpr uint32_t kTeamFolderNuboType = 8;
constexpr int64_t kFolderSize = 4096;
constexpr uint32_t kFullAccess = 2;

_WFM_PATH_INFORMATION TeamFolderRecord(const std::wstring& name) {
    _WFM_PATH_INFORMATION record = EmptyPathRecord();
    CopyTextCut(record.szPathName, name);
    record.bExists = true;
    record.bIsFolder = true;
    record.llSize = kFolderSize;
    record.dwNuboType = kTeamFolderNuboType;
    record.dwAccess = kFullAccess;
    return record;
}

/// What the server said of a listing, as the caller reads it.
int64_t ListResult(bool cancelled, uint32_t total, bool anyRecord, uint32_t& dwStatus) {
    if (cancelled) return ERROR_REQUEST_ABORTED;
    if (total == 0 && dwStatus == 0) return ERROR_NO_MORE_FILES;
    if (total == 0 && dwStatus == WFM_PARSE_XML_HTTPTRAN_CONNECT_FAIL)
        return IsNetworkAlive() ? ERROR_BAD_NETPATH : ERROR_NETWORK_UNREACHABLE;
    if (total == 0 || !anyRecord) return -1;
    dwStatus = 0;
    return 0;
}

}  // namespace

uint32_t WFMGetNodeList(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                        const wchar_t* slaveID, const wchar_t* pattern, const wchar_t* path,
                        uint32_t typeFilter, uint32_t fieldMask, bool* cancel, uint32_t limit, bool wantSort,
                        uint32_t* resultWord, uint32_t* total, uint32_t* start, uint32_t* count,
                        uint32_t* teamIndex, uint32_t* teamCount, _WFM_PATH_INFORMATION*** list) {
    static constexpr auto rules = CallRules("[WFM] WFMGetNodeList");
    Call call(rules, context, server, port);
    if (!call.accepts(pattern, path, typeFilter, fieldMask, resultWord, start, count, teamIndex, teamCount,
                      list))
        return call.refuse();
    call.begin(resultWord);
    *count = 0;
    *list = nullptr;

    const auto page = [&](const std::wstring& folder, const wchar_t* node, const wchar_t* wanted,
                          uint32_t from, uint32_t types, uint32_t fields, CGetNodeInfoJson& reply) {
        return GetPath(context, context->szAgentName, server, port, node, Encoded(folder).c_str(), wanted,
                       from, limit, types, fields, wantSort, cancel, &reply);
    };

    RemotePath folder{WithLeadingSlash(path), {}};
    const bool isTeamRoot =
        HasTeamFolders(*context) && (typeFilter & kTypeFolders) && IsTeamArea(folder.parent);
    if (!isTeamRoot) folder = MapTeamFolderPath(*context, folder.parent);

    // The team folders stand in front, as if they were real children of the team area.
    const auto folders = static_cast<uint32_t>(context->nTeamFolderCount);
    std::vector<_WFM_PATH_INFORMATION> teamRecords;
    if (isTeamRoot && *teamIndex < folders) {
        for (uint32_t rounds = std::min(folders - *teamIndex, limit); rounds > 0; --rounds, ++*teamIndex) {
            const auto index = static_cast<int32_t>(*teamIndex);
            const std::wstring name = GetFileNameFromPath(TeamListEntry(context->lppOriPathList, index));
            if (name.empty() || context->lppTeamFolderPathList[index] == nullptr) continue;
            teamRecords.push_back(TeamFolderRecord(name));
            ++*teamCount;
            if (typeFilter & kTypeCheckChild) {
                CGetNodeInfoJson children;
                page(context->lppTeamFolderPathList[index], slaveID, L"*", 0, kTypeFolders, kFieldName,
                     children);
                teamRecords.back().bHasChild = !children.records.empty();
            }
        }
    }

    // The caller's start counts team folders and the server's entries as one sequence.
    const uint32_t serverStart = *teamCount == 0 ? *start : (*start > *teamCount ? *start - *teamCount : 0);
    limit -= static_cast<uint32_t>(teamRecords.size());
    CGetNodeInfoJson reply;
    reply.nextStart = serverStart;
    uint32_t dwStatus =
        page(folder.parent, NodeOf(folder, slaveID), pattern, serverStart, typeFilter, fieldMask, reply);

    uint32_t found = reply.total;
    if (isTeamRoot) found += *teamIndex < folders ? folders : *teamCount;
    const bool anyRecord = !teamRecords.empty() || !reply.records.empty();
    call.setResult(ListResult(IsSet(cancel), found, anyRecord, dwStatus));
    if (call.result() == 0) {
        *list = HandOverList(teamRecords, reply.records);
        *count = static_cast<uint32_t>(teamRecords.size() + reply.records.size());
    }
    if (total != nullptr) *total = found;
    *start = reply.nextStart + (isTeamRoot ? *teamCount : 0);
    call.setStatus(dwStatus);
    return call.end();
}
