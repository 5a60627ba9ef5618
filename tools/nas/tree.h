#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "fd.h"
#include "shares.h"
#include "status.h"
#include "users.h"

namespace nas {

struct Entry {
    std::string name;
    bool isFolder = false;
    int64_t size = 0;
    int64_t mtime = 0;
    unsigned mode = 0;  // permission bits; the owner's decide what users of the server may do

    bool readable() const { return mode & 0400; }
    bool writable() const { return mode & 0200; }
    // The permission bits written as a decimal number: 0755 is 755.
    int privilege() const {
        return static_cast<int>((mode >> 6 & 7) * 100 + (mode >> 3 & 7) * 10 + (mode & 7));
    }
    // 0 nothing, 1 read, 2 read and write.
    int access() const { return writable() ? 2 : readable() ? 1 : 0; }
};

// An opened folder of some user's tree.
struct Folder {
    Fd fd;
    bool shares = false;                  // the tree's top, whose children are the shares
    bool readOnly = false;                // by the rule of a team folder
    bool received = false;                // reached as a team folder or below one
    std::string share;                    // the folder of the root in which it lies
    std::string home;                     // whose home it lies in, if it is one
    std::vector<std::string> below = {};  // the steps down from that home or share
    // Team folders stand in it beside what is really there; it may be no real folder at all.
    bool teamArea = false;

    // The folder of all homes, whose children come and go with the users.
    bool holdsHomes() const;
    // Of a home: the folders that the server keeps there, reached by their path but never listed.
    bool owns(const std::string& name) const;
    bool sameVolume(const Folder& other) const { return share == other.share && home == other.home; }
};

// The folder that is served, seen through one user's eyes: "/home" is the user's own folder, the other top
// folders are shares, and "vtf://<id>/" is a team folder, which also stands in the team area of who sees
// that. Every step down is taken by openat without following symbolic links, so no path, and no race, leads
// out of the root.
class Tree {
public:
    Tree(const std::string& root, const Users& users, const Shares& shares);

    Folder open(const User& user, const std::string& path) const;
    // The same with the folders made that aren't there yet, but for the share.
    Folder make(const User& user, const std::string& path) const;
    Fd openHome(const std::string& name) const;
    // A share, whoever asks.
    Fd openRootFolder(const std::string& name) const;
    bool homeExists(const User& user) const;

    std::vector<Entry> list(const User& user, const Folder& folder) const;
    bool hasChild(const User& user, const Folder& folder, const std::string& name) const;
    // Nothing if there is no such entry; an empty name is the folder itself.
    std::optional<Entry> lookup(const User& user, const Folder& folder, const std::string& name) const;
    int64_t totalSize(const User& user, const Folder& folder, const std::string& name) const;
    Fd openFile(const Folder& folder, const std::string& name) const;
    void setTime(const User& user, const Folder& folder, const std::string& name, int64_t mtime) const;

private:
    Fd openShare(const User& user, const std::string& name) const;
    Fd openChild(const User& user, const Folder& folder, const std::string& name) const;
    Folder down(const User& user, const Folder& from, const std::string& name) const;
    Folder openTeam(const User& user, const std::string& rest) const;
    Folder openTeamArea(const User& user) const;
    // The team folder that the user calls so.
    std::optional<Folder> received(const User& user, const std::string& display) const;
    std::optional<Entry> lookupThere(const Folder& folder, const std::string& name) const;
    std::optional<Entry> lookupInTeamArea(const User& user, const Folder& area,
                                          const std::string& name) const;
    void listTeamArea(const User& user, std::vector<Entry>& out) const;
    Entry describe(const Folder& folder, int fd, const std::string& name) const;

    const Users& users_;
    const Shares& shares_;
    Fd root_;
    Fd homes_;
};

// Uploads in progress bear this prefix; such names are nobody's business.
extern const char* const kTemporaryPrefix;

// Of each home: where deleted files wait, and where versions are worked on.
extern const char* const kRecycle;
extern const char* const kVersions;

// Which folder it is, also when it was renamed.
std::string markOf(const Folder& folder);

// Throws unless the name can be that of a file or folder.
void checkName(const std::string& name);

}  // namespace nas
