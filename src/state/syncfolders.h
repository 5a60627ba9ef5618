#pragma once

#include "WebFileManAPI.h"

namespace Lattice {

/// The server's own status for a list that the user may not see.
inline constexpr int kSyncFoldersDenied = -3;

inline _NAS_SYNCING_FOLDER_INFORMATION EmptySyncFolder() {
    _NAS_SYNCING_FOLDER_INFORMATION record{};
    record.nPrivilege = -1;
    record.llUsed = record.llCapacity = record.llFree = -1;
    return record;
}

}  // namespace Lattice
