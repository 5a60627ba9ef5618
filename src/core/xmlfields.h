#pragma once

#include <QString>
#include <functional>

namespace Lattice {

/// Walks an XML reply: `take` gets the name of each element and its text, wherever it stands. False for text
/// that isn't well-formed.
bool WalkXml(const char* text, const std::function<void(const QString& name, const QString& value)>& take);

}  // namespace Lattice
