#pragma once

#include <QString>
#include <cstdint>

namespace Lattice {

/// The value of the header "X-VEXA-CHECK", by which an application proves that it knows its secret at the
/// time `msec` (since the epoch).
QString Checksum(const wchar_t* appSecret, const wchar_t* appID, int64_t msec, const wchar_t* appVersion);

}  // namespace Lattice
