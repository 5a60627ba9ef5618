#pragma once

#include <string>

#include "core/callframe.h"
#include "core/handover.h"

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

}  // namespace Lattice
