#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>

#include "fd.h"
#include "request.h"
#include "tree.h"

namespace nas {

// The numbers that the log's "action" carries.
enum class Action {
    Made = 8,
    NewContent = 9,
    Deleted = 10,
    Renamed = 11,
    Moved = 12,
    TimeSet = 13,
    Recovered = 14,
};

// Who changes something, and from which computer.
struct Author {
    std::string user;
    std::string device;
};
Author authorOf(const Request& request);

// One change. Places are written as below the root, whoever looks at them: "homes/anna/a.txt",
// "Public/a.txt".
struct Change {
    Action action = Action::Made;
    bool isFolder = false;
    std::string place;
    std::string former;  // of what was renamed or moved
    Author author;
    int64_t id = 0;  // given by the log
};

std::string placeOf(const Folder& folder, const std::string& name);
// Whether it is that folder, or lies below it.
bool liesBelow(const std::string& place, const std::string& folder);

// Every change that a request made, numbered as they come. Kept in a file of the root, so that the numbers go
// on after a restart.
class ChangeLog {
public:
    // Keeps so many changes; older ones are forgotten.
    ChangeLog(const std::string& root, size_t kept);

    // What lies in a recycle folder or among versions is not in the tree: a move there deletes.
    void add(Change change);
    // From the newest to the oldest, or up, until the callback says false.
    void eachDown(const std::function<bool(const Change&)>& visit) const;
    void eachFrom(int64_t lowest, const std::function<bool(const Change&)>& visit) const;
    int64_t newest() const;
    size_t count() const;

private:
    void load();
    void rewrite();
    void append(const Change& change);

    const size_t kept_;
    Fd folder_;
    Fd file_;
    size_t lines_ = 0;  // of the file; those of forgotten changes go now and then
    mutable std::mutex mutex_;
    std::deque<Change> changes_;
    int64_t last_ = 0;
};

}  // namespace nas
