#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "fd.h"
#include "tree.h"

namespace nas {

// The locks around single files, each good for one piece of work on the file's versions. A lock keeps away
// every other such work, and every change by other users, until it is given back or rested for so long.
class Locks {
public:
    struct Lock {
        std::string id;
        std::string user;
        std::string version;
        int job = 0;             // the last one that works under it
        bool abandoned = false;  // the version is gone: it holds nobody off any more
    };

    explicit Locks(std::chrono::seconds longest) : longest_(longest) {}

    // Throws Denied if the file is locked already, by whomever.
    std::string take(const std::string& user, const Folder& folder, const std::string& name);
    // The user's lock of this file, renewed; throws Missing if it isn't that, or doesn't hold any more.
    Lock use(const std::string& id, const std::string& user, const Folder& folder, const std::string& name);
    void setVersion(const std::string& id, const std::string& version);
    void noteJob(const std::string& id, int job);
    void abandon(const std::string& id);
    void release(const std::string& id);
    size_t count();

    // Throws Denied if another user has locked the file, or one below the folder of that name.
    void requireFree(const std::string& user, const Folder& folder, const std::string& name);

private:
    using Clock = std::chrono::steady_clock;
    struct Held;

    std::shared_ptr<Held> find(const Folder& folder, const std::string& name);
    void change(const std::string& id, const std::function<void(Lock&)>& how);
    void dropOld();

    const std::chrono::seconds longest_;
    std::mutex mutex_;
    std::map<std::string, std::shared_ptr<Held>> locks_;
};

}  // namespace nas
