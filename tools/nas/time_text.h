#pragma once

#include <cstdint>
#include <string>

namespace nas {

// In a format of strftime: by the local clock, and by universal time.
std::string timeText(int64_t time, const char* format);
std::string utcText(int64_t time, const char* format);

// "2026-12-31T18:00:00Z"
std::string utcStamp(int64_t time);

}  // namespace nas
