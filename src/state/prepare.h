#pragma once

namespace Lattice {

/// Where a server says who it is, before any login: on the sync service and at the old place.
inline constexpr wchar_t kPrepareSyncService[] = L"/cgi-bin/torvi/torvisrvPrepare.cgi?user=%ls";
inline constexpr wchar_t kPrepareFileManager[] = L"/cgi-bin/filemanager/torviPrepare.cgi?user=%ls";

inline constexpr int kHttpFound = 302;
inline constexpr int kHttpNotFound = 404;

}  // namespace Lattice
