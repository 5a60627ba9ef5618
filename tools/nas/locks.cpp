#include "locks.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "disk.h"

namespace nas {

// Files are told apart by their folder and name: a file that is replaced stays locked, by whatever path the
// folder is reached.
struct Locks::Held {
    Lock lock;
    Fd folder;
    struct stat place {};
    std::string name;
    Clock::time_point used = Clock::now();

    bool isAt(const struct stat& where, const std::string& other) const {
        return place.st_dev == where.st_dev && place.st_ino == where.st_ino && name == other;
    }
};

namespace {

struct stat placeOf(const Folder& folder) {
    struct stat info {};
    if (::fstat(folder.fd.get(), &info) != 0) {
        throw errnoError(errno, "folder");
    }
    return info;
}

}  // namespace

std::string Locks::take(const std::string& user, const Folder& folder, const std::string& name) {
    std::lock_guard<std::mutex> guard(mutex_);
    dropOld();
    if (std::shared_ptr<Held> other = find(folder, name)) {
        throw StatusError(Status::Denied, name + " is locked by " + other->lock.user);
    }
    auto held = std::make_shared<Held>();
    held->lock.id = randomHex(16);
    held->lock.user = user;
    held->folder.reset(::openat(folder.fd.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    held->place = placeOf(folder);
    held->name = name;
    locks_[held->lock.id] = held;
    return held->lock.id;
}

Locks::Lock Locks::use(const std::string& id, const std::string& user, const Folder& folder,
                       const std::string& name) {
    std::lock_guard<std::mutex> guard(mutex_);
    dropOld();
    auto it = locks_.find(id);
    if (it == locks_.end() || it->second->lock.user != user || !it->second->isAt(placeOf(folder), name)) {
        throw StatusError(Status::Missing, "no such lock of " + name);
    }
    it->second->used = Clock::now();
    return it->second->lock;
}

void Locks::setVersion(const std::string& id, const std::string& version) {
    change(id, [&](Lock& lock) { lock.version = version; });
}

void Locks::noteJob(const std::string& id, int job) {
    change(id, [&](Lock& lock) { lock.job = job; });
}

void Locks::abandon(const std::string& id) {
    change(id, [](Lock& lock) { lock.abandoned = true; });
}

void Locks::change(const std::string& id, const std::function<void(Lock&)>& how) {
    std::lock_guard<std::mutex> guard(mutex_);
    auto it = locks_.find(id);
    if (it != locks_.end()) {
        how(it->second->lock);
    }
}

void Locks::release(const std::string& id) {
    std::lock_guard<std::mutex> guard(mutex_);
    locks_.erase(id);
}

size_t Locks::count() {
    std::lock_guard<std::mutex> guard(mutex_);
    dropOld();
    size_t holding = 0;
    for (const auto& [id, held] : locks_) {
        holding += !held->lock.abandoned;
    }
    return holding;
}

void Locks::requireFree(const std::string& user, const Folder& folder, const std::string& name) {
    std::lock_guard<std::mutex> guard(mutex_);
    dropOld();
    if (locks_.empty()) {
        return;
    }
    const std::shared_ptr<Held> other = find(folder, name);
    if (other && other->lock.user != user) {
        throw StatusError(Status::Denied, name + " is locked by " + other->lock.user);
    }
    Fd inner(::openat(folder.fd.get(), name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    for (const auto& [id, held] : locks_) {
        if (inner && !held->lock.abandoned && held->lock.user != user &&
            liesWithin(held->folder.get(), inner.get())) {
            throw StatusError(Status::Denied, name + " holds a file that is locked by " + held->lock.user);
        }
    }
}

std::shared_ptr<Locks::Held> Locks::find(const Folder& folder, const std::string& name) {
    const struct stat place = placeOf(folder);
    for (const auto& [id, held] : locks_) {
        if (!held->lock.abandoned && held->isAt(place, name)) {
            return held;
        }
    }
    return nullptr;
}

void Locks::dropOld() {
    for (auto it = locks_.begin(); it != locks_.end();) {
        it = Clock::now() - it->second->used >= longest_ ? locks_.erase(it) : std::next(it);
    }
}

}  // namespace nas
