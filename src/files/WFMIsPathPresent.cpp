#include "core/callframe.h"
#include "files/PathRecord.h"

using namespace Lattice;

uint32_t WFMIsPathPresent(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                          const wchar_t* slaveID, const wchar_t* path, bool wantFolder, bool serverSidePath,
                          bool* cancel, uint32_t* resultWord, bool* isPresent) {
    static constexpr auto rules = CallRules("[WFM] WFMIsPathPresent");
    Call call(rules, context, server, port);
    if (!call.accepts(path, resultWord, isPresent)) return call.refuse();
    call.begin(resultWord);
    *isPresent = false;

    const SplitPath split = SplitAtLastSlash(WithLeadingSlash(path));
    if (split.name.empty() && split.parent.empty()) return call.leave(WFM_PARSE_XML_FAIL);

    _WFM_PATH_INFORMATION information;
    uint32_t dwStatus;
    if (!split.parent.empty()) {
        dwStatus = WFMGetPathInformation(
            context, server, port, slaveID, split.name.c_str(), split.parent.c_str(), kFieldIsFolder,
            wantFolder ? kTypeFolders : kTypeFiles, serverSidePath, cancel, resultWord, &information);
        *isPresent = dwStatus == 0 && *resultWord == 0;
        if (*isPresent || *resultWord == ERROR_PATH_NOT_FOUND) return call.leave(dwStatus);
    } else {
        // A share at the top.
        dwStatus = WFMGetFolderInformation(context, server, port, slaveID, L"/", split.name.c_str(),
                                           kFieldName, serverSidePath, cancel, resultWord, &information);
        // Here and below the lines carry the other function's name; they must.
        if (dwStatus == 0 && *resultWord == 0 && split.name != information.szPathName) {
            call.line(
                "[WFM] WFMGetFolderInformation: WFMGetFolderInformation path not "
                "sync(PathInfo.szPathName=%ls)(DestPathName=%ls)",
                information.szPathName, split.name.c_str());
            return call.leave(WFM_PARSE_XML_FAIL);
        }
        *isPresent = dwStatus == 0 && (*resultWord == 0 || *resultWord == ERROR_ACCESS_DENIED);
        if (*isPresent) return call.leave(dwStatus);
    }
    call.line("[WFM] WFMGetFolderInformation: WFMGetFolderInformation failed(dwParseStatus=%d)(dwResult=%d)",
              static_cast<int>(dwStatus), static_cast<int>(*resultWord));
    return call.leave(dwStatus);
}
