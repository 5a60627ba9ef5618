#pragma once

#include "failure.h"

namespace torvi {

/// What the two numbers of a call that makes, changes or mails links mean.
Failure linkFailure(const QString& what, uint32_t dwStatus, uint32_t resultWord);
/// Throws it unless both are 0.
void checkLink(const QString& what, uint32_t dwStatus, uint32_t resultWord);

}  // namespace torvi
