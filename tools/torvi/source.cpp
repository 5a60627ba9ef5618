#include "source.h"

#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

#include "failure.h"
#include "partial.h"

namespace torvi {

Source::Source(const std::string& path) : m_path(path) {
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0) throw localFailure(QStringLiteral("cannot read"), path, errno);
    if (!S_ISREG(status.st_mode)) {
        throw Failure(
            Exit::Local,
            QStringLiteral("%1 is not a plain file; put sends files").arg(QString::fromStdString(path)));
    }
    m_file.setFileName(localName(path));
    if (!m_file.open(QIODevice::ReadOnly)) {
        throw Failure(Exit::Local,
                      QStringLiteral("cannot read %1: %2").arg(m_file.fileName(), m_file.errorString()));
    }
    m_size = static_cast<int64_t>(status.st_size);
    m_modified = static_cast<int64_t>(status.st_mtim.tv_sec);
    m_nanoseconds = static_cast<int64_t>(status.st_mtim.tv_nsec);
}

QString Source::leaf() const {
    return QString::fromStdString(std::filesystem::path(m_path).filename().string());
}

QString Source::version() const {
    return QStringLiteral("%1 bytes of %2.%3").arg(m_size).arg(m_modified).arg(m_nanoseconds);
}

bool Source::unchanged() const {
    struct stat status = {};
    return ::stat(m_path.c_str(), &status) == 0 && status.st_size == m_size &&
           status.st_mtim.tv_sec == m_modified && status.st_mtim.tv_nsec == m_nanoseconds;
}

}  // namespace torvi
