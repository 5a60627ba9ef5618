#pragma once

#include <QString>
#include <cstdint>

#include "failure.h"

namespace torvi {

const char* dwStatusName(uint32_t dwStatus);
const char* resultName(int32_t resultWord);

/// What a call's two numbers mean, as the failure of `what`. Not for a call that succeeded.
Failure callFailure(const QString& what, uint32_t dwStatus, uint32_t resultWord);
/// Throws it unless both are 0. A call that failed after Ctrl-C was cancelled.
void check(const QString& what, uint32_t dwStatus, uint32_t resultWord);
/// The same for a call that carries a profile of the object that it acts on.
Failure checkedFailure(const QString& what, uint32_t dwStatus, uint32_t resultWord);
/// The same for a login, where a refusal comes as a status of its own.
Failure loginFailure(const QString& what, uint32_t dwStatus, uint32_t resultWord);
/// The same for a call whose result word is the server's own status.
Failure rawFailure(const QString& what, uint32_t dwStatus, uint32_t serverStatus);
/// The same for a call without a result word.
Failure statusFailure(const QString& what, uint32_t dwStatus);

}  // namespace torvi
