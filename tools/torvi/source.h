#pragma once

#include <QFile>
#include <cstdint>
#include <string>

namespace torvi {

/// A file of this machine that is to be sent, open for reading.
class Source {
public:
    /// Throws unless it is a plain file that can be read.
    explicit Source(const std::string& path);

    const std::string& path() const { return m_path; }
    QString leaf() const;
    QFile* file() { return &m_file; }
    int64_t size() const { return m_size; }
    /// Seconds since 1970.
    int64_t modified() const { return m_modified; }
    /// Size and time, so finely that no other content has the same.
    QString version() const;
    /// Whether it is still the same as when it was opened.
    bool unchanged() const;

private:
    std::string m_path;
    QFile m_file;
    int64_t m_size = 0;
    int64_t m_modified = 0;
    int64_t m_nanoseconds = 0;
};

}  // namespace torvi
