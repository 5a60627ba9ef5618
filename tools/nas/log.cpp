#include "log.h"

#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <mutex>

#include "time_text.h"

namespace nas {

std::string visible(const std::string& text) {
    std::string out;
    out.reserve(text.size());
    for (unsigned char c : text) {
        if (c < 0x20 || c == 0x7f) {
            char hex[5];
            std::snprintf(hex, sizeof hex, "\\x%02x", c);
            out += hex;
        } else {
            out += static_cast<char>(c);
        }
    }
    return out;
}

void logLine(const std::string& text) {
    static std::mutex mutex;
    std::string line = utcStamp(std::time(nullptr)) + " " + visible(text) + "\n";
    std::lock_guard<std::mutex> lock(mutex);
    for (size_t done = 0; done < line.size();) {
        ssize_t n = ::write(STDERR_FILENO, line.data() + done, line.size() - done);
        if (n <= 0) {
            return;
        }
        done += static_cast<size_t>(n);
    }
}

}  // namespace nas
