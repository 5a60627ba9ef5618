#include "partials.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <vector>

#include "disk.h"
#include "status.h"
#include "tree.h"

namespace nas {

namespace {

const char* const kFolder = "partials";
const char* const kOwner = ".owner";
constexpr size_t kIdLength = 32;
constexpr auto kMoment = std::chrono::seconds(3);

bool wellFormed(const std::string& id) {
    return id.size() == kIdLength && std::all_of(id.begin(), id.end(), [](char c) {
               return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
           });
}

std::string withoutSlashes(std::string path) {
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

std::string ownerText(const std::string& user, const std::string& rootFolder) {
    return nlohmann::json{{"user", user}, {"root", withoutSlashes(rootFolder)}}.dump();
}

std::string readText(int folder, const std::string& name) {
    Fd fd(::openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    std::vector<char> text(64 * 1024);
    const ssize_t length = fd ? ::read(fd.get(), text.data(), text.size()) : -1;
    return length > 0 ? std::string(text.data(), static_cast<size_t>(length)) : std::string();
}

}  // namespace

// One request's right to add to an upload.
struct Partials::Use {
    std::mutex writing;
    bool over = false;
};

class Partials::File : public GrowingFile {
public:
    File(Partials& partials, std::string id, std::shared_ptr<Use> use)
        : partials_(partials), id_(std::move(id)), use_(std::move(use)) {
        fd_.reset(::openat(partials_.folder_.get(), id_.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC));
        struct stat info {};
        if (!fd_ || ::fstat(fd_.get(), &info) != 0) {
            throw errnoError(errno, "partial upload");
        }
        begin_ = written_ = info.st_size;
    }

    ~File() override {
        const bool whole = !fd_;
        try {
            flush();
        } catch (const StatusError&) {
            // Less is kept; the size tells.
        }
        std::lock_guard<std::mutex> lock(partials_.mutex_);
        if (use_->over) {
            return;
        }
        if (whole) {
            partials_.told_.erase(id_);
        }
        if (placed_) {
            partials_.erase(id_);
        }
        partials_.busy_.erase(id_);
        partials_.freed_.notify_all();
    }

    void discard() override {
        std::lock_guard<std::mutex> lock(use_->writing);
        buffer_.clear();
        if (!use_->over && ::ftruncate(fd_.get(), begin_) == 0) {
            written_ = begin_;
        }
    }

private:
    int folder() const override { return partials_.folder_.get(); }
    const std::string& hiddenName() const override { return id_; }

    void flush() override {
        std::lock_guard<std::mutex> lock(use_->writing);
        requireUse();
        GrowingFile::flush();
    }

    void place(int folder, const std::string& name, bool overwrite) override {
        std::lock_guard<std::mutex> lock(use_->writing);
        requireUse();
        try {
            renameInto(partials_.folder_.get(), id_, folder, name, overwrite);
        } catch (const StatusError& error) {
            // A folder on another volume takes a copy.
            if (error.status() != Status::Failed) {
                throw;
            }
            const std::string aside = kTemporaryPrefix + randomHex(8);
            copyTree(partials_.folder_.get(), id_, folder, aside, [](int64_t, int64_t) {});
            try {
                renameInto(folder, aside, folder, name, overwrite);
            } catch (...) {
                removeTree(folder, aside);
                throw;
            }
        }
        placed_ = true;
    }

    void requireUse() {
        if (use_->over) {
            buffer_.clear();
            throw StatusError(Status::Failed, "another request took this upload over");
        }
    }

    Partials& partials_;
    const std::string id_;
    const std::shared_ptr<Use> use_;
    int64_t begin_ = 0;
    bool placed_ = false;
};

Partials::Partials(const std::string& root, std::chrono::seconds longest) : longest_(longest) {
    Fd top(::open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!top) {
        throw std::runtime_error("cannot open the root " + root + ": " + std::strerror(errno));
    }
    folder_ = makeFolderAt(top.get(), std::string(kTemporaryPrefix) + kFolder);
    std::lock_guard<std::mutex> lock(mutex_);
    dropOld();
}

std::string Partials::begin(const std::string& user, const std::string& rootFolder) {
    std::lock_guard<std::mutex> lock(mutex_);
    dropOld();
    const std::string id = randomHex(kIdLength / 2);
    const std::string text = ownerText(user, rootFolder);
    for (const std::string& name : {id, id + kOwner}) {
        Fd fd(::openat(folder_.get(), name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
        if (!fd) {
            throw errnoError(errno, "partial upload");
        }
        if (name != id) {
            writeAll(fd.get(), text.data(), text.size());
        }
    }
    return id;
}

void Partials::require(const std::string& user, const std::string& id, const std::string& rootFolder) {
    if (!wellFormed(id) || readText(folder_.get(), id + kOwner) != ownerText(user, rootFolder)) {
        throw StatusError(Status::Missing, "no such upload id below " + rootFolder);
    }
}

void Partials::wait(std::unique_lock<std::mutex>& lock, const std::string& id) {
    freed_.wait_for(lock, kMoment, [&] { return busy_.count(id) == 0; });
}

void Partials::takeAway(const std::string& id) {
    auto it = busy_.find(id);
    if (it != busy_.end()) {
        std::lock_guard<std::mutex> writing(it->second->writing);
        it->second->over = true;
        busy_.erase(it);
    }
}

std::unique_ptr<GrowingFile> Partials::open(const std::string& user, const std::string& id,
                                            const std::string& rootFolder, int64_t offset) {
    std::unique_lock<std::mutex> lock(mutex_);
    require(user, id, rootFolder);
    auto told = told_.find(id);
    const bool goesOn = told != told_.end() && told->second == offset;
    if (!goesOn) {
        wait(lock, id);
        require(user, id, rootFolder);
    }
    takeAway(id);
    auto use = std::make_shared<Use>();
    if (goesOn) {
        Fd fd(::openat(folder_.get(), id.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC));
        if (!fd || ::ftruncate(fd.get(), offset) != 0) {
            throw errnoError(errno, "partial upload");
        }
    }
    auto file = std::make_unique<File>(*this, id, use);
    busy_[id] = use;
    return file;
}

int64_t Partials::size(const std::string& user, const std::string& id, const std::string& rootFolder) {
    std::unique_lock<std::mutex> lock(mutex_);
    require(user, id, rootFolder);
    wait(lock, id);
    require(user, id, rootFolder);
    struct stat info {};
    if (::fstatat(folder_.get(), id.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) {
        throw errnoError(errno, "partial upload");
    }
    return told_[id] = info.st_size;
}

void Partials::remove(const std::string& user, const std::string& id, const std::string& rootFolder) {
    std::unique_lock<std::mutex> lock(mutex_);
    require(user, id, rootFolder);
    wait(lock, id);
    require(user, id, rootFolder);
    takeAway(id);
    erase(id);
}

size_t Partials::count() {
    std::lock_guard<std::mutex> lock(mutex_);
    size_t found = 0;
    eachName(folder_.get(), [&](const std::string& name) {
        found += wellFormed(name);
        return true;
    });
    return found;
}

void Partials::erase(const std::string& id) {
    told_.erase(id);
    ::unlinkat(folder_.get(), id.c_str(), 0);
    ::unlinkat(folder_.get(), (id + kOwner).c_str(), 0);
}

void Partials::dropOld() {
    const std::time_t now = std::time(nullptr);
    std::vector<std::string> old;
    eachName(folder_.get(), [&](const std::string& name) {
        struct stat info {};
        // A note that lost its upload goes by its own age.
        if (::fstatat(folder_.get(), name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0 &&
            now - info.st_mtim.tv_sec >= longest_.count()) {
            const std::string id = name.substr(0, kIdLength);
            const bool note = name != id;
            if (busy_.count(id) == 0 &&
                (!note || ::faccessat(folder_.get(), id.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) != 0)) {
                old.push_back(id);
            }
        }
        return true;
    });
    for (const std::string& id : old) {
        erase(id);
    }
}

}  // namespace nas
