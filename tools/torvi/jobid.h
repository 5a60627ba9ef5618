#pragma once

#include <QString>

#include "output.h"

namespace torvi {

/// Null for a job that the server hasn't named.
Json pidJson(const QString& pid);
/// " as job 4711", where there is one to name.
QString asJob(const QString& pid);

}  // namespace torvi
