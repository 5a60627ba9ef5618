#pragma once

#include "core/callframe.h"

namespace Lattice {

/// Ends a session at the server. `place` gets the session id; `refusal` is the line of an answer that isn't a
/// plain yes, with status and result.
uint32_t Logout(const CallRules& rules, const wchar_t* place, const char* refusal, const wchar_t* server,
                uint32_t port, bool force, const _WFM_AUTH_CONTEXT& context);

}  // namespace Lattice
