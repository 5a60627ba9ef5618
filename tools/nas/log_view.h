#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "change_log.h"
#include "users.h"

namespace nas {

class Service;

// The log as one user may see it, with paths as that user names them: what lies in the own home, in a share
// or in a team folder; or only what lies below one folder of these.
class LogView {
public:
    LogView(Service& service, const User& user);
    // Throws as opening the folder does. One that was deleted is good as long as the log knows it.
    LogView(Service& service, const User& user, const std::string& folder);

    // What the change is to this user: a move out of sight is a deletion, one into sight makes something.
    // Nothing if it is none of the user's business.
    std::optional<Change> show(const Change& change) const;
    // The number of the newest change that the user may see and that fits; 0 if there is none.
    int64_t newest(const std::function<bool(const Change&)>& fits) const;
    int64_t newest() const;

private:
    // What happens to all that lies below a place happens to the user's folder there as well.
    std::optional<std::string> shownPath(const std::string& place, bool withAllBelow) const;

    const ChangeLog* log_;
    bool shares_ = false;
    std::vector<std::pair<std::string, std::string>> folders_;  // place, and the path that leads there
};

}  // namespace nas
