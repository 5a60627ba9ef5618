// Start and end of the library: both families share one logger, so the first to name a file wins it.

#include "WebFileManShareAPI.h"
#include "core/qclogger.h"

using Lattice::Logger;
using Lattice::LogLine;

namespace {

void OpenLog(uint32_t level, QString logDir, const char* fileName, bool logToFile, bool append) {
    Logger& logger = Logger::getInstance();
    if (logToFile) {
        if (!logDir.endsWith('/')) logDir += '/';
        logger.InitLogFile(logDir + fileName, append, true);
    }
    logger.setLevels(Logger::LogLevels(static_cast<int>(level)));
}

uint32_t UpdateLevel(uint32_t level) {
    Logger::getInstance().setLevels(Logger::LogLevels(static_cast<int>(level)));
    return 0;
}

uint32_t ReOpenLog() {
    Logger::getInstance().Reopen();
    return 0;
}

uint32_t ClearLog() {
    Logger::getInstance().clearLog();
    return 0;
}

}  // namespace

uint32_t WFMInitialization(uint32_t level, QString logDir, bool logToFile, bool append) {
    OpenLog(level, std::move(logDir), "TorviWFMLibLog.log", logToFile, append);
    LogLine(Logger::Trace, "[WFM] WFMInitialization: DebugLevel=%d, Append=%d, FenkLevel=%d",
            static_cast<int>(level), append, static_cast<int>(level));
    return 0;
}

uint32_t WFMShareInitialization(uint32_t level, QString logDir, bool logToFile, bool append) {
    OpenLog(level, std::move(logDir), "TorviWFMShareLibLog.log", logToFile, append);
    LogLine(Logger::Trace, "[WFMShare] WFMShareInitialization: DebugLevel=%d, Append=%d, FenkLevel=%d",
            static_cast<int>(level), append, static_cast<int>(level));
    return 0;
}

uint32_t WFMUnInitialization() {
    LogLine(Logger::Trace, "[WFM] WFMUnInitialization");
    Logger::getInstance().finish();
    return 0;
}

uint32_t WFMShareUnInitialization() {
    LogLine(Logger::Trace, "[WFMShare] WFMShareUnInitialization");
    Logger::getInstance().finish();
    return 0;
}

uint32_t WFMUpdateDebugLevel(uint32_t level) {
    return UpdateLevel(level);
}
uint32_t WFMShareUpdateDebugLevel(uint32_t level) {
    return UpdateLevel(level);
}
uint32_t WFMReOpenLogFile() {
    return ReOpenLog();
}
uint32_t WFMShareReOpenLogFile() {
    return ReOpenLog();
}
uint32_t WFMClearLog() {
    return ClearLog();
}
uint32_t WFMShareClearLog() {
    return ClearLog();
}
