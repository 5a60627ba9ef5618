#include "shared_folders.h"

namespace nas {

SharedFolders::SharedFolders(const ShareBook& book, const std::string& nas, const std::string& user) {
    for (const Share& share : book.shares) {
        if (share.nas != nas) {
            continue;
        }
        const std::string place = placeFor(share.owner, share.path);
        const Event* part = book.partIn(share.id, user);
        if (share.owner == user) {
            folders_[place] = {Role::Owner, share.id};
        } else if (part && part->part == Part::Accepted) {
            // A folder that is one's own share as well is that first.
            folders_.insert({place, {Role::Receiver, share.id}});
        }
    }
}

void SharedFolders::tell(const std::string& place, nlohmann::json& entry) const {
    const auto found = folders_.find(place);
    const bool shared = found != folders_.end();
    entry["nubo_type"] = shared ? static_cast<int>(found->second.role) : 0;
    entry["nubo_share_id"] = shared ? found->second.share : "---";
}

}  // namespace nas
