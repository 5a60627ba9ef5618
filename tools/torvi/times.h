#pragma once

#include <QString>
#include <cstdint>

namespace torvi {

/// A time as the options take it: "now", seconds since 1970, or ISO 8601. Throws the usage failure of `what`.
int64_t parseTime(const QString& what, const QString& text);

}  // namespace torvi
