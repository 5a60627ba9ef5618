#pragma once

#include <string>

#include "core/callframe.h"

namespace Lattice {

/// A key at the end of a query, as "&key=" and its value; nothing without a value.
inline std::wstring OptionalKey(const wchar_t* key, const wchar_t* value) {
    return IsGiven(value) ? key + Encoded(value) : std::wstring();
}

/// The one that says which NAS holds the share.
inline std::wstring OfNas(const wchar_t* nasID) {
    return OptionalKey(L"&nas_id=", nasID);
}

}  // namespace Lattice
