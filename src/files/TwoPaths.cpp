#include "files/TwoPaths.h"

#include "core/Utils.h"

namespace Lattice {

namespace {

/// A path in parent and name; at the top level there is no parent.
RemotePath Apart(const RemotePath& whole) {
    const SplitPath split = SplitAtLastSlash(whole.parent);
    return {split.parent, split.name, whole.slaveID, whole.matched};
}

}  // namespace

TwoPaths MapTwoPaths(const _WFM_AUTH_CONTEXT& context, const wchar_t* source, const wchar_t* destination) {
    const RemotePath from = MapTeamFolderPath(context, WithoutTrailingSlash(source));
    const RemotePath to = MapTeamFolderPath(context, WithoutTrailingSlash(destination));
    TwoPaths paths{Apart(from), Apart(to), from.parent, to.parent, false};
    // A destination without any "/" takes both texts as names, and that must stay.
    const bool destinationIsName = paths.destinationPlace.find(L'/') == std::wstring::npos;
    paths.denied = paths.source.parent.empty() || paths.source.name.empty() ||
                   paths.destination.name.empty() || (paths.destination.parent.empty() && !destinationIsName);
    if (destinationIsName) paths.source = {{}, paths.sourcePlace, from.slaveID, from.matched};
    return paths;
}

}  // namespace Lattice
