#pragma once

#include <QFile>
#include <QString>
#include <memory>

namespace Lattice {

/// The log file. A path that can't be written leaves an object whose operations do nothing.
class LoggerFile {
public:
    LoggerFile(QString path, bool append);
    /// Writes the closing banner, if anything was written before.
    ~LoggerFile();
    LoggerFile(const LoggerFile&) = delete;
    LoggerFile& operator=(const LoggerFile&) = delete;

    void Write(const QString& text);
    void clearLog();
    /// Closes the file and opens the path anew, after it was moved away from outside.
    void Reopen();

private:
    bool open();
    bool isOpen() const;

    QString m_path;
    std::unique_ptr<QFile> m_file;
    bool m_written = false;
    int m_lines = 0;
};

}  // namespace Lattice
