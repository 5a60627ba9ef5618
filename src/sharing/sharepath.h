#pragma once

#include <optional>

#include "core/Utils.h"

namespace Lattice {

/// Parent and name of a shared folder, one "/" at its end not counted; none for what lies at the top or has
/// no name.
inline std::optional<SplitPath> SplitSharePath(const wchar_t* path) {
    const std::wstring text = WithoutTrailingSlash(path);
    const size_t slash = text.rfind(L'/');
    if (slash == std::wstring::npos || slash == 0) return std::nullopt;
    SplitPath split = SplitAtLastSlash(text);
    if (split.name.empty()) return std::nullopt;
    return split;
}

}  // namespace Lattice
