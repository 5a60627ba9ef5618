#pragma once

#include <cstdint>
#include <initializer_list>
#include <iosfwd>
#include <string>
#include <vector>

/// One line of the library, without its time.
struct LogLine {
    LogLine(const char* errorText) : level("Error"), text(errorText) {}
    LogLine(std::string errorText) : level("Error"), text(std::move(errorText)) {}
    LogLine(std::string levelName, std::string lineText)
        : level(std::move(levelName)), text(std::move(lineText)) {}

    std::string level;  ///< "Error", "Trace", ...; empty for debug output that isn't the library's
    std::string text;

    bool operator==(const LogLine& other) const { return level == other.level && text == other.text; }
};
std::ostream& operator<<(std::ostream& out, const LogLine& line);

/// Catches what the library logs, through Qt's debug output. One at a time.
class LogCapture {
public:
    /// Starts afresh: lines of an earlier test don't come here, the level mask is `levels`.
    explicit LogCapture(std::uint32_t levels = 32);
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// Ends the logger, so that every line posted so far is here, and gives the lines since the last clear().
    /// The logger starts again with the next line and keeps the capture's mask, but not its file.
    std::vector<LogLine> lines();
    std::vector<std::string> texts();
    /// Exactly these lines in this order. A plain text stands for a line at level Error.
    void expectLines(std::initializer_list<LogLine> expected, const char* file = __builtin_FILE(),
                     int where = __builtin_LINE());
    void expectNoLines(const char* file = __builtin_FILE(), int where = __builtin_LINE());
    void clear();
    void setLevels(std::uint32_t levels);

    /// What Qt itself complained about, such as timers on the wrong thread.
    std::vector<std::string> qtWarnings();

private:
    void flush();

    std::uint32_t m_levels;
};
