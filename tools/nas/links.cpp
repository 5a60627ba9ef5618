#include "links.h"

#include <ctime>

#include "time_text.h"

namespace nas {

bool Link::over() const {
    return expires != kNever && expires <= std::time(nullptr);
}

std::string Link::expireText(const char* format) const {
    return expires == kNever ? "" : timeText(expires, format);
}

}  // namespace nas
