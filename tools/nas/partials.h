#pragma once

#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
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
    // These throw Missing for an id that isn't this user's. A request that still adds to the upload, perhaps
    // on a connection that is long lost, has a moment to put away what it got. Then it may add no more,
    // unless it is only the size that is asked for.
    //
    // To go on from the offset. What lost requests added since that size was told is cut off.
    std::unique_ptr<GrowingFile> open(const std::string& user, const std::string& id,
                                      const std::string& rootFolder, int64_t offset);
    int64_t size(const std::string& user, const std::string& id, const std::string& rootFolder);
    void remove(const std::string& user, const std::string& id, const std::string& rootFolder);
    size_t count();

private:
    class File;
    struct Use;

    void require(const std::string& user, const std::string& id, const std::string& rootFolder);
    void wait(std::unique_lock<std::mutex>& lock, const std::string& id);
    void takeAway(const std::string& id);
    void erase(const std::string& id);
    void dropOld();

    const std::chrono::seconds longest_;
    Fd folder_;
    std::mutex mutex_;
    std::condition_variable freed_;
    std::map<std::string, std::shared_ptr<Use>> busy_;
    std::map<std::string, int64_t> told_;  // the last size told, until a request has added all that it has
};

}  // namespace nas
