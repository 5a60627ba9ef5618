#pragma once

#include "core/Utils.h"

namespace Lattice {

/// The wide characters that a caller's buffer for a server's id must have.
inline constexpr size_t kIDCapacity = 260;

/// A server's id into such a buffer, cut at 259 characters.
inline void CopyID(wchar_t* out, const std::wstring& id) {
    CopyTextCut(out, kIDCapacity, id);
}

}  // namespace Lattice
