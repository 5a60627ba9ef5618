#include "core/callframe.h"
#include "files/GetFolderInfoJson.h"
#include "files/MapTeamFolderPath.h"
#include "files/PathRecord.h"

using namespace Lattice;

uint32_t WFMGetFolderInformation(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                 const wchar_t* slaveID, const wchar_t* parent, const wchar_t* name,
                                 uint32_t fieldMask, bool serverSidePath, bool* /*cancel*/,
                                 uint32_t* resultWord, _WFM_PATH_INFORMATION* information) {
    static constexpr auto rules = CallRules("[WFM] WFMGetFolderInformation");
    Call call(rules, context, server, port);
    if (!call.accepts(parent, name, resultWord)) return call.refuse();
    call.begin(resultWord);
    if (information != nullptr) *information = EmptyPathRecord();

    // The shares themselves are the children of a node of their own.
    const std::wstring folder =
        parent == std::wstring(L"/") ? std::wstring(L"share_root") : WithLeadingSlash(parent);
    RemotePath path{folder, *name == L'/' ? name + 1 : name};
    if (!serverSidePath) path = MapTeamFolderPath(*context, path.parent, path.name);

    call.route(slaveID, path.slaveID);
    call.get(L"func=get_tree&sid=%ls&is_iso=0&node=%ls", call.sid(), Encoded(path.parent));
    CGetFolderInfoJson reply(path.name, fieldMask);
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() == WFM_PERMISSION_DENY) return call.answer(ERROR_ACCESS_DENIED);
    if (reply.records.size() != 1) {
        call.debugLine("[WFM] WFMGetFolderInformation: ERROR_PATH_NOT_FOUND(PathInfo num=%d)",
                       static_cast<int>(reply.records.size()));
        return call.answer(ERROR_PATH_NOT_FOUND);
    }
    if (information != nullptr) *information = reply.records.front();
    return call.answer(0);
}
