#include "partial.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

namespace torvi {
namespace {

constexpr size_t kTagLength = 8;
constexpr size_t kLongestName = 255;
const std::string kSuffix = ".torvi-part";

bool isTag(const std::string& text) {
    return text.size() == kTagLength &&
           std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isxdigit(c) != 0; });
}

bool lockNow(int fd) {
    return ::flock(fd, LOCK_EX | LOCK_NB) == 0;
}

}  // namespace

QString localName(const std::string& path) {
    const QString name = QString::fromStdString(path);
    if (QFile::encodeName(name).toStdString() != path) {
        throw Failure(Exit::Local, QStringLiteral("%1: names that are not UTF-8 can't be used").arg(name));
    }
    return name;
}

Failure localFailure(const QString& what, const std::string& path, int error) {
    return Failure(Exit::Local, QStringLiteral("%1 %2: %3")
                                    .arg(what, QString::fromStdString(path),
                                         QString::fromLocal8Bit(std::strerror(error))));
}

PartialFile::PartialFile(const std::string& target, const QByteArray& identity) : m_target(target) {
    const std::filesystem::path path(target);
    const std::string folder = path.has_parent_path() ? path.parent_path().string() : ".";
    const std::string name = path.filename().string();
    const std::string hash =
        QCryptographicHash::hash(identity, QCryptographicHash::Sha1).toHex().toStdString();
    std::string own = name + "." + hash.substr(0, kTagLength) + kSuffix;
    // A long name leaves no room for the tag.
    if (own.size() > kLongestName) own = "." + hash + kSuffix;
    m_path = (std::filesystem::path(folder) / own).string();

    m_fd = ::open(m_path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0666);
    if (m_fd < 0) throw localFailure(QStringLiteral("cannot write"), m_path, errno);
    struct stat status = {};
    if (::fstat(m_fd, &status) != 0 || !S_ISREG(status.st_mode) || !lockNow(m_fd)) {
        ::close(m_fd);
        throw Failure(Exit::Local,
                      QStringLiteral("%1 is in use: another download of the same file is running")
                          .arg(QString::fromStdString(m_path)));
    }
    removeOutdated(folder, name);
}

PartialFile::~PartialFile() {
    if (!m_committed && size() == 0) ::unlink(m_path.c_str());
    ::close(m_fd);
}

int64_t PartialFile::size() const {
    struct stat status = {};
    return ::fstat(m_fd, &status) == 0 ? static_cast<int64_t>(status.st_size) : 0;
}

void PartialFile::truncate(int64_t size) {
    if (::ftruncate(m_fd, size) != 0) throw localFailure(QStringLiteral("cannot write"), m_path, errno);
}

void PartialFile::commit(bool overwrite, int64_t modified) {
    if (modified > 0) {
        const timespec time = {static_cast<time_t>(modified), 0};
        const timespec times[2] = {time, time};
        if (::futimens(m_fd, times) != 0)
            throw localFailure(QStringLiteral("cannot set the time of"), m_path, errno);
    }
    if (::fdatasync(m_fd) != 0) throw localFailure(QStringLiteral("cannot write"), m_path, errno);
    int failed =
        ::renameat2(AT_FDCWD, m_path.c_str(), AT_FDCWD, m_target.c_str(), overwrite ? 0 : RENAME_NOREPLACE);
    if (failed != 0 && errno == EINVAL && !overwrite) {
        // Not every file system knows the flag.
        failed = ::access(m_target.c_str(), F_OK) == 0 ? (errno = EEXIST, -1)
                                                       : ::rename(m_path.c_str(), m_target.c_str());
    }
    if (failed != 0) {
        const int error = errno;
        if (error == EEXIST) {
            throw Failure(Exit::AlreadyExists,
                          QStringLiteral("%1 exists already; the download is kept in %2")
                              .arg(QString::fromStdString(m_target), QString::fromStdString(m_path)));
        }
        throw localFailure(QStringLiteral("cannot write"), m_target, error);
    }
    m_committed = true;
}

void PartialFile::removeOutdated(const std::string& folder, const std::string& name) const {
    std::error_code ignored;
    for (const auto& file : std::filesystem::directory_iterator(folder, ignored)) {
        const std::string other = file.path().filename().string();
        const size_t tagAt = name.size() + 1;
        if (other.size() != tagAt + kTagLength + kSuffix.size() || other.compare(0, tagAt, name + ".") != 0 ||
            other.compare(tagAt + kTagLength, std::string::npos, kSuffix) != 0 ||
            !isTag(other.substr(tagAt, kTagLength)) || file.path().string() == m_path) {
            continue;
        }
        // The remote file has changed since; but a download that runs now is left alone.
        const int fd = ::open(file.path().c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW);
        if (fd < 0) continue;
        if (lockNow(fd)) ::unlink(file.path().c_str());
        ::close(fd);
    }
}

}  // namespace torvi
