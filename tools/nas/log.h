#pragma once

#include <string>

namespace nas {

// One line on stderr, whole even when threads write at once. Control characters are made visible.
void logLine(const std::string& text);

std::string visible(const std::string& text);

}  // namespace nas
