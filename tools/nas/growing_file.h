#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "fd.h"

namespace nas {

// A file that grows under a hidden name and takes its own name only when it is whole.
class GrowingFile {
public:
    virtual ~GrowingFile() = default;
    GrowingFile(const GrowingFile&) = delete;
    GrowingFile& operator=(const GrowingFile&) = delete;

    void write(const char* data, size_t length);
    int64_t size() const { return written_ + static_cast<int64_t>(buffer_.size()); }
    // Throws StatusError(Exists) when the name is taken and may not be replaced. A negative time is none.
    void commit(int folder, const std::string& name, bool overwrite, int64_t mtime);
    // What came with this request was never any good.
    virtual void discard() {}

protected:
    GrowingFile();
    // Blocks of nothing but zeros become holes.
    void flush();
    // Gives the file its name.
    virtual void place(int folder, const std::string& name, bool overwrite) = 0;

    Fd fd_;
    int64_t written_ = 0;
    std::vector<char> buffer_;
};

void renameInto(int from, const std::string& name, int to, const std::string& newName, bool overwrite);

// One that goes with the object if it didn't become whole.
class TemporaryFile : public GrowingFile {
public:
    explicit TemporaryFile(int folder);
    ~TemporaryFile() override;

private:
    void place(int folder, const std::string& name, bool overwrite) override;

    Fd folder_;
    std::string name_;
};

}  // namespace nas
