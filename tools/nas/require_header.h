#pragma once

#include <string>

namespace nas {

// Refuses a header that has another value.
void requireHeader(const std::string& name, const std::string& found, const std::string& wanted);

}  // namespace nas
