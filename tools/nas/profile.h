#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tree.h"
#include "wire_text.h"

namespace nas {

// The forms of a call: without the profile check, and with it for a file and for a folder.
std::vector<Shape> withProfile(const Shape& plain);

// What the client believes of the object at path and name, against what is there. Throws the verdict.
void checkProfile(const Fields& form, const std::string& path, const std::string& name,
                  const std::optional<Entry>& found);

}  // namespace nas
