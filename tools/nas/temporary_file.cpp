#include "temporary_file.h"

#include <fcntl.h>
#include <openssl/rand.h>
#include <stdio.h>
#include <sys/stat.h>

#include <cerrno>
#include <cinttypes>

#include "status.h"
#include "tree.h"

namespace nas {

namespace {
constexpr size_t kBufferSize = 256 * 1024;
}

TemporaryFile::TemporaryFile(int folder)
    : folder_(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    uint64_t random = 0;
    RAND_bytes(reinterpret_cast<unsigned char*>(&random), sizeof random);
    char text[24];
    std::snprintf(text, sizeof text, "%016" PRIx64, random);
    name_ = kTemporaryPrefix + std::string(text);
    fd_.reset(
        ::openat(folder_.get(), name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0644));
    if (!fd_) {
        throw errnoError(errno, "temporary file");
    }
    buffer_.reserve(kBufferSize);
}

TemporaryFile::~TemporaryFile() {
    if (!name_.empty()) {
        ::unlinkat(folder_.get(), name_.c_str(), 0);
    }
}

void TemporaryFile::write(const char* data, size_t length) {
    if (buffer_.size() + length > kBufferSize) {
        flush();
    }
    buffer_.insert(buffer_.end(), data, data + length);
    size_ += static_cast<int64_t>(length);
    if (buffer_.size() >= kBufferSize) {
        flush();
    }
}

void TemporaryFile::flush() {
    for (size_t done = 0; done < buffer_.size();) {
        ssize_t n = ::write(fd_.get(), buffer_.data() + done, buffer_.size() - done);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            throw errnoError(errno, "write");
        }
        done += static_cast<size_t>(n);
    }
    buffer_.clear();
}

void TemporaryFile::commit(int folder, const std::string& name, bool overwrite) {
    flush();
    if (mtime_ >= 0) {
        timespec times[2] = {{0, UTIME_OMIT}, {static_cast<time_t>(mtime_), 0}};
        if (::futimens(fd_.get(), times) != 0) {
            throw errnoError(errno, "set the time of " + name);
        }
    }
    unsigned flags = overwrite ? 0 : RENAME_NOREPLACE;
    if (::renameat2(folder_.get(), name_.c_str(), folder, name.c_str(), flags) != 0) {
        throw errnoError(errno, name);
    }
    name_.clear();
}

}  // namespace nas
