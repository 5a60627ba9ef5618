#pragma once

#include <sys/types.h>
#include <QFlags>
#include <QMetaType>
#include <QMutex>
#include <QObject>
#include <QString>
#include <atomic>
#include <condition_variable>
#include <cstdarg>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace Lattice {

class LoggerFile;

/// The log of the process. Lines are formed on the caller's thread and written on the logger's own, which
/// lives from the first line to `finish`. The object itself lives for ever, so a late call never meets a dead
/// logger.
class Logger : public QObject {
    Q_OBJECT

public:
    enum LogLevel {
        NoLevel = 0,
        Trace = 1,
        Performance = 2,
        Debug = 4,
        Info = 8,
        Warning = 16,
        Error = 32,
        All = 63
    };
    Q_ENUM(LogLevel)
    Q_DECLARE_FLAGS(LogLevels, LogLevel)
    Q_FLAG(LogLevels)

    static Logger& getInstance();

    /// Posts one line, whatever the levels are: callers test `enabled`, or use `LogLine`.
    void printLog(LogLevel level, const char* format, ...) __attribute__((format(printf, 3, 4)));
    void vprintLog(LogLevel level, const char* format, va_list arguments)
        __attribute__((format(printf, 3, 0)));
    static QString logLevelToString(LogLevel level);

    /// True if this call made the file: the first path stays until `finish`. `toFile` is always stored.
    bool InitLogFile(QString path, bool append, bool toFile);
    void Reopen();
    void clearLog();
    /// Every line goes to the receiver's slot `processLog(QString)` too, queued.
    void updatetoUI(QObject* receiver);

    void setLevels(LogLevels levels);
    bool enabled(LogLevel level) const;

    /// Writes every line posted so far, ends the thread and closes the file. The logger starts afresh with
    /// the next line. On the logger's own thread it returns at once and takes effect when the line is done.
    void finish();

signals:
    void updateLog(QString log);

public slots:
    /// Writes one line to debug output and to the file. Runs on the logger's thread.
    void processLog(QString log);

private:
    struct AtExit;

    Logger();
    ~Logger() override;

    void post(QString line);
    void startThread();
    void requestStop();
    void work();
    void closeFile();
    bool inForkedChild() const;
    void closeForGood();

    std::atomic<int> m_levels{Error};

    // Guards the file.
    QMutex m_fileMutex;
    std::unique_ptr<LoggerFile> m_file;
    bool m_toFile = false;

    // Guards what follows. The lines stand in a queue of our own: Qt's needs an application to be alive.
    std::mutex m_mutex;
    std::condition_variable m_posted;
    std::condition_variable m_ended;
    std::deque<QString> m_lines;
    // Not a QThread: those are detached, so having waited for one doesn't mean that it is gone.
    std::thread m_thread;                ///< joinable while it runs
    std::vector<std::thread> m_retired;  ///< ended, still to be joined
    bool m_stopping = false;
    size_t m_linesBeforeStop = 0;
    unsigned long long m_generation = 0;
    std::atomic<pid_t> m_process{0};    ///< whose thread it is
    std::atomic<bool> m_closed{false};  ///< the process is ending
};

Q_DECLARE_OPERATORS_FOR_FLAGS(Logger::LogLevels)

/// The guarded road to the log: one line, if its level is on.
void LogLine(Logger::LogLevel level, const char* format, ...) __attribute__((format(printf, 2, 3)));

}  // namespace Lattice
