#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "fd.h"

namespace nas {

// A file that grows under a hidden name and takes its own name only when it is whole.
class TemporaryFile {
public:
    explicit TemporaryFile(int folder);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    void write(const char* data, size_t length);
    int64_t size() const { return size_; }
    void setTime(int64_t mtime) { mtime_ = mtime; }
    // Throws StatusError(Exists) when the name is taken and may not be replaced.
    void commit(int folder, const std::string& name, bool overwrite);

private:
    void flush();

    Fd folder_;
    std::string name_;
    Fd fd_;
    std::vector<char> buffer_;
    int64_t size_ = 0;
    int64_t mtime_ = -1;
};

}  // namespace nas
