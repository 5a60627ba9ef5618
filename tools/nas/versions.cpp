#include "versions.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <nlohmann/json.hpp>
#include <vector>

#include "delta.h"
#include "growing_file.h"
#include "service.h"

namespace nas {

namespace {

const char* const kNote = ".torvi-nas.note";
const char* const kContent = "content";
const char* const kSignature = "signature";
const char* const kDelta = "delta";
const char* const kLocal = "local.signature";
const char* const kUpload = "upload";
const char* const kUploadedDelta = "upload.delta";
constexpr size_t kIdLength = 32;
constexpr size_t kLongestNote = 4096;

bool wellFormed(const std::string& id) {
    return id.size() == kIdLength && std::all_of(id.begin(), id.end(), [](char c) {
               return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
           });
}

struct stat statOf(int folder, const std::string& name) {
    struct stat info {};
    if (::fstatat(folder, name.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) {
        throw errnoError(errno, name);
    }
    return info;
}

nlohmann::json readNote(int folder) {
    Fd fd(::openat(folder, kNote, O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    std::vector<char> text(kLongestNote);
    const ssize_t length = fd ? ::read(fd.get(), text.data(), text.size()) : -1;
    nlohmann::json note =
        nlohmann::json::parse(text.begin(), text.begin() + std::max<ssize_t>(length, 0), nullptr, false);
    return note.is_object() ? note : nlohmann::json::object();
}

std::string stateOf(const struct stat& file) {
    return std::to_string(file.st_ino) + "/" + std::to_string(file.st_size) + "/" +
           std::to_string(file.st_mtim.tv_sec) + "." + std::to_string(file.st_mtim.tv_nsec);
}

std::string placeOf(int folder) {
    const struct stat info = statOf(folder, ".");
    return std::to_string(info.st_dev) + "/" + std::to_string(info.st_ino);
}

// A file of the version that becomes visible when it is whole.
template <typename Work>
void produce(const std::shared_ptr<Folder>& folder, const char* name, Work work) {
    TemporaryFile file(folder);
    work([&](const char* data, size_t length) { file.write(data, length); });
    file.commit(folder->fd.get(), name, true, -1);
}

void copyBytes(int from, const Output& out, const Progress& progress) {
    std::vector<char> piece(256 * 1024);
    struct stat info {};
    ::fstat(from, &info);
    for (off_t at = 0;;) {
        progress(at, info.st_size);
        const ssize_t n = ::pread(from, piece.data(), piece.size(), at);
        if (n < 0) {
            throw errnoError(errno, "read");
        }
        if (n == 0) {
            return;
        }
        out(piece.data(), static_cast<size_t>(n));
        at += n;
    }
}

}  // namespace

Version::Version(std::string id, Fd parent, Fd folder)
    : id_(std::move(id)),
      parent_(std::make_shared<Fd>(std::move(parent))),
      folder_(std::make_shared<Folder>()) {
    folder_->fd = std::move(folder);
}

Version Version::make(Service& service, const User& user, const Place& file) {
    Fd versions = makeFolderAt(service.tree().openHome(user.name).get(), kVersions);
    const std::string id = randomHex(kIdLength / 2);
    Fd folder = makeFolderAt(versions.get(), id);
    Version version(id, std::move(versions), std::move(folder));
    try {
        const int from = file.folder.fd.get();
        const int to = version.folder_->fd.get();
        const struct stat before = statOf(from, file.name);
        copyTree(from, file.name, to, kContent, [](int64_t, int64_t) {});
        if (stateOf(before) != stateOf(statOf(from, file.name))) {
            throw StatusError(Status::Failed, file.name + " changed while it was kept");
        }
        if (::fchmodat(to, kContent, 0444, 0) != 0) {
            throw errnoError(errno, kContent);
        }
        version.writeNote(from, file.name, before, false);
    } catch (...) {
        removeTree(version.parent_->get(), id);
        throw;
    }
    return version;
}

void Version::writeNote(int folder, const std::string& name, const struct stat& file, bool committed) const {
    const std::string note = nlohmann::json{
        {"folder", placeOf(folder)},
        {"name", name},
        {"file", stateOf(file)},
        {"committed", committed}}.dump();
    TemporaryFile out(folder_);
    out.write(note.data(), note.size());
    out.commit(folder_->fd.get(), kNote, true, -1);
}

Version Version::find(Service& service, const User& user, const std::string& id, const Folder& folder,
                      const std::string& name) {
    if (!wellFormed(id)) {
        throw StatusError(Status::Missing, "no version \"" + id + "\"");
    }
    Fd versions = openFolderAt(service.tree().openHome(user.name).get(), kVersions);
    Fd own = openFolderAt(versions.get(), id);
    Version version(id, std::move(versions), std::move(own));
    const nlohmann::json note = readNote(version.folder_->fd.get());
    if (note.value("folder", "") != placeOf(folder.fd.get()) || note.value("name", "") != name) {
        throw StatusError(Status::Missing, "version " + id + " isn't one of " + name);
    }
    return version;
}

void Version::dropOld(Service& service, std::chrono::seconds longest) {
    const std::time_t now = std::time(nullptr);
    for (const auto& [name, user] : service.options().users.all()) {
        std::vector<std::string> old;
        Fd versions;
        try {
            versions = openFolderAt(service.tree().openHome(name).get(), kVersions);
        } catch (const StatusError&) {
            continue;
        }
        eachName(versions.get(), [&](const std::string& id) {
            if (wellFormed(id) && now - statOf(versions.get(), id).st_mtim.tv_sec >= longest.count() &&
                !readNote(openFolderAt(versions.get(), id).get()).value("committed", false)) {
                old.push_back(id);
            }
            return true;
        });
        for (const std::string& id : old) {
            removeTree(versions.get(), id);
        }
    }
}

bool Version::has(const std::string& name) const {
    struct stat info {};
    return ::fstatat(folder_->fd.get(), name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISREG(info.st_mode);
}

int64_t Version::sizeOf(const std::string& name) const {
    return statOf(folder_->fd.get(), name).st_size;
}

bool Version::changed(const Folder& target, const std::string& name) const {
    return has(kUpload) || has(kUploadedDelta) ||
           readNote(folder_->fd.get()).value("file", "") != stateOf(statOf(target.fd.get(), name));
}

Fd Version::open(const std::string& name) const {
    Fd fd(::openat(folder_->fd.get(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
    if (!fd) {
        throw errnoError(errno, name);
    }
    return fd;
}

void Version::makeSignature(const Progress& progress) const {
    Fd content = open(kContent);
    produce(folder_, kSignature,
            [&](const Output& out) { nas::makeSignature(content.get(), out, progress); });
}

void Version::makeDelta(const Progress& progress) const {
    Fd content = open(kContent);
    Fd local = has(kLocal) ? open(kLocal) : Fd();
    produce(folder_, kDelta,
            [&](const Output& out) { nas::makeDelta(local.get(), content.get(), out, progress); });
}

void Version::commit(const std::shared_ptr<const Folder>& target, const std::string& name, int64_t mtime,
                     int64_t room, const Progress& progress) const {
    if (has(kUpload) || has(kUploadedDelta)) {
        TemporaryFile file(target);
        const Output out = [&](const char* data, size_t length) {
            if (room >= 0 && file.size() + static_cast<int64_t>(length) > room) {
                throw StatusError(Status::Quota, "the quota of " + target->home + " is used up");
            }
            file.write(data, length);
        };
        if (has(kUpload)) {
            copyBytes(open(kUpload).get(), out, progress);
        } else {
            applyDelta(open(kContent).get(), open(kUploadedDelta).get(), out, progress);
        }
        file.commit(target->fd.get(), name, true, mtime);
    } else {
        progress(0, 1);
        const timespec times[2] = {{0, UTIME_OMIT}, {static_cast<time_t>(mtime), 0}};
        if (::utimensat(target->fd.get(), name.c_str(), times, AT_SYMLINK_NOFOLLOW) != 0) {
            throw errnoError(errno, "set the time of " + name);
        }
        progress(1, 1);
    }
    writeNote(target->fd.get(), name, statOf(target->fd.get(), name), true);
    for (const char* used : {kUpload, kUploadedDelta}) {
        removeTree(folder_->fd.get(), used);
    }
}

void Version::close() const {
    if (!readNote(folder_->fd.get()).value("committed", false)) {
        removeTree(parent_->get(), id_);
        return;
    }
    std::vector<std::string> work;
    eachName(folder_->fd.get(), [&](const std::string& name) {
        if (name != kContent) {
            work.push_back(name);
        }
        return true;
    });
    for (const std::string& name : work) {
        removeTree(folder_->fd.get(), name);
    }
}

}  // namespace nas
