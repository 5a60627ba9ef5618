#pragma once

#include <string>

namespace nas {

// What users typed stands in a query as it is, as far as a URL can hold that, but the HTTP library behind the
// CGIs takes no second "?". So the relay hides all but the first from it.
std::string hideQuestionMarks(const std::string& target);
std::string showQuestionMarks(std::string target);

}  // namespace nas
