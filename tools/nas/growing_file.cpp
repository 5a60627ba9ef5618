#include "growing_file.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "disk.h"
#include "status.h"
#include "tree.h"

namespace nas {

namespace {
constexpr size_t kBufferSize = 256 * 1024;
}

GrowingFile::GrowingFile() {
    buffer_.reserve(kBufferSize);
}

void GrowingFile::write(const char* data, size_t length) {
    while (length > 0) {
        const size_t now = std::min(length, kBufferSize - buffer_.size());
        buffer_.insert(buffer_.end(), data, data + now);
        data += now;
        length -= now;
        if (buffer_.size() == kBufferSize) {
            flush();
        }
    }
}

void GrowingFile::flush() {
    const auto length = static_cast<int64_t>(buffer_.size());
    // Nothing but zeros, if the first is one and each equals the next.
    if (length > 0 && buffer_[0] == 0 && std::memcmp(&buffer_[0], &buffer_[0] + 1, buffer_.size() - 1) == 0) {
        if (::ftruncate(fd_.get(), written_ + length) != 0) {
            throw errnoError(errno, "write");
        }
    } else if (length > 0) {
        if (::lseek(fd_.get(), written_, SEEK_SET) != written_) {
            throw errnoError(errno, "write");
        }
        writeAll(fd_.get(), buffer_.data(), buffer_.size());
    }
    written_ += length;
    buffer_.clear();
}

void GrowingFile::commit(int folder, const std::string& name, bool overwrite, int64_t mtime) {
    settle();
    if (mtime >= 0) {
        timespec times[2] = {{0, UTIME_OMIT}, {static_cast<time_t>(mtime), 0}};
        if (::utimensat(this->folder(), hiddenName().c_str(), times, AT_SYMLINK_NOFOLLOW) != 0) {
            throw errnoError(errno, "set the time of " + name);
        }
    }
    place(folder, name, overwrite);
}

void GrowingFile::settle() {
    flush();
    fd_.reset();
}

void renameInto(int from, const std::string& name, int to, const std::string& newName, bool overwrite) {
    if (::renameat2(from, name.c_str(), to, newName.c_str(), overwrite ? 0 : RENAME_NOREPLACE) != 0) {
        throw errnoError(errno, newName);
    }
}

TemporaryFile::TemporaryFile(std::shared_ptr<const Folder> folder) : folder_(std::move(folder)) {
    name_ = kTemporaryPrefix + randomHex(8);
    fd_.reset(::openat(folder_->fd.get(), name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW,
                       0644));
    if (!fd_) {
        throw errnoError(errno, "temporary file");
    }
}

TemporaryFile::~TemporaryFile() {
    if (!name_.empty()) {
        ::unlinkat(folder_->fd.get(), name_.c_str(), 0);
    }
}

void TemporaryFile::place(int folder, const std::string& name, bool overwrite) {
    renameInto(folder_->fd.get(), name_, folder, name, overwrite);
    name_.clear();
}

}  // namespace nas
