#include "temporary_file.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>

#include <cerrno>

#include "disk.h"
#include "status.h"
#include "tree.h"

namespace nas {

namespace {
constexpr size_t kBufferSize = 256 * 1024;
}

TemporaryFile::TemporaryFile(int folder)
    : folder_(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    name_ = kTemporaryPrefix + randomHex(8);
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
    writeAll(fd_.get(), buffer_.data(), buffer_.size());
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
