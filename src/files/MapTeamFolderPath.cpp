#include "files/MapTeamFolderPath.h"

#include <cwchar>
#include <optional>

#include "core/Utils.h"

namespace Lattice {

namespace {

constexpr wchar_t kTeamArea[] = L"/home/.Torvi/";

/// The team folder that holds a path.
struct Found {
    std::wstring serverPath;  ///< with its trailing "/"; empty when its place isn't known
    std::wstring slaveID;
    std::wstring remainder;  ///< what follows the team folder, without a trailing "/"

    std::wstring root() const { return serverPath.substr(0, serverPath.size() - 1); }
};

std::optional<Found> Find(const _WFM_AUTH_CONTEXT& context, const std::wstring& path) {
    const std::wstring probe = WithTrailingSlash(path);
    const std::wstring area = kTeamArea;
    if (!HasTeamFolders(context) || probe.size() <= area.size() || !BeginsWith(probe, area)) return {};

    const int32_t index = IndexOfTeamFolder(context, probe);
    if (index < 0) return {};
    return Found{TeamListEntry(context.lppTeamFolderPathList, index),
                 TeamListEntry(context.lppTeamFolderSlaveIDList, index),
                 WithoutTrailingSlash(probe.substr(std::wcslen(context.lppOriPathList[index])))};
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

int32_t IndexOfTeamFolder(const _WFM_AUTH_CONTEXT& context, const std::wstring& path) {
    for (int32_t i = 0; i < context.nTeamFolderCount; ++i)
        if (context.lppOriPathList[i] != nullptr && BeginsWith(path, context.lppOriPathList[i])) return i;
    return -1;
}

std::wstring SlaveOfTeamFolder(const _WFM_AUTH_CONTEXT& context, const std::wstring& path) {
    const auto found = Find(context, path);
    return found ? found->slaveID : std::wstring();
}

RemotePath MapTeamFolderPath(const _WFM_AUTH_CONTEXT& context, const std::wstring& parent,
                             const std::wstring& name) {
    const auto found = Find(context, WithTrailingSlash(parent) + name);
    if (!found || found->serverPath.empty()) return {parent, name, {}, found.has_value()};
    if (found->remainder.empty()) return {found->root(), {}, found->slaveID, true, true, true};
    if (found->remainder.find(L'/') == std::wstring::npos)
        return {found->root(), name, found->slaveID, true, true};
    return {found->serverPath + SplitAtLastSlash(found->remainder).parent, name, found->slaveID, true, true};
}

RemotePath MapTeamFolderPath(const _WFM_AUTH_CONTEXT& context, const std::wstring& path) {
    const auto found = Find(context, path);
    if (!found || found->serverPath.empty()) return {path, {}, {}, found.has_value()};
    if (found->remainder.empty()) return {found->root(), {}, found->slaveID, true, true, true};
    return {found->serverPath + found->remainder, {}, found->slaveID, true, true};
}

}  // namespace Lattice
