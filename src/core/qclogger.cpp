#include "core/qclogger.h"

#include <unistd.h>

#include <QDebug>
#include <QLoggingCategory>
#include <QMetaEnum>
#include <QTextCodec>
#include <QTime>
#include <new>
#include <system_error>
#include <utility>

#include "core/loggerfile.h"
#include "core/logtext.h"

namespace Lattice {

namespace {

thread_local bool onLoggerThread = false;

/// By hand: the calendar of QTime::toString() may be gone while a thread still logs in an ending process.
QString timeOfDay() {
    const QTime now = QTime::currentTime();
    return QString::asprintf("%02d:%02d:%02d", now.hour(), now.minute(), now.second());
}

}  // namespace

/// Ends the logger with the process, for those who never did.
struct Logger::AtExit {
    AtExit() {
        // Made now, these outlive this object, so the last lines can still be written.
        QTextCodec::codecForName("UTF-8");
        QLoggingCategory::defaultCategory();
    }
    ~AtExit() { getInstance().closeForGood(); }
};

Logger::Logger() {
    qRegisterMetaType<Lattice::Logger::LogLevel>("Lattice::Logger::LogLevel");
    qRegisterMetaType<Lattice::Logger::LogLevels>("Lattice::Logger::LogLevels");
}

Logger::~Logger() = default;

Logger& Logger::getInstance() {
    alignas(Logger) static unsigned char storage[sizeof(Logger)];
    static Logger* const logger = new (storage) Logger;
    static AtExit atExit;
    return *logger;
}

void Logger::printLog(LogLevel level, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    vprintLog(level, format, arguments);
    va_end(arguments);
}

void Logger::vprintLog(LogLevel level, const char* format, va_list arguments) {
    const QString line =
        QStringLiteral("[%1] [%2] ").arg(timeOfDay(), logLevelToString(level)) + LogText(format, arguments);
    emit updateLog(line);
    post(line);
}

QString Logger::logLevelToString(LogLevel level) {
    return QString::fromLatin1(QMetaEnum::fromType<LogLevel>().valueToKey(level));
}

bool Logger::InitLogFile(QString path, bool append, bool toFile) {
    QMutexLocker lock(&m_fileMutex);
    m_toFile = toFile;
    if (path.isEmpty() || m_file || m_closed) {
        return false;
    }
    m_file = std::make_unique<LoggerFile>(std::move(path), append);
    return true;
}

void Logger::Reopen() {
    QMutexLocker lock(&m_fileMutex);
    if (m_file) {
        m_file->Reopen();
    }
}

void Logger::clearLog() {
    QMutexLocker lock(&m_fileMutex);
    if (m_file) {
        m_file->clearLog();
    }
}

void Logger::updatetoUI(QObject* receiver) {
    if (receiver) {
        connect(this, SIGNAL(updateLog(QString)), receiver, SLOT(processLog(QString)), Qt::QueuedConnection);
    }
}

void Logger::setLevels(LogLevels levels) {
    m_levels = static_cast<int>(levels);
}

bool Logger::enabled(LogLevel level) const {
    const int levels = m_levels;
    return levels != 0 && (levels & level) != 0;
}

void Logger::processLog(QString log) {
    if (log.isEmpty()) {
        return;
    }
    // Outside the lock: the application's message handler may log itself.
    qDebug().noquote().nospace() << log;
    QMutexLocker lock(&m_fileMutex);
    if (m_toFile && m_file) {
        m_file->Write(log + QLatin1Char('\n'));
    }
}

/// A forked child has the state of the logger but not its thread, and the lock as it stood.
bool Logger::inForkedChild() const {
    return m_process != 0 && m_process != getpid();
}

void Logger::post(QString line) {
    if (inForkedChild()) {
        return;
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_closed) {
        return;
    }
    m_lines.push_back(std::move(line));
    if (m_thread.joinable()) {
        m_posted.notify_one();
    } else {
        startThread();
    }
}

/// Under the lock. If the system has no thread for us, the lines wait for the next try.
void Logger::startThread() {
    try {
        m_thread = std::thread(&Logger::work, this);
        m_process = getpid();
    } catch (const std::system_error&) {
    }
}

/// Under the lock. Lines that come later belong to the next start.
void Logger::requestStop() {
    if (!m_stopping) {
        m_stopping = true;
        m_linesBeforeStop = m_lines.size();
        m_posted.notify_one();
    }
}

void Logger::work() {
    onLoggerThread = true;
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        m_posted.wait(lock, [this] { return m_stopping || !m_lines.empty(); });
        if (m_stopping && m_linesBeforeStop == 0) {
            break;
        }
        const QString line = std::move(m_lines.front());
        m_lines.pop_front();
        if (m_stopping) {
            --m_linesBeforeStop;
        }
        lock.unlock();
        processLog(line);
        lock.lock();
    }
    lock.unlock();
    closeFile();
    lock.lock();
    m_retired.push_back(std::move(m_thread));
    m_stopping = false;
    ++m_generation;
    if (!m_lines.empty() && !m_closed) {
        startThread();
    }
    m_ended.notify_all();
}

void Logger::closeFile() {
    disconnect(this, SIGNAL(updateLog(QString)), nullptr, nullptr);
    QMutexLocker lock(&m_fileMutex);
    m_file.reset();
    m_toFile = false;
    m_levels = Error;
}

void Logger::finish() {
    if (inForkedChild()) {
        return;
    }
    std::vector<std::thread> retired;
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        if (onLoggerThread) {
            if (m_thread.joinable()) {
                requestStop();
            }
            return;
        }
        m_ended.wait(lock, [this] { return !m_stopping; });
        if (m_thread.joinable()) {
            requestStop();
            m_ended.wait(lock, [this, generation = m_generation] { return m_generation != generation; });
        } else {
            // Lines stand here only if the system had no thread for them.
            const std::deque<QString> lines = std::exchange(m_lines, {});
            lock.unlock();
            for (const QString& line : lines) {
                processLog(line);
            }
            closeFile();
            lock.lock();
        }
        retired.swap(m_retired);
    }
    for (std::thread& thread : retired) {
        thread.join();
    }
}

void Logger::closeForGood() {
    if (inForkedChild()) {
        return;
    }
    std::unique_lock<std::mutex> lock(m_mutex);
    m_closed = true;
    if (!onLoggerThread) {
        lock.unlock();
        finish();
        return;
    }
    // The application ends the process from its message handler: this thread can't wait for itself.
    m_linesBeforeStop = 0;
    const std::deque<QString> lines = std::exchange(m_lines, {});
    lock.unlock();
    for (const QString& line : lines) {
        processLog(line);
    }
    closeFile();
}

void LogLine(Logger::LogLevel level, const char* format, ...) {
    Logger& logger = Logger::getInstance();
    if (!logger.enabled(level)) {
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    logger.vprintLog(level, format, arguments);
    va_end(arguments);
}

}  // namespace Lattice
