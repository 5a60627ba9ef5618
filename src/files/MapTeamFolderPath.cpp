#include "files/MapTeamFolderPath.h"

#include "core/Utils.h"

namespace Lattice {

namespace {

constexpr wchar_t kTeamArea[] = L"/home/.Torvi/";

bool BeginsWith(const std::wstring& text, const std::wstring& beginning) {
    return text.compare(0, beginning.size(), beginning) == 0;
}

/// Where a probed path was found.
struct Found {
    std::wstring serverPath;  ///< of the team folder, with its trailing "/"
    std::wstring slaveID;
    std::wstring remainder;  ///< what follows the team folder, without a trailing "/"

    std::wstring root() const { return serverPath.substr(0, serverPath.empty() ? 0 : serverPath.size() - 1); }
};

/// Walks the lists; the first entry that holds the path wins, and a broken entry ends the walk.
bool Find(const _WFM_AUTH_CONTEXT& context, const std::wstring& path, Found& found) {
    const std::wstring probe = WithTrailingSlash(path);
    const std::wstring area = kTeamArea;
    if (!HasTeamFolders(context) || probe.size() <= area.size() || !BeginsWith(probe, area)) return false;

    for (int32_t i = 0; i < context.nTeamFolderCount; ++i) {
        if (context.lppOriPathList[i] == nullptr) continue;
        const std::wstring clientPath = context.lppOriPathList[i];
        if (!BeginsWith(probe, clientPath)) continue;
        if (context.lppTeamFolderPathList[i] == nullptr) return false;
        found.serverPath = context.lppTeamFolderPathList[i];
        found.slaveID = TeamListEntry(context.lppTeamFolderSlaveIDList, i);
        found.remainder = WithoutTrailingSlash(probe.substr(clientPath.size()));
        return true;
    }
    return false;
}

}  // namespace

bool IsTeamArea(const std::wstring& path) {
    return WithTrailingSlash(path) == kTeamArea;
}

bool HasTeamFolders(const _WFM_AUTH_CONTEXT& context) {
    const bool nodesKnown = context.lppTeamFolderSlaveIDList != nullptr || context.szSlaveID[0] == L'\0';
    return context.bUseNuboCGI && context.nTeamFolderCount > 0 && context.lppTeamFolderPathList != nullptr &&
           nodesKnown && context.lppOriPathList != nullptr;
}

RemotePath MapTeamFolderPath(const _WFM_AUTH_CONTEXT& context, const std::wstring& parent,
                             const std::wstring& name) {
    Found found;
    if (!Find(context, WithTrailingSlash(parent) + name, found)) return {parent, name};
    if (found.remainder.empty()) return {found.root(), {}, found.slaveID, true};
    if (found.remainder.find(L'/') == std::wstring::npos) return {found.root(), name, found.slaveID, true};
    return {found.serverPath + SplitAtLastSlash(found.remainder).parent, name, found.slaveID, true};
}

RemotePath MapTeamFolderPath(const _WFM_AUTH_CONTEXT& context, const std::wstring& path) {
    Found found;
    if (!Find(context, path, found)) return {path, {}};
    return {
        found.remainder.empty() ? found.root() : found.serverPath + found.remainder, {}, found.slaveID, true};
}

}  // namespace Lattice
