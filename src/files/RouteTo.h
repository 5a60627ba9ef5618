#pragma once

#include "core/callframe.h"
#include "files/MapTeamFolderPath.h"

namespace Lattice {

/// Where a path lies on the server; the call's request goes to the node that holds it.
RemotePath RouteTo(Call& call, const wchar_t* slaveID, const std::wstring& parent, const std::wstring& name);
/// The same for a path that is given in one text and travels as parent and name.
RemotePath RouteTo(Call& call, const wchar_t* slaveID, const wchar_t* path);
/// The node that a path's request names: the one that holds it, or the caller's.
inline const wchar_t* NodeOf(const RemotePath& path, const wchar_t* slaveID) {
    return path.slaveID.empty() ? slaveID : path.slaveID.c_str();
}
/// A path in one text: where it was mapped to, or as the caller gave it.
std::wstring PlaceOf(const RemotePath& path, const wchar_t* given);

}  // namespace Lattice
