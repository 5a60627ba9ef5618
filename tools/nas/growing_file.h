#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tree.h"

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
    // No more bytes come: it needs no descriptor any longer.
    void settle();
    // What came with this request was never any good.
    virtual void discard() {}

protected:
    GrowingFile();
    // Blocks of nothing but zeros become holes.
    virtual void flush();
    // Gives the file its name.
    virtual void place(int folder, const std::string& name, bool overwrite) = 0;
    // The folder and the name that it has until then.
    virtual int folder() const = 0;
    virtual const std::string& hiddenName() const = 0;

    Fd fd_;
    int64_t written_ = 0;
    std::vector<char> buffer_;
};

void renameInto(int from, const std::string& name, int to, const std::string& newName, bool overwrite);

// One that goes with the object if it didn't become whole.
class TemporaryFile : public GrowingFile {
public:
    explicit TemporaryFile(std::shared_ptr<const Folder> folder);
    ~TemporaryFile() override;

private:
    void place(int folder, const std::string& name, bool overwrite) override;
    int folder() const override { return folder_->fd.get(); }
    const std::string& hiddenName() const override { return name_; }

    std::shared_ptr<const Folder> folder_;
    std::string name_;
};

}  // namespace nas
