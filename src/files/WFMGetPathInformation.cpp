#include "core/callframe.h"
#include "files/GetPathInfoJson.h"
#include "files/MapTeamFolderPath.h"
#include "files/PathRecord.h"

using namespace Lattice;

namespace {

constexpr size_t kSchemeLength = 6;  // of "vtf://"

/// The name under which the reply holds the path: at a team folder's root it is the path behind the scheme.
std::wstring ExpectedName(const RemotePath& path) {
    if (!path.isTeamRoot) return path.name;
    return path.parent.size() > kSchemeLength ? path.parent.substr(kSchemeLength) : std::wstring();
}

}  // namespace

uint32_t WFMGetPathInformation(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                               const wchar_t* slaveID, const wchar_t* name, const wchar_t* parent,
                               uint32_t fieldMask, uint32_t typeFilter, bool serverSidePath, bool* /*cancel*/,
                               uint32_t* resultWord, _WFM_PATH_INFORMATION* information) {
    static constexpr auto rules = CallRules("[WFM] WFMGetPathInformation");
    Call call(rules, context, server, port);
    if (!call.accepts(name, parent, resultWord, information)) return call.refuse();
    call.begin(resultWord);
    *information = EmptyPathRecord();

    RemotePath path{WithLeadingSlash(parent), name};
    if (!serverSidePath) path = MapTeamFolderPath(*context, path.parent, path.name);

    call.route(slaveID, path.slaveID);
    if (call.usesFcgi()) call.use(kServiceFcgi);
    if (fieldMask & (kFieldPrivilegeEx | kFieldUploadPrivilege))
        call.get(L"func=stat&path=%ls&file_total=1&file_name=%ls&get_privilege=1%ls&sid=%ls",
                 Encoded(path.parent), Encoded(path.name),
                 (fieldMask & kFieldUploadPrivilege) ? L"&check_upload=1" : L"", call.sid());
    else
        call.get(L"func=stat&path=%ls&file_total=1&file_name=%ls&sid=%ls", Encoded(path.parent),
                 Encoded(path.name), call.sid());
    CGetPathInfoJson reply(ExpectedName(path), typeFilter != 0 ? typeFilter : kTypeFiles | kTypeFolders,
                           fieldMask);
    if (!call.ask(reply)) return call.end();

    switch (reply.GetStatus()) {
        case 0:
            break;
        case WFM_PERMISSION_DENY:
            // A team folder that isn't one's own is not to be told apart from an absent one.
            if (path.matched)
                return call.answer(ERROR_PATH_NOT_FOUND,
                                   "[WFM] WFMGetPathInformation: IsTeamFolder&&Permission deny");
            call.debugLine("[WFM] WFMGetPathInformation: WFM_PERMISSION_DENY");
            return call.answer(ERROR_ACCESS_DENIED);
        case WFM_FILE_NO_EXIST:
            return call.answer(ERROR_PATH_NOT_FOUND);
        default:
            return call.answer(-1, "[WFM] WFMGetPathInformation: ERROR_UNKNOWN Status(%d)",
                               reply.GetStatus());
    }
    if (reply.records.size() != 1)
        return call.fail(WFM_PARSE_XML_FAIL, "[WFM] WFMGetPathInformation: Get path num (%d) != 1",
                         static_cast<int>(reply.records.size()));
    const _WFM_PATH_INFORMATION& found = reply.records.front();
    if (!found.bExists) {
        if (fieldMask & kFieldUploadPrivilege) information->nPrivilegeEx = found.nPrivilegeEx;
        return call.answer(ERROR_PATH_NOT_FOUND);
    }
    *information = found;
    return call.answer(0);
}
