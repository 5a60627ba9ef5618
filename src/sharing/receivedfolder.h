#pragma once

#include <string>

#include "core/authcontext.h"

namespace Lattice {

/// Whether a path lies in a team folder that this user received from somebody else. Nobody shares on what
/// they received.
bool IsInReceivedFolder(const _WFM_AUTH_CONTEXT& context, const wchar_t* path);

}  // namespace Lattice
