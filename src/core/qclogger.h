#pragma once

// Interface agreed between the callers and the logger; see qclogger.cpp.

#include <QMutex>
#include <QObject>
#include <QString>
#include <cstdarg>

namespace Lattice {

class LoggerFile;

class Logger : public QObject {
    Q_OBJECT

public:
    enum LogLevel {
        NoLevel = 0, Trace = 1, Performance = 2, Debug = 4, Info = 8, Warning = 16, Error = 32, All = 63
    };
    Q_DECLARE_FLAGS(LogLevels, LogLevel)
    Q_FLAG(LogLevels)

    static Logger& getInstance();

    void printLog(LogLevel level, const char* format, ...) __attribute__((format(printf, 3, 4)));
    void vprintLog(LogLevel level, const char* format, va_list arguments) __attribute__((format(printf, 3, 0)));
    static QString logLevelToString(LogLevel level);

    bool InitLogFile(QString path, bool append, bool toFile);
    void Reopen();
    void clearLog();
    void updatetoUI(QObject* receiver);

    void setLevels(LogLevels levels);
    bool enabled(LogLevel level) const;

    /// Writes every line posted so far, ends the thread and closes the file. The logger starts afresh with the next line.
    void finish();

signals:
    void updateLog(QString log);

public slots:
    void processLog(QString log);
};

/// The guarded road to the log: one line, if its level is on.
void LogLine(Logger::LogLevel level, const char* format, ...) __attribute__((format(printf, 2, 3)));

}  // namespace Lattice
