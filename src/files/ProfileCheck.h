#pragma once

#include "core/callframe.h"

namespace Lattice {

/// What the client believes an object on the server to be. The server acts only if it still is that.
struct ObjectProfile {
    std::wstring path;  ///< on the server
    int64_t time;       ///< seconds since the epoch
    int64_t size;       ///< bytes
    bool isFolder;      ///< a folder's time and size mean nothing to the check
};

/// The form fields that ask the server to check the profile first.
void AddProfileCheck(Call& call, const ObjectProfile& profile);

/// One of the server's verdicts on a profile that doesn't match.
inline bool IsProfileRefusal(int status) {
    return status <= WFM_PROFILE_PATH && status >= WFM_PROFILE_LAST;
}

}  // namespace Lattice
