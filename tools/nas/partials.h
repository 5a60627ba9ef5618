#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <set>
#include <string>

#include "fd.h"
#include "growing_file.h"

namespace nas {

// Uploads that come in slices, each known by its id to the user who began it. They lie in a hidden folder of
// the root and outlive the server, until nothing was added for so long.
class Partials {
public:
    Partials(const std::string& root, std::chrono::seconds longest);

    // The root folder is the client's word for where its uploads belong; it must be the same each time.
    std::string begin(const std::string& user, const std::string& rootFolder);
    // Throws Missing for an id that isn't this user's, and Failed while another request adds to it. A request
    // whose connection is lost has a moment to put away what it got.
    std::unique_ptr<GrowingFile> open(const std::string& user, const std::string& id,
                                      const std::string& rootFolder);
    int64_t size(const std::string& user, const std::string& id, const std::string& rootFolder);
    void remove(const std::string& user, const std::string& id, const std::string& rootFolder);
    size_t count();

private:
    class File;

    void require(const std::string& user, const std::string& id, const std::string& rootFolder);
    bool waitUntilFree(std::unique_lock<std::mutex>& lock, const std::string& id);
    void erase(const std::string& id);
    void dropOld();

    const std::chrono::seconds longest_;
    Fd folder_;
    std::mutex mutex_;
    std::condition_variable freed_;
    std::set<std::string> busy_;
};

}  // namespace nas
