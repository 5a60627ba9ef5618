#include "files/RouteTo.h"

namespace Lattice {

RemotePath RouteTo(Call& call, const wchar_t* slaveID, const std::wstring& parent, const std::wstring& name) {
    RemotePath path = MapTeamFolderPath(call.context(), parent, name);
    call.route(slaveID, path.slaveID);
    return path;
}

RemotePath RouteTo(Call& call, const wchar_t* slaveID, const wchar_t* path) {
    const SplitPath split = SplitAtLastSlash(path);
    return RouteTo(call, slaveID, split.parent, split.name);
}

std::wstring PlaceOf(const RemotePath& path, const wchar_t* given) {
    if (!path.mapped) return given;
    return path.name.empty() ? path.parent : path.parent + L"/" + path.name;
}

}  // namespace Lattice
