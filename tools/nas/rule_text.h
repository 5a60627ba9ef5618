#pragma once

#include <string>
#include <vector>

namespace nas {

// What stands between the colons of a rule of the command line: at most so many pieces, of which the last
// one takes the rest.
std::vector<std::string> splitRule(const std::string& rule, size_t most);

}  // namespace nas
