#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <string>

#include "share_book.h"

namespace nas {

// The folders of one node that a user shares or received, as listings tell of them.
class SharedFolders {
public:
    SharedFolders(const ShareBook& book, const std::string& nas, const std::string& user);

    // Puts "nubo_type" and "nubo_share_id" to an entry that lies at this place below the root.
    void tell(const std::string& place, nlohmann::json& entry) const;

private:
    struct Found {
        Role role;
        std::string share;
    };

    std::map<std::string, Found> folders_;  // by their places
};

}  // namespace nas
