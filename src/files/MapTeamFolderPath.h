#pragma once

#include <string>

#include "core/authcontext.h"

namespace Lattice {

/// A path on the server, in the two texts in which requests name it, and the node that holds it.
struct RemotePath {
    std::wstring parent;
    std::wstring name;
    std::wstring slaveID{};   ///< empty when nothing was mapped or nothing is known of nodes
    bool matched = false;     ///< a team folder holds it, whether or not its place is known
    bool mapped = false;      ///< its place is known, and this is it
    bool isTeamRoot = false;  ///< it is that team folder's root, which has no name
};

/// "/home/.Torvi", the virtual folder whose children are the team folders.
bool IsTeamArea(const std::wstring& path);
/// Whether the session has team folders that it can map.
bool HasTeamFolders(const _WFM_AUTH_CONTEXT& context);

/// The index of the team folder that holds a path (with a trailing "/"), or -1. The first entry that is a
/// prefix of the path counts, not the longest.
int32_t IndexOfTeamFolder(const _WFM_AUTH_CONTEXT& context, const std::wstring& path);

/// The node of the team folder that holds a path, whether or not its place is known.
std::wstring SlaveOfTeamFolder(const _WFM_AUTH_CONTEXT& context, const std::wstring& path);

/// Where a path of the client's tree lies on the server. A path that no team folder holds stays as it is.
RemotePath MapTeamFolderPath(const _WFM_AUTH_CONTEXT& context, const std::wstring& parent,
                             const std::wstring& name);
/// The same for requests that name the path in one text, which comes back in `parent`.
RemotePath MapTeamFolderPath(const _WFM_AUTH_CONTEXT& context, const std::wstring& path);

}  // namespace Lattice
