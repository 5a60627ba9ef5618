#include "kept.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "write_all.h"

namespace nas {

std::string keptAt(const std::string& root, const std::string& sessionFolder, const std::string& nas,
                   const std::string& name) {
    if (nas.empty() || sessionFolder.empty()) {
        return root + "/.torvi-nas." + name;
    }
    std::filesystem::create_directories(sessionFolder + "/" + name);
    return sessionFolder + "/" + name + "/book";
}

Fd KeptFile::lock() const {
    if (path_.empty()) {
        throw std::logic_error("what is kept nowhere has no other value");
    }
    Fd others(::open((path_ + ".lock").c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!others || ::flock(others.get(), LOCK_EX) != 0) {
        throw std::runtime_error("cannot lock " + path_ + ": " + std::strerror(errno));
    }
    return others;
}

std::string KeptFile::stamp() const {
    struct stat info {};
    if (path_.empty()) {
        return "";
    }
    if (::stat(path_.c_str(), &info) != 0) {
        // What is there and can't be read isn't nothing.
        if (errno != ENOENT) {
            throw std::runtime_error("cannot read " + path_ + ": " + std::strerror(errno));
        }
        return "";
    }
    return std::to_string(info.st_ino) + " " + std::to_string(info.st_size) + " " +
           std::to_string(info.st_mtim.tv_sec) + "." + std::to_string(info.st_mtim.tv_nsec);
}

nlohmann::json KeptFile::read() const {
    std::ifstream in(path_);
    if (!in) {
        throw std::runtime_error("cannot read " + path_ + ": " + std::strerror(errno));
    }
    return nlohmann::json::parse(in);
}

void KeptFile::replace(const std::string& text) const {
    const std::string aside = path_ + ".new";
    Fd out(::open(aside.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!out) {
        throw std::runtime_error("cannot write " + aside + ": " + std::strerror(errno));
    }
    writeAll(out.get(), text.data(), text.size());
    // The new name must not be on disk before the bytes are.
    if (::fsync(out.get()) != 0) {
        throw std::runtime_error("cannot write " + aside + ": " + std::strerror(errno));
    }
    if (::rename(aside.c_str(), path_.c_str()) != 0) {
        throw std::runtime_error("cannot replace " + path_ + ": " + std::strerror(errno));
    }
}

}  // namespace nas
