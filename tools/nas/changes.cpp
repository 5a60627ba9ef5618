#include "changes.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>

#include "growing_file.h"
#include "service.h"

namespace nas {

namespace {

constexpr size_t kLongestName = 255;
constexpr int kMostNamesakes = 1000;

// "name (2)" and so on for names that are taken.
std::string numbered(const std::string& name, int number) {
    if (number == 1) {
        return name;
    }
    const std::string tail = " (" + std::to_string(number) + ")";
    std::string head = name.substr(0, kLongestName - tail.size());
    while (!validUtf8(head)) {
        head.pop_back();
    }
    return head + tail;
}

// Makes a folder of that name, or of the next one that isn't a file's.
Fd makeFolderBeside(int at, const std::string& name) {
    for (int n = 1; n <= kMostNamesakes; ++n) {
        try {
            return makeFolderAt(at, numbered(name, n));
        } catch (const StatusError& error) {
            if (error.status() == Status::NameTooLong) {
                throw;
            }
        }
    }
    throw StatusError(Status::Failed, "no name left for the folder " + name);
}

void renameBeside(int from, const std::string& name, int to) {
    for (int n = 1; n <= kMostNamesakes; ++n) {
        if (::renameat2(from, name.c_str(), to, numbered(name, n).c_str(), RENAME_NOREPLACE) == 0) {
            return;
        }
        if (errno != EEXIST) {
            throw errnoError(errno, "recycle " + name);
        }
    }
    throw StatusError(Status::Failed, "no name left in the recycle folder for " + name);
}

bool ownFolder(const Folder& folder, const std::string& name, const char* own) {
    return !folder.home.empty() && (folder.below.empty() ? name : folder.below[0]) == own;
}

}  // namespace

Place findChangeable(Service& service, const User& user, const std::string& path, const std::string& name,
                     const Fields& form) {
    Place place;
    std::optional<Entry> entry;
    try {
        place.folder = service.tree().open(user, path);
        entry = service.tree().lookup(user, place.folder, name);
    } catch (const StatusError& error) {
        if (error.status() != Status::Missing) {
            throw;
        }
    }
    checkProfile(form, path, name, entry);
    if (!entry) {
        throw StatusError(Status::Missing, "nothing at " + path + "/" + name);
    }
    checkName(name);
    requireWritable(service, user, place.folder);
    if (!entry->writable()) {
        throw StatusError(Status::Denied, name + " may not be written");
    }
    service.locks().requireFree(user.name, place.folder, name);
    place.name = name;
    place.entry = *entry;
    return place;
}

void requireWritable(Service& service, const User& user, const Folder& folder) {
    if (folder.shares || folder.holdsHomes() || !service.tree().lookup(user, folder, "")->writable()) {
        throw StatusError(Status::Denied, "the folder may not be written");
    }
}

void requireMovable(const Place& place) {
    if (place.folder.owns(place.name)) {
        throw StatusError(Status::Denied, place.name + " is the server's own");
    }
}

void requireFreeName(Service& service, const User& user, const Folder& folder, const std::string& name) {
    checkName(name);
    if (std::optional<Entry> entry = service.tree().lookup(user, folder, name)) {
        throw StatusError(entry->isFolder ? Status::FolderExists : Status::Exists, name + " exists");
    }
}

int64_t roomIn(Service& service, const Folder& folder) {
    if (folder.home.empty()) {
        const Volume* volume = service.options().volumes.find(folder.share);
        return volume ? std::max<int64_t>(0, volume->limit - usedInShare(service, volume->share)) : -1;
    }
    const User* owner = service.options().users.find(folder.home);
    // Work on versions costs nothing until it is committed.
    const bool atVersions = !folder.below.empty() && folder.below[0] == kVersions;
    if (!owner || owner->quota < 0 || atVersions) {
        return -1;
    }
    return std::max<int64_t>(0, owner->quota - usedInHome(service, owner->name));
}

void carry(const Place& place, const Folder& target, const Progress& progress) {
    const int from = place.folder.fd.get();
    const int to = target.fd.get();
    if (place.folder.sameVolume(target)) {
        takeTime(progress);
        renameInto(from, place.name, to, place.name, false);
        return;
    }
    requireRemovable(from, place.name);
    const std::string aside = kTemporaryPrefix + randomHex(8);
    copyTree(from, place.name, to, aside, progress);
    try {
        renameInto(to, aside, to, place.name, false);
    } catch (...) {
        removeTree(to, aside);
        throw;
    }
    removeTree(from, place.name);
}

bool discard(Service& service, const Place& place) {
    const Folder& folder = place.folder;
    const bool bin = !folder.home.empty() && service.shares().read()->settingsOf(folder.home).recycleBin != 0;
    if (!bin || ownFolder(folder, place.name, kRecycle) || ownFolder(folder, place.name, kVersions)) {
        requireRemovable(folder.fd.get(), place.name);
        removeTree(folder.fd.get(), place.name);
        return false;
    }
    Fd at = makeFolderAt(service.tree().openHome(folder.home).get(), kRecycle);
    for (const std::string& step : folder.below) {
        at = makeFolderBeside(at.get(), step);
    }
    renameBeside(folder.fd.get(), place.name, at.get());
    return true;
}

std::vector<std::string> formerPlace(const Folder& folder) {
    if (folder.home.empty() || folder.below.empty() || folder.below[0] != kRecycle) {
        throw StatusError(Status::Missing, "not in a recycle folder");
    }
    return {folder.below.begin() + 1, folder.below.end()};
}

void requireRecoverable(Service& service, const Place& place, bool overwrite) {
    Fd at = service.tree().openHome(place.folder.home);
    try {
        for (const std::string& step : formerPlace(place.folder)) {
            at = openFolderAt(at.get(), step);
        }
    } catch (const StatusError& error) {
        if (error.status() == Status::Missing) {
            return;  // folders that are gone are made again
        }
        throw;
    }
    struct stat folder {};
    struct stat there {};
    if (::fstat(at.get(), &folder) != 0 || !(folder.st_mode & 0200)) {
        throw StatusError(Status::Denied, "the folder it was in may not be written");
    }
    if (::fstatat(at.get(), place.name.c_str(), &there, AT_SYMLINK_NOFOLLOW) != 0) {
        return;
    }
    if (place.entry.isFolder || S_ISDIR(there.st_mode)) {
        throw StatusError(Status::FolderExists, place.name + " is there again, and one of them is a folder");
    }
    if (!overwrite) {
        throw StatusError(Status::Exists, place.name + " is there again");
    }
    if (!S_ISREG(there.st_mode) || !(there.st_mode & 0200)) {
        throw StatusError(Status::Denied, place.name + " may not be replaced");
    }
    Folder former;
    former.fd = std::move(at);
    service.locks().requireFree(place.folder.home, former, place.name);
}

void recover(Service& service, const Place& place, bool overwrite, const Progress& progress) {
    takeTime(progress);
    requireRecoverable(service, place, overwrite);
    Fd at = service.tree().openHome(place.folder.home);
    for (const std::string& step : formerPlace(place.folder)) {
        at = makeFolderAt(at.get(), step);
    }
    renameInto(place.folder.fd.get(), place.name, at.get(), place.name, overwrite);
}

}  // namespace nas
