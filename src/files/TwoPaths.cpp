#include "files/TwoPaths.h"

#include "core/Utils.h"

namespace Lattice {

namespace {

/// A path in parent and name; at the top level there is no parent.
RemotePath Apart(const RemotePath& whole) {
    const SplitPath split = SplitAtLastSlash(whole.parent);
    return {split.parent, split.name, whole.slaveID};
}

/// What is left without its one "/" at the end has no name of its own.
bool IsNameless(const std::wstring& path) {
    return path.empty() || path.back() == L'/';
}

}  // namespace

TwoPaths MapTwoPaths(const _WFM_AUTH_CONTEXT& context, const wchar_t* source, const wchar_t* destination) {
    const std::wstring given[] = {WithoutTrailingSlash(source), WithoutTrailingSlash(destination)};
    const RemotePath from = MapTeamFolderPath(context, given[0]);
    const RemotePath to = MapTeamFolderPath(context, given[1]);
    TwoPaths paths{Apart(from), Apart(to), from.parent, to.parent, false};
    // A destination without any "/" takes both texts as names, and that must stay.
    const bool destinationIsName = paths.destinationPlace.find(L'/') == std::wstring::npos;
    paths.denied = paths.source.parent.empty() || IsNameless(given[0]) || IsNameless(given[1]) ||
                   (paths.destination.parent.empty() && !destinationIsName);
    if (destinationIsName) paths.source = {{}, paths.sourcePlace, from.slaveID};
    return paths;
}

}  // namespace Lattice
