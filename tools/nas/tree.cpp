#include "tree.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>

#include "disk.h"
#include "wire_text.h"

namespace nas {

const char* const kTemporaryPrefix = ".torvi-nas.";

namespace {

constexpr size_t kLongestName = 255;
const char* const kHomes = "homes";

std::vector<std::string> pieces(const std::string& path) {
    std::vector<std::string> out;
    for (size_t from = 0; from < path.size();) {
        size_t to = std::min(path.find('/', from), path.size());
        if (to > from) {
            out.push_back(path.substr(from, to - from));
            checkName(out.back());
        }
        from = to + 1;
    }
    return out;
}

Entry fromStat(const struct stat& info, const std::string& name, bool readOnly) {
    Entry entry;
    entry.name = name;
    entry.isFolder = S_ISDIR(info.st_mode);
    entry.size = info.st_size;
    entry.mtime = info.st_mtim.tv_sec;
    entry.mode = info.st_mode & (readOnly ? 0555 : 0777);
    return entry;
}

bool served(const struct stat& info) {
    return S_ISDIR(info.st_mode) || S_ISREG(info.st_mode);
}

}  // namespace

const char* const kRecycle = "@Recycle";
const char* const kVersions = "@Versions";

bool Folder::owns(const std::string& name) const {
    return !home.empty() && below.empty() && (name == kRecycle || name == kVersions);
}

bool Folder::holdsHomes() const {
    return !shares && share == kHomes && home.empty();
}

std::string markOf(const Folder& folder) {
    struct stat info {};
    if (folder.shares || ::fstat(folder.fd.get(), &info) != 0) {
        return "";
    }
    return std::to_string(info.st_dev) + ":" + std::to_string(info.st_ino);
}

void checkName(const std::string& name) {
    if (name.empty() || name.find('/') != std::string::npos || name.find('\0') != std::string::npos) {
        throw StatusError(Status::IllegalName, "not a name: \"" + name + "\"");
    }
    if (name == "." || name == "..") {
        throw StatusError(Status::Denied, "a path may not step sideways: \"" + name + "\"");
    }
    if (hiddenName(name)) {
        throw StatusError(Status::Denied, "names of unfinished uploads are the server's own");
    }
    if (name.size() > kLongestName) {
        throw StatusError(Status::NameTooLong, "name of " + std::to_string(name.size()) + " bytes");
    }
}

Tree::Tree(const std::string& root, const Users& users, const Shares& shares)
    : users_(users), shares_(shares) {
    root_.reset(::open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!root_) {
        throw std::runtime_error("cannot open the root " + root + ": " + std::strerror(errno));
    }
    homes_ = makeFolderAt(root_.get(), kHomes);
    for (const auto& [name, user] : users.all()) {
        makeFolderAt(homes_.get(), name);
    }
}

Folder Tree::make(const User& user, const std::string& path) const {
    Folder at;
    at.shares = true;
    for (const std::string& piece : pieces(path)) {
        if (!at.shares) {
            makeFolderAt(at.fd.get(), piece);
        }
        at = down(user, at, piece);
    }
    return at;
}

Fd Tree::openShare(const User& user, const std::string& name) const {
    if (name == "home") {
        return openFolderAt(homes_.get(), user.name);
    }
    if (name == kHomes && !user.admin) {
        throw StatusError(Status::Denied, "the homes of all users are for administrators");
    }
    return openFolderAt(root_.get(), name);
}

Fd Tree::openChild(const User& user, const Folder& folder, const std::string& name) const {
    return folder.shares ? openShare(user, name) : openFolderAt(folder.fd.get(), name);
}

Fd Tree::openHome(const std::string& name) const {
    checkName(name);
    return openFolderAt(homes_.get(), name);
}

Fd Tree::openRootFolder(const std::string& name) const {
    checkName(name);
    return openFolderAt(root_.get(), name);
}

bool Tree::homeExists(const User& user) const {
    struct stat info {};
    return ::fstatat(homes_.get(), user.name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISDIR(info.st_mode);
}

Folder Tree::openTeam(const User& user, const std::string& rest) const {
    size_t slash = std::min(rest.find('/'), rest.size());
    const auto book = shares_.read();
    const Share* share = book->findTeam(shares_.nas(), rest.substr(0, slash));
    const User* owner = share ? users_.find(share->owner) : nullptr;
    if (!owner) {
        throw StatusError(Status::Missing, "no team folder vtf://" + rest.substr(0, slash));
    }
    const bool own = user.name == owner->name;
    const Event* part = own ? nullptr : book->partIn(share->id, user.name);
    if (!own && (!part || part->part != Part::Accepted)) {
        throw StatusError(Status::Denied,
                          "team folder vtf://" + share->team + " isn't shared with " + user.name);
    }
    Folder folder = open(*owner, share->path);
    if (markOf(folder) != share->folder) {
        throw StatusError(Status::Missing, "another folder is where vtf://" + share->team + " was");
    }
    folder.received = true;
    folder.readOnly = !own && part->readOnly;
    for (const std::string& piece : pieces(rest.substr(slash))) {
        folder = down(user, folder, piece);
    }
    return folder;
}

Folder Tree::openTeamArea(const User& user) const {
    Folder area;
    area.teamArea = true;
    area.share = kHomes;
    area.home = user.name;
    area.below = {leafOf(kTeamArea)};
    try {
        area.fd = openFolderAt(openHome(user.name).get(), area.below[0]);
    } catch (const StatusError& error) {
        if (error.status() != Status::Missing) {
            throw;
        }
    }
    return area;
}

std::optional<Folder> Tree::received(const User& user, const std::string& display) const {
    const auto book = shares_.read();
    for (const Event* part : book->receivedBy(shares_.nas(), user.name)) {
        if (part->display == display) {
            return openTeam(user, book->find(part->share)->team);
        }
    }
    return std::nullopt;
}

void Tree::listTeamArea(const User& user, std::vector<Entry>& out) const {
    const auto book = shares_.read();
    for (const Event* part : book->receivedBy(shares_.nas(), user.name)) {
        try {
            const Folder folder = openTeam(user, book->find(part->share)->team);
            out.push_back(describe(folder, folder.fd.get(), part->display));
        } catch (const StatusError&) {
            // The owner's folder is gone.
        }
    }
}

std::optional<Entry> Tree::lookupInTeamArea(const User& user, const Folder& area,
                                            const std::string& name) const {
    if (name.empty()) {
        return area.fd ? describe(area, area.fd.get(), name) : Entry{name, true, 0, 0, 0555};
    }
    checkName(name);
    if (const std::optional<Folder> team = received(user, name)) {
        return describe(*team, team->fd.get(), name);
    }
    return area.fd ? lookupThere(area, name) : std::nullopt;
}

Folder Tree::open(const User& user, const std::string& path) const {
    if (isTeamPath(path)) {
        return openTeam(user, path.substr(kTeamScheme.size()));
    }
    if (path.empty() || path[0] != '/') {
        throw StatusError(Status::Missing, "path doesn't begin with a slash: \"" + path + "\"");
    }
    Folder folder;
    folder.shares = true;
    for (const std::string& piece : pieces(path)) {
        folder = down(user, folder, piece);
    }
    return folder;
}

Folder Tree::down(const User& user, const Folder& from, const std::string& name) const {
    const bool home = from.below.empty() && from.home == user.name;
    if (user.seesTeamArea && home && name == leafOf(kTeamArea)) {
        return openTeamArea(user);
    }
    if (from.teamArea) {
        if (std::optional<Folder> team = received(user, name)) {
            return std::move(*team);
        }
        if (!from.fd) {
            throw StatusError(Status::Missing, "no team folder " + name);
        }
    }
    Folder folder;
    folder.fd = openChild(user, from, name);
    folder.readOnly = from.readOnly;
    folder.received = from.received;
    folder.share = from.share;
    folder.home = from.home;
    folder.below = from.below;
    if (from.shares) {
        folder.share = name == "home" ? kHomes : name;
        folder.home = name == "home" ? user.name : "";
    } else if (from.holdsHomes()) {
        folder.home = name;
    } else {
        folder.below.push_back(name);
    }
    return folder;
}

Entry Tree::describe(const Folder& folder, int fd, const std::string& name) const {
    struct stat info {};
    if (::fstat(fd, &info) != 0) {
        throw errnoError(errno, name);
    }
    return fromStat(info, name, folder.readOnly);
}

std::vector<Entry> Tree::list(const User& user, const Folder& folder) const {
    std::vector<Entry> out;
    if (folder.shares) {
        if (homeExists(user)) {
            out.push_back(describe(folder, openShare(user, "home").get(), "home"));
        }
        eachName(root_.get(), [&](const std::string& name) {
            struct stat info {};
            bool offered = name != "home" && (name != kHomes || user.admin);
            if (offered && ::fstatat(root_.get(), name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0 &&
                S_ISDIR(info.st_mode)) {
                out.push_back(fromStat(info, name, false));
            }
            return true;
        });
        return out;
    }
    if (folder.teamArea) {
        listTeamArea(user, out);
        if (!folder.fd) {
            return out;
        }
    }
    if (!describe(folder, folder.fd.get(), "folder").readable()) {
        throw StatusError(Status::Denied, "the folder may not be read");
    }
    const auto teams = static_cast<std::ptrdiff_t>(out.size());
    eachName(folder.fd.get(), [&](const std::string& name) {
        struct stat info {};
        // A team folder hides what is really there under its name.
        const bool hidden =
            folder.owns(name) || std::any_of(out.begin(), out.begin() + teams,
                                             [&](const Entry& team) { return team.name == name; });
        if (!hidden && ::fstatat(folder.fd.get(), name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0 &&
            served(info)) {
            out.push_back(fromStat(info, name, folder.readOnly));
        }
        return true;
    });
    return out;
}

bool Tree::hasChild(const User& user, const Folder& folder, const std::string& name) const {
    Folder child = down(user, folder, name);
    bool found = false;
    eachName(child.fd.get(), [&](const std::string& inner) {
        struct stat info {};
        found = !child.owns(inner) &&
                ::fstatat(child.fd.get(), inner.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0 && served(info);
        return !found;
    });
    return found;
}

std::optional<Entry> Tree::lookup(const User& user, const Folder& folder, const std::string& name) const {
    if (folder.teamArea) {
        return lookupInTeamArea(user, folder, name);
    }
    if (name.empty() && !folder.shares) {
        return describe(folder, folder.fd.get(), name);
    }
    checkName(name);
    if (folder.shares) {
        try {
            return describe(folder, openShare(user, name).get(), name);
        } catch (const StatusError& error) {
            if (error.status() == Status::Missing) {
                return std::nullopt;
            }
            throw;
        }
    }
    return lookupThere(folder, name);
}

std::optional<Entry> Tree::lookupThere(const Folder& folder, const std::string& name) const {
    struct stat info {};
    if (::fstatat(folder.fd.get(), name.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) {
        if (errno == ENOENT) {
            return std::nullopt;
        }
        throw errnoError(errno, name);
    }
    if (!served(info)) {
        throw StatusError(Status::Denied, name + " is neither a file nor a folder");
    }
    return fromStat(info, name, folder.readOnly);
}

int64_t Tree::totalSize(const User& user, const Folder& folder, const std::string& name) const {
    std::optional<Entry> entry = lookup(user, folder, name);
    if (!entry) {
        throw StatusError(Status::Missing, "nothing named " + name);
    }
    if (!entry->isFolder) {
        return entry->size;
    }
    if (!name.empty()) {
        return sumBelow(down(user, folder, name).fd.get());
    }
    return folder.fd ? sumBelow(folder.fd.get()) : 0;
}

Fd Tree::openFile(const Folder& folder, const std::string& name) const {
    checkName(name);
    if (folder.shares || !folder.fd) {
        throw StatusError(Status::Missing, "no files beside the shares or team folders");
    }
    // Not blocking: a fifo in the folder must not hold the thread.
    Fd fd(::openat(folder.fd.get(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
    if (!fd) {
        throw errnoError(errno, name);
    }
    struct stat info {};
    if (::fstat(fd.get(), &info) != 0 || !S_ISREG(info.st_mode)) {
        throw StatusError(S_ISDIR(info.st_mode) ? Status::Missing : Status::Denied, name + " is no file");
    }
    if (!fromStat(info, name, folder.readOnly).readable()) {
        throw StatusError(Status::Denied, name + " may not be read");
    }
    return fd;
}

void Tree::setTime(const User& user, const Folder& folder, const std::string& name, int64_t mtime) const {
    std::optional<Entry> entry = lookup(user, folder, name);
    if (!entry) {
        throw StatusError(Status::Missing, "nothing named " + name);
    }
    if (!entry->writable()) {
        throw StatusError(Status::Denied, name + " may not be written");
    }
    timespec times[2] = {{0, UTIME_OMIT}, {static_cast<time_t>(mtime), 0}};
    Fd share;
    int result = 0;
    const std::optional<Folder> team = folder.teamArea ? received(user, name) : std::nullopt;
    if (team) {
        result = ::futimens(team->fd.get(), times);
    } else if (folder.shares || name.empty()) {
        share = folder.shares ? openShare(user, name) : Fd();
        result = ::futimens(share ? share.get() : folder.fd.get(), times);
    } else {
        result = ::utimensat(folder.fd.get(), name.c_str(), times, AT_SYMLINK_NOFOLLOW);
    }
    if (result != 0) {
        throw errnoError(errno, name);
    }
}

}  // namespace nas
