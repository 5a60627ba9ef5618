#include "support/logcapture.h"

#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QString>
#include <algorithm>
#include <cstdio>
#include <mutex>
#include <ostream>
#include <stdexcept>

#include "WebFileManAPI.h"

namespace {

struct Captured {
    std::mutex mutex;
    std::vector<std::string> debug, warnings;
    QtMessageHandler previous = nullptr;
    bool active = false;
};

Captured& captured() {
    static Captured instance;
    return instance;
}

void captureHandler(QtMsgType type, const QMessageLogContext&, const QString& message) {
    const std::string text = message.toStdString();
    std::lock_guard lock(captured().mutex);
    if (type == QtDebugMsg) {
        captured().debug.push_back(text);
    } else {
        captured().warnings.push_back(text);
        std::fprintf(stderr, "%s\n", text.c_str());
    }
}

LogLine parsed(const std::string& text) {
    static const QRegularExpression head(R"(^\[([01]\d|2[0-3]):[0-5]\d:[0-5]\d\] \[([A-Za-z]+)\] )");
    const QRegularExpressionMatch match = head.match(QString::fromStdString(text));
    if (!match.hasMatch()) return {"", text};
    // The head is ASCII: its length counts bytes as well.
    return {match.captured(2).toStdString(), text.substr(static_cast<std::size_t>(match.capturedLength()))};
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const LogLine& line) {
    return out << "[" << (line.level.empty() ? "no line of the library" : line.level) << "] " << line.text;
}

LogCapture::LogCapture(std::uint32_t levels) : m_levels(levels) {
    if (captured().active) throw std::logic_error("one LogCapture at a time");
    WFMUpdateDebugLevel(0);  // the end is Trace: it would be a line of its own
    WFMUnInitialization();
    clear();
    captured().active = true;
    captured().previous = qInstallMessageHandler(captureHandler);
    WFMUpdateDebugLevel(m_levels);
}

LogCapture::~LogCapture() {
    WFMUpdateDebugLevel(0);
    WFMUnInitialization();
    qInstallMessageHandler(captured().previous);
    WFMUpdateDebugLevel(32);
    captured().active = false;
    std::lock_guard lock(captured().mutex);
    captured().debug.clear();
    captured().warnings.clear();
}

void LogCapture::flush() {
    WFMUpdateDebugLevel(0);
    WFMUnInitialization();
    WFMUpdateDebugLevel(m_levels);
}

std::vector<LogLine> LogCapture::lines() {
    flush();
    std::lock_guard lock(captured().mutex);
    std::vector<LogLine> lines;
    for (const std::string& text : captured().debug) lines.push_back(parsed(text));
    return lines;
}

std::vector<std::string> LogCapture::texts() {
    std::vector<std::string> texts;
    for (LogLine& line : lines()) texts.push_back(std::move(line.text));
    return texts;
}

void LogCapture::expectLines(std::initializer_list<LogLine> expected, const char* file, int where) {
    const testing::ScopedTrace trace(file, where, "log lines");
    EXPECT_EQ(lines(), std::vector<LogLine>(expected));
}

void LogCapture::expectNoLines(const char* file, int where) {
    expectLines({}, file, where);
}

void LogCapture::clear() {
    if (captured().active) flush();
    std::lock_guard lock(captured().mutex);
    captured().debug.clear();
    captured().warnings.clear();
}

void LogCapture::setLevels(std::uint32_t levels) {
    m_levels = levels;
    WFMUpdateDebugLevel(levels);
}

std::vector<std::string> LogCapture::qtWarnings() {
    flush();
    std::lock_guard lock(captured().mutex);
    return captured().warnings;
}
