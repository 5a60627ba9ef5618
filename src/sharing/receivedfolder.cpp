#include "sharing/receivedfolder.h"

#include "core/Utils.h"
#include "files/MapTeamFolderPath.h"

namespace Lattice {

bool IsInReceivedFolder(const _WFM_AUTH_CONTEXT& context, const wchar_t* path) {
    const bool knowsFolders = context.bUseNuboCGI && context.nTeamFolderCount > 0 &&
                              context.lppOriPathList != nullptr && context.lppTeamFolderPathList != nullptr;
    const std::wstring probe = WithTrailingSlash(path);
    return knowsFolders && BeginsWith(probe, L"/home/.Torvi/") && IndexOfTeamFolder(context, probe) >= 0;
}

}  // namespace Lattice
