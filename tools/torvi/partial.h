#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <cstdint>
#include <memory>
#include <string>

#include "failure.h"

namespace torvi {

/// A local path as Qt takes it. Fails where the name's bytes would not survive the way through Qt.
QString localName(const std::string& path);
Failure localFailure(const QString& what, const std::string& path, int error);

/// What has arrived of a download, beside its target, until it is whole. The name tells which version of
/// which remote file it belongs to, so that the bytes of one are never continued with those of another.
class PartialFile {
public:
    /// Opens or makes it and locks it against a second download of the same file.
    PartialFile(const std::string& target, const QByteArray& identity);
    /// Keeps what has arrived, unless that is nothing.
    ~PartialFile();
    PartialFile(const PartialFile&) = delete;
    PartialFile& operator=(const PartialFile&) = delete;

    const std::string& path() const { return m_path; }
    int64_t size() const;
    void truncate(int64_t size);
    /// Gives it the target's name, as a whole file with its time.
    void commit(bool overwrite, int64_t modified);

private:
    void removeOutdated(const std::string& folder, const std::string& name) const;

    std::string m_target;
    std::string m_path;
    int m_fd = -1;
    bool m_committed = false;
};

}  // namespace torvi
