#include "shares.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "disk.h"
#include "fd.h"

namespace nas {

Shares::Shares(const std::string& root, const std::string& sessionFolder, const std::string& nas)
    : nas_(nas) {
    if (nas.empty() || sessionFolder.empty()) {
        file_ = root + "/.torvi-nas.shares";
    } else {
        std::filesystem::create_directories(sessionFolder + "/shares");
        file_ = sessionFolder + "/shares/book";
    }
}

std::string Shares::stamp() const {
    struct stat info {};
    if (file_.empty() || ::stat(file_.c_str(), &info) != 0) {
        return "";
    }
    return std::to_string(info.st_ino) + " " + std::to_string(info.st_size) + " " +
           std::to_string(info.st_mtim.tv_sec) + "." + std::to_string(info.st_mtim.tv_nsec);
}

std::shared_ptr<const ShareBook> Shares::load() const {
    // Taken before the file is read: what is put in its place meanwhile is read the next time.
    const std::string now = stamp();
    if (now != bookStamp_) {
        std::ifstream in(file_);
        book_ = now.empty() ? std::make_shared<ShareBook>()
                            : std::make_shared<ShareBook>(nlohmann::json::parse(in).get<ShareBook>());
        bookStamp_ = now;
    }
    return book_;
}

std::shared_ptr<const ShareBook> Shares::read() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return load();
}

void Shares::change(const std::function<void(ShareBook&)>& act) {
    std::lock_guard<std::mutex> lock(mutex_);
    const Fd others(::open((file_ + ".lock").c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!others || ::flock(others.get(), LOCK_EX) != 0) {
        throw std::runtime_error("cannot lock " + file_ + ": " + std::strerror(errno));
    }
    // Read anew: two books may look alike from outside, and what another node wrote must not be lost.
    bookStamp_ = "unread";
    ShareBook book = *load();
    act(book);
    const std::string text = nlohmann::json(book).dump();
    const std::string aside = file_ + ".new";
    Fd out(::open(aside.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!out) {
        throw std::runtime_error("cannot write " + aside + ": " + std::strerror(errno));
    }
    writeAll(out.get(), text.data(), text.size());
    if (::rename(aside.c_str(), file_.c_str()) != 0) {
        throw std::runtime_error("cannot replace " + file_ + ": " + std::strerror(errno));
    }
    book_ = std::make_shared<ShareBook>(std::move(book));
    bookStamp_ = stamp();
}

}  // namespace nas
