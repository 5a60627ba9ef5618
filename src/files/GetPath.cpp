#include "files/GetPath.h"

#include "core/callframe.h"
#include "files/GetNodeInfoJson.h"
#include "files/PathRecord.h"

using namespace Lattice;

namespace {

// Newest first.
constexpr wchar_t kDirection[] = L"DESC";
constexpr wchar_t kSortBy[] = L"mt";

}  // namespace

uint32_t GetPath(_WFM_AUTH_CONTEXT* context, const wchar_t* agentName, const wchar_t* server, uint32_t port,
                 const wchar_t* slaveID, const wchar_t* path, const wchar_t* pattern, uint32_t start,
                 uint32_t limit, uint32_t typeFilter, uint32_t fieldMask, bool wantSort, bool* /*cancel*/,
                 CGetNodeInfoJson* reply) {
    static constexpr auto rules = CallRules("[WFM] GetPath");
    Call call(rules, context, server, port);
    // The agent is no exception here: a session without one cannot list.
    if (!call.accepts(agentName, path, pattern, typeFilter, reply)) return call.refuse();
    call.setAgent(agentName);
    call.route(slaveID);

    const int noSort = wantSort ? 0 : 1;
    if (typeFilter & kTypeFiles) {
        call.get(
            L"func=get_list&sid=%ls&is_iso=0&list_mode=all&path=%ls&dir=%ls&limit=%d&sort=%ls&start=%d&no_"
            L"sort=%d",
            call.sid(), path, kDirection, limit, kSortBy, start, noSort);
    } else if (typeFilter & kTypeFolders) {
        const bool checkChild = call.usesSyncService() && (typeFilter & kTypeCheckChild) != 0;
        call.get(
            L"func=get_list&sid=%ls&is_iso=0&list_mode=all&path=%ls&dir=%ls&limit=%d&sort=%ls&start=%d&type="
            L"4&no_sort=%d%ls",
            call.sid(), path, kDirection, limit, kSortBy, start, noSort,
            checkChild ? L"&check_child=4" : L"");
    } else {
        call.getNothing();
    }
    reply->nextStart = start;
    reply->pattern = pattern;
    reply->typeFilter = typeFilter;
    reply->fieldMask = fieldMask;
    call.ask(*reply);
    return call.end();
}
