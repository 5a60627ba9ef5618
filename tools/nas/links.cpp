#include "links.h"

#include <ctime>

namespace nas {

bool Link::over() const {
    return expires != kNever && expires <= std::time(nullptr);
}

std::string Link::expireText(const char* format) const {
    if (expires == kNever) {
        return "";
    }
    const auto when = static_cast<time_t>(expires);
    struct tm parts {};
    char text[32] = "";
    ::localtime_r(&when, &parts);
    std::strftime(text, sizeof text, format, &parts);
    return text;
}

}  // namespace nas
