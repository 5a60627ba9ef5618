#include "disk.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <stdexcept>
#include <vector>

#include "status.h"
#include "tree.h"

namespace nas {

namespace {

constexpr int64_t kSmallestBlock = 16 * 1024;
constexpr int64_t kLargestBlock = 4 * 1024 * 1024;
constexpr int64_t kSteps = 64;

struct DirCloser {
    void operator()(DIR* dir) const { ::closedir(dir); }
};

void eachEntry(int folder, const std::function<bool(const std::string&)>& visit) {
    Fd copy(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    std::unique_ptr<DIR, DirCloser> dir(copy ? ::fdopendir(copy.get()) : nullptr);
    if (!dir) {
        throw errnoError(errno, "list");
    }
    copy.release();
    while (dirent* entry = ::readdir(dir.get())) {
        const std::string name = entry->d_name;
        if (name != "." && name != ".." && !visit(name)) {
            return;
        }
    }
}

struct stat statAt(int at, const std::string& name) {
    struct stat info {};
    if (::fstatat(at, name.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) {
        throw errnoError(errno, name);
    }
    return info;
}

void remove(int at, const std::string& name, int flags) {
    if (::unlinkat(at, name.c_str(), flags) != 0 && errno != ENOENT) {
        throw errnoError(errno, "remove " + name);
    }
}

// One copy on its way.
class Copy {
public:
    Copy(int64_t total, const Progress& progress)
        : total_(total),
          block_(std::clamp(total / kSteps, kSmallestBlock, kLargestBlock)),
          progress_(progress) {}

    void entry(int from, const std::string& name, int to, const std::string& newName) {
        const struct stat info = statAt(from, name);
        if (S_ISREG(info.st_mode)) {
            file(from, name, to, newName, info);
        } else if (S_ISDIR(info.st_mode)) {
            folder(from, name, to, newName, info);
        } else if (S_ISLNK(info.st_mode)) {
            std::vector<char> target(static_cast<size_t>(info.st_size) + 1);
            ssize_t length = ::readlinkat(from, name.c_str(), target.data(), target.size() - 1);
            if (length < 0 || ::symlinkat(target.data(), to, newName.c_str()) != 0) {
                throw errnoError(errno, "link " + name);
            }
        } else {
            throw StatusError(Status::Denied, name + " is neither a file nor a folder");
        }
    }

private:
    void file(int from, const std::string& name, int to, const std::string& newName,
              const struct stat& info) {
        Fd in(::openat(from, name.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
        Fd out(::openat(to, newName.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (!in || !out) {
            throw errnoError(errno, "copy " + name);
        }
        for (off_t at = 0; at < info.st_size;) {
            const off_t data = ::lseek(in.get(), at, SEEK_DATA);
            if (data < 0 && errno == ENXIO) {
                break;
            }
            advance(std::max<off_t>(data, at) - at);
            at = std::max(data, at);
            off_t hole = ::lseek(in.get(), at, SEEK_HOLE);
            hole = hole > at ? hole : info.st_size;
            while (at < hole) {
                at = piece(in.get(), out.get(), at, std::min<off_t>(hole - at, block_), name);
            }
        }
        finish(out.get(), info, ::ftruncate(out.get(), info.st_size) == 0, name);
    }

    off_t piece(int in, int out, off_t at, off_t length, const std::string& name) {
        progress_(done_, total_);
        loff_t from = at, to = at;
        ssize_t n = ::copy_file_range(in, &from, out, &to, static_cast<size_t>(length), 0);
        if (n < 0 && (errno == EXDEV || errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP)) {
            buffer_.resize(static_cast<size_t>(block_));
            n = ::pread(in, buffer_.data(), static_cast<size_t>(length), at);
            if (n > 0 && ::lseek(out, at, SEEK_SET) == at) {
                writeAll(out, buffer_.data(), static_cast<size_t>(n));
            }
        }
        if (n <= 0) {
            throw n < 0 ? errnoError(errno, "copy " + name)
                        : StatusError(Status::Failed, name + " shrank while it was copied");
        }
        advance(n);
        return at + n;
    }

    void folder(int from, const std::string& name, int to, const std::string& newName,
                const struct stat& info) {
        if (::mkdirat(to, newName.c_str(), 0700) != 0) {
            throw errnoError(errno, "folder " + newName);
        }
        Fd in = openFolderAt(from, name);
        Fd out = openFolderAt(to, newName);
        eachEntry(in.get(), [&](const std::string& inner) {
            if (!hiddenName(inner)) {
                entry(in.get(), inner, out.get(), inner);
            }
            return true;
        });
        finish(out.get(), info, true, name);
    }

    void finish(int fd, const struct stat& info, bool good, const std::string& name) {
        const timespec times[2] = {info.st_atim, info.st_mtim};
        if (!good || ::fchmod(fd, info.st_mode & 07777) != 0 || ::futimens(fd, times) != 0) {
            throw errnoError(errno, "copy " + name);
        }
    }

    void advance(int64_t bytes) {
        done_ += bytes;
        progress_(std::min(done_, total_), total_);
    }

    const int64_t total_;
    const int64_t block_;
    const Progress& progress_;
    int64_t done_ = 0;
    std::vector<char> buffer_;
};

}  // namespace

Fd openFolderAt(int at, const std::string& name) {
    Fd fd(::openat(at, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!fd) {
        int error = errno;
        struct stat info {};
        // A link to a folder reports "not a directory"; say what it is.
        if (error == ENOTDIR && ::fstatat(at, name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0 &&
            S_ISLNK(info.st_mode)) {
            error = ELOOP;
        }
        throw errnoError(error, "folder " + name);
    }
    return fd;
}

Fd makeFolderAt(int at, const std::string& name) {
    if (::mkdirat(at, name.c_str(), 0755) != 0 && errno != EEXIST) {
        throw errnoError(errno, "folder " + name);
    }
    return openFolderAt(at, name);
}

bool hiddenName(const std::string& name) {
    return name.rfind(kTemporaryPrefix, 0) == 0;
}

void eachName(int folder, const std::function<bool(const std::string&)>& visit) {
    eachEntry(folder, [&](const std::string& name) { return hiddenName(name) || visit(name); });
}

int64_t sumBelow(int folder) {
    int64_t sum = 0;
    eachName(folder, [&](const std::string& name) {
        struct stat info {};
        if (::fstatat(folder, name.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) {
            return true;
        }
        if (S_ISREG(info.st_mode)) {
            sum += info.st_size;
        } else if (S_ISDIR(info.st_mode)) {
            sum += sumBelow(openFolderAt(folder, name).get());
        }
        return true;
    });
    return sum;
}

bool liesWithin(int folder, int other) {
    struct stat wanted {};
    struct stat here {};
    Fd at(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!at || ::fstat(other, &wanted) != 0 || ::fstat(at.get(), &here) != 0) {
        throw errnoError(errno, "folder");
    }
    for (;;) {
        if (here.st_dev == wanted.st_dev && here.st_ino == wanted.st_ino) {
            return true;
        }
        struct stat above {};
        Fd up(::openat(at.get(), "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!up || ::fstat(up.get(), &above) != 0 ||
            (above.st_dev == here.st_dev && above.st_ino == here.st_ino)) {
            return false;
        }
        at = std::move(up);
        here = above;
    }
}

void requireRemovable(int at, const std::string& name) {
    if (!S_ISDIR(statAt(at, name).st_mode)) {
        return;
    }
    Fd folder = openFolderAt(at, name);
    struct stat info {};
    ::fstat(folder.get(), &info);
    eachEntry(folder.get(), [&](const std::string& inner) {
        if (!(info.st_mode & 0200)) {
            throw StatusError(Status::Denied, "the folder " + name + " may not be written");
        }
        requireRemovable(folder.get(), inner);
        return true;
    });
}

void removeTree(int at, const std::string& name) {
    struct stat info {};
    if (::fstatat(at, name.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) {
        return;
    }
    if (!S_ISDIR(info.st_mode)) {
        remove(at, name, 0);
        return;
    }
    Fd folder = openFolderAt(at, name);
    eachEntry(folder.get(), [&](const std::string& inner) {
        removeTree(folder.get(), inner);
        return true;
    });
    remove(at, name, AT_REMOVEDIR);
}

void copyTree(int from, const std::string& name, int to, const std::string& newName,
              const Progress& progress) {
    const struct stat info = statAt(from, name);
    const int64_t total =
        S_ISDIR(info.st_mode) ? sumBelow(openFolderAt(from, name).get()) : int64_t(info.st_size);
    try {
        Copy(total, progress).entry(from, name, to, newName);
    } catch (...) {
        removeTree(to, newName);
        throw;
    }
}

}  // namespace nas
