#pragma once

#include <json/value.h>

namespace Lattice {

/// No code that the directory service answers.
inline constexpr int kNoCloudCode = -1;

/// The "code" by which a reply of the device directory says whether it worked; 0 is its success.
int CloudCodeOf(const Json::Value& root);
/// The same in the client's numbers: 3, 4 and 5 for the codes that are told apart, 1 for every other failure.
int CloudStatusOf(int code);

}  // namespace Lattice
