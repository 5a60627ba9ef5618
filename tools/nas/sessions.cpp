#include "sessions.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <stdexcept>

#include "disk.h"

namespace nas {

namespace fs = std::filesystem;

namespace {

constexpr size_t kSidLength = 32;

// Ids become file names: nothing but our own kind may pass.
bool wellFormed(const std::string& sid) {
    return sid.size() == kSidLength && std::all_of(sid.begin(), sid.end(), [](char c) {
               return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
           });
}

bool expired(const struct stat& info, std::chrono::seconds ttl) {
    std::timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    auto age = (now.tv_sec - info.st_mtim.tv_sec) * 1000 + (now.tv_nsec - info.st_mtim.tv_nsec) / 1000000;
    return age >= std::chrono::milliseconds(ttl).count();
}

std::string readAll(int fd) {
    std::string text;
    char piece[512];
    for (ssize_t n = 0; (n = ::read(fd, piece, sizeof piece)) > 0;) {
        text.append(piece, static_cast<size_t>(n));
    }
    return text;
}

}  // namespace

Sessions::Sessions(std::chrono::seconds ttl, std::string folder) : ttl_(ttl), folder_(std::move(folder)) {
    if (!folder_.empty()) {
        fs::create_directories(folder_);
        fs::permissions(folder_, fs::perms::owner_all);
    }
}

std::string Sessions::file(const std::string& sid) const {
    return folder_ + "/" + sid;
}

std::string Sessions::open(const std::string& user, const std::string& device) {
    std::lock_guard<std::mutex> lock(mutex_);
    dropExpired();
    std::string sid = randomHex(kSidLength / 2);
    if (folder_.empty()) {
        sessions_[sid] = {user, device, Clock::now()};
        return sid;
    }
    // Written aside and renamed: the other node must not see half a file.
    std::string aside = file(sid) + ".new";
    Fd fd(::open(aside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    const std::string text = user + "\n" + device;
    if (!fd || ::write(fd.get(), text.data(), text.size()) != static_cast<ssize_t>(text.size()) ||
        ::rename(aside.c_str(), file(sid).c_str()) != 0) {
        ::unlink(aside.c_str());
        throw std::runtime_error("cannot store a session in " + folder_);
    }
    return sid;
}

std::string Sessions::use(const std::string& sid) {
    if (!wellFormed(sid)) {
        return {};
    }
    std::lock_guard<std::mutex> lock(mutex_);
    if (folder_.empty()) {
        auto it = sessions_.find(sid);
        if (it == sessions_.end()) {
            return {};
        }
        if (Clock::now() - it->second.lastUse >= ttl_) {
            sessions_.erase(it);
            return {};
        }
        it->second.lastUse = Clock::now();
        return it->second.user;
    }
    Fd fd(::open(file(sid).c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW));
    struct stat info {};
    if (!fd || ::fstat(fd.get(), &info) != 0) {
        return {};
    }
    if (expired(info, ttl_)) {
        ::unlink(file(sid).c_str());
        return {};
    }
    const std::string text = readAll(fd.get());
    ::futimens(fd.get(), nullptr);
    return text.substr(0, text.find('\n'));
}

std::string Sessions::device(const std::string& sid) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (folder_.empty()) {
        auto it = sessions_.find(sid);
        return it == sessions_.end() ? std::string() : it->second.device;
    }
    Fd fd(::open(file(sid).c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    const std::string text = fd ? readAll(fd.get()) : std::string();
    const size_t line = text.find('\n');
    return line == std::string::npos ? std::string() : text.substr(line + 1);
}

std::string Sessions::ofSystem(const std::string& user) {
    std::lock_guard<std::mutex> lock(systemMutex_);
    std::string& sid = system_[user];
    if (use(sid) != user) {
        sid = open(user);
    }
    return sid;
}

bool Sessions::close(const std::string& sid) {
    if (use(sid).empty()) {
        return false;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    return folder_.empty() ? sessions_.erase(sid) == 1 : ::unlink(file(sid).c_str()) == 0;
}

void Sessions::expireAll() {
    std::lock_guard<std::mutex> lock(mutex_);
    sessions_.clear();
    if (!folder_.empty()) {
        for (const auto& entry : fs::directory_iterator(folder_)) {
            if (wellFormed(entry.path().filename().string())) {
                fs::remove(entry.path());
            }
        }
    }
}

size_t Sessions::count() {
    std::lock_guard<std::mutex> lock(mutex_);
    dropExpired();
    if (folder_.empty()) {
        return sessions_.size();
    }
    size_t found = 0;
    for (const auto& entry : fs::directory_iterator(folder_)) {
        found += wellFormed(entry.path().filename().string());
    }
    return found;
}

void Sessions::dropExpired() {
    for (auto it = sessions_.begin(); it != sessions_.end();) {
        it = Clock::now() - it->second.lastUse >= ttl_ ? sessions_.erase(it) : std::next(it);
    }
    if (folder_.empty()) {
        return;
    }
    for (const auto& entry : fs::directory_iterator(folder_)) {
        struct stat info {};
        if (wellFormed(entry.path().filename().string()) && ::stat(entry.path().c_str(), &info) == 0 &&
            expired(info, ttl_)) {
            ::unlink(entry.path().c_str());
        }
    }
}

}  // namespace nas
