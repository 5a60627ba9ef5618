#include "core/callframe.h"
#include "files/PathRecord.h"

using namespace Lattice;

uint32_t WFMIsPathDirectory(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                            const wchar_t* slaveID, const wchar_t* path, bool* cancel, uint32_t* resultWord,
                            bool* isDirectory) {
    static constexpr auto rules = CallRules("[WFM] WFMIsPathDirectory");
    Call call(rules, context, server, port);
    if (!call.accepts(path, resultWord, isDirectory)) return call.refuse();
    call.begin(resultWord);
    *isDirectory = false;

    const SplitPath split = SplitAtLastSlash(path);
    _WFM_PATH_INFORMATION information;
    const uint32_t dwStatus = WFMGetPathInformation(
        context, server, port, slaveID, split.name.c_str(), split.parent.c_str(), kFieldIsFolder,
        kTypeFiles | kTypeFolders, false, cancel, resultWord, &information);
    if (dwStatus == 0 && *resultWord == 0)
        *isDirectory = information.bIsFolder;
    else if (*resultWord != ERROR_PATH_NOT_FOUND)
        call.line("[WFM] WFMIsPathDirectory: WFMGetPathInformation failed(dwParseStatus=%d)(dwStatus=%d)",
                  static_cast<int>(dwStatus), static_cast<int>(*resultWord));
    return call.leave(dwStatus);
}
