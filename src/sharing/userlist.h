#pragma once

#include <algorithm>
#include <string>

#include "core/callframe.h"

namespace Lattice {

/// Where users are looked up.
enum UserType : uint32_t { kLocalUsers = 1, kDirectoryUsers = 2 };

/// The directory that a question names: none for local users.
struct Directory {
    std::wstring netbios;
    std::wstring domain;
};
inline Directory DirectoryOf(uint32_t userType, const wchar_t* netbios, const wchar_t* domain) {
    if (userType == kLocalUsers) return {};
    return {Encoded(netbios), Encoded(domain)};
}

/// A text from new[] for the caller to delete.
inline wchar_t* HandOverAnyText(const std::wstring& text) {
    auto* const copy = new wchar_t[text.size() + 1];
    std::copy_n(text.c_str(), text.size() + 1, copy);
    return copy;
}
/// The same; null for an empty one.
inline wchar_t* HandOverText(const std::wstring& text) {
    return text.empty() ? nullptr : HandOverAnyText(text);
}

}  // namespace Lattice
