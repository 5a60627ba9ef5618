#pragma once

#include "context.h"

namespace torvi {

/// dwStatus of a login that was refused, for whatever reason.
constexpr uint32_t kRefusedLogin = 14;

/// Whether a login was refused for want of a second step.
bool wantsSecondStep(uint32_t resultWord);

/// Finishes such a login, with what the options give or else with what the user says on the terminal.
Entrance takeSecondStep(const Connection& connection, const QString& what, uint32_t resultWord);

}  // namespace torvi
