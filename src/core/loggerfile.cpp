#include "core/loggerfile.h"

#include <QTextStream>
#include <limits>
#include <utility>

namespace Lattice {

namespace {

constexpr QIODevice::OpenMode kOpenMode =
    QIODevice::ReadWrite | QIODevice::Append | QIODevice::Text | QIODevice::Unbuffered;
constexpr int kLineLimit = 10000;

}  // namespace

LoggerFile::LoggerFile(QString path, bool append)
    : m_path(std::move(path)), m_file(std::make_unique<QFile>(m_path)) {
    if (!open()) {
        m_file.reset();
        return;
    }
    if (!append) {
        clearLog();
        return;
    }
    m_file->seek(0);
    QTextStream lines(m_file.get());
    for (QString line; m_lines < std::numeric_limits<int>::max() && lines.readLineInto(&line);) {
        ++m_lines;
    }
}

LoggerFile::~LoggerFile() {
    if (isOpen() && m_written) {
        Write(QStringLiteral("\n===============Finish Logging================\n\n"));
        m_file->flush();
        m_file->close();
    }
}

void LoggerFile::Write(const QString& text) {
    if (!isOpen() || text.isEmpty()) {
        return;
    }
    // The file is open for appending, so this doesn't make it wrap: it grows on, and rotation is the caller's
    // business. It must stay as it is.
    if (m_lines > kLineLimit) {
        m_file->seek(0);
    }
    QTextStream stream(m_file.get());
    stream.setCodec("UTF-8");
    stream << text;
    stream.flush();
    if (m_lines < std::numeric_limits<int>::max()) {
        ++m_lines;
    }
    m_written = true;
}

void LoggerFile::clearLog() {
    if (isOpen()) {
        m_file->resize(0);
        m_lines = 0;
    }
}

void LoggerFile::Reopen() {
    if (!m_file) {
        return;
    }
    m_file->close();
    open();
}

bool LoggerFile::open() {
    // What can't be sought, a pipe for one, would have its reader or its writer wait for ever.
    if (m_file->open(kOpenMode) && m_file->isWritable() && !m_file->isSequential()) {
        return true;
    }
    m_file->close();
    return false;
}

bool LoggerFile::isOpen() const {
    return m_file && m_file->isOpen();
}

}  // namespace Lattice
