#include "links.h"

#include <ctime>

namespace nas {

bool Link::over() const {
    return expires != kNever && expires <= std::time(nullptr);
}

std::string timeText(int64_t time, const char* format) {
    const auto when = static_cast<time_t>(time);
    struct tm parts {};
    char text[32] = "";
    ::localtime_r(&when, &parts);
    std::strftime(text, sizeof text, format, &parts);
    return text;
}

std::string Link::expireText(const char* format) const {
    return expires == kNever ? "" : timeText(expires, format);
}

}  // namespace nas
