#include "question_marks.h"

#include <algorithm>

namespace nas {

namespace {

// No URL holds it.
constexpr char kHidden = '\x1a';

}  // namespace

std::string hideQuestionMarks(const std::string& target) {
    const std::string end = "cgi?";
    const size_t at = target.find(end);
    std::string hidden = target;
    if (at != std::string::npos && target.find('?') > at) {
        std::replace(hidden.begin() + static_cast<long>(at + end.size()), hidden.end(), '?', kHidden);
    }
    return hidden;
}

std::string showQuestionMarks(std::string target) {
    std::replace(target.begin(), target.end(), kHidden, '?');
    return target;
}

}  // namespace nas
