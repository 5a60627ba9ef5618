#pragma once

#include "core/callframe.h"
#include "files/MapTeamFolderPath.h"

namespace Lattice {

/// Where a path lies on the server; the call's request goes to the node that holds it.
RemotePath RouteTo(Call& call, const wchar_t* slaveID, const std::wstring& parent, const std::wstring& name);
/// The same for a path that is given in one text and travels as parent and name.
RemotePath RouteTo(Call& call, const wchar_t* slaveID, const wchar_t* path);

}  // namespace Lattice
