#include "shared_folders.h"

namespace nas {

SharedFolders::SharedFolders(const ShareBook& book, const std::string& nas, const std::string& user) {
    for (const Event* part : book.receivedBy(nas, user)) {
        const Share& share = *book.find(part->share);
        const Found found = {Role::Receiver, share.id};
        folders_[placeFor(share.owner, share.path)] = found;
        folders_[placeFor(user, teamAreaPath(*part))] = found;
    }
    // What is one's own share as well is that first, and the newest of one path.
    for (const Share& share : book.shares) {
        if (share.nas == nas && share.owner == user) {
            folders_[placeFor(user, share.path)] = {Role::Owner, share.id};
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
