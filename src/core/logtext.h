#pragma once

#include <QString>
#include <cstdarg>

namespace Lattice {

/// Text by a printf format in UTF-8, of any length and the same in every locale: %s takes UTF-8, %ls and %lc
/// wide characters, whatever their plane; a null text prints as nothing. A conversion that isn't known stands
/// as it is, and those of floating-point numbers aren't known.
QString LogText(const char* format, va_list arguments) __attribute__((format(printf, 1, 0)));

}  // namespace Lattice
