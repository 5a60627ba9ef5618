#include "time_text.h"

#include <ctime>

namespace nas {

namespace {

using Parts = struct tm* (*)(const time_t*, struct tm*);

std::string formatted(int64_t time, const char* format, Parts partsOf) {
    const auto when = static_cast<time_t>(time);
    struct tm parts {};
    char text[64] = "";
    partsOf(&when, &parts);
    std::strftime(text, sizeof text, format, &parts);
    return text;
}

}  // namespace

std::string timeText(int64_t time, const char* format) {
    return formatted(time, format, ::localtime_r);
}

std::string utcText(int64_t time, const char* format) {
    return formatted(time, format, ::gmtime_r);
}

std::string utcStamp(int64_t time) {
    return utcText(time, "%Y-%m-%dT%H:%M:%SZ");
}

}  // namespace nas
