#pragma once

#include "files/MapTeamFolderPath.h"

namespace Lattice {

/// The two ends of a rename or move, on the server.
struct TwoPaths {
    RemotePath source;  ///< apart, in parent and name
    RemotePath destination;
    std::wstring sourcePlace;  ///< in one text
    std::wstring destinationPlace;
    /// Neither a share at the top, nor into a place without a name. A later step would take the wrong object.
    bool denied;
};

/// Maps both paths, each by itself; one "/" at their ends doesn't count.
TwoPaths MapTwoPaths(const _WFM_AUTH_CONTEXT& context, const wchar_t* source, const wchar_t* destination);

}  // namespace Lattice
