#include "log_view.h"

#include "service.h"
#include "sharing.h"
#include "wire_text.h"

namespace nas {

namespace {

const std::string kHomes = "homes";

// Of the user's own team area, for those who see it.
bool inTeamArea(const User& user, const std::string& path) {
    return user.seesTeamArea && liesBelow(path, kTeamArea);
}

// Of a folder that may be gone: where the nearest one above it lies, and the steps from there.
std::string placeOfPath(Service& service, const User& user, const std::string& path) {
    std::string gone;
    for (std::string at = path;;) {
        try {
            const Folder folder = service.tree().open(user, at);
            if (folder.shares && !gone.empty()) {
                throw StatusError(Status::Missing, "no share" + gone);
            }
            return placeOf(folder, "") + gone;
        } catch (const StatusError& error) {
            const size_t slash = at.rfind('/');
            const size_t first = isTeamPath(at) ? kTeamScheme.size() : 1;
            if (error.status() != Status::Missing || slash == std::string::npos || slash < first) {
                throw;
            }
            gone = at.substr(slash) + gone;
            at.erase(slash);
        }
    }
}

bool takesAlong(Action action) {
    return action == Action::Deleted || action == Action::Renamed || action == Action::Moved ||
           action == Action::Recovered;
}

}  // namespace

LogView::LogView(Service& service, const User& user) : log_(&service.changeLog()), shares_(true) {
    folders_.emplace_back(kHomes + "/" + user.name, "/home");
    const auto book = service.shares().read();
    for (const Event* part : book->receivedBy(service.shares().nas(), user.name)) {
        const Share& share = *book->find(part->share);
        if (isReplaced(service, share)) {
            continue;
        }
        if (const User* owner = service.options().users.find(share.owner)) {
            try {
                folders_.emplace_back(placeOfPath(service, *owner, share.path), kTeamScheme + share.team);
            } catch (const StatusError&) {
                // Its share is gone.
            }
        }
    }
}

LogView::LogView(Service& service, const User& user, const std::string& folder) : log_(&service.changeLog()) {
    const std::string path = withoutLastSlash(folder);
    if (path == "/") {
        *this = LogView(service, user);
        return;
    }
    const std::string place = placeOfPath(service, user, path);
    if (!isTeamPath(path) && !inTeamArea(user, path) && liesBelow(place, kHomes) &&
        !liesBelow(place, kHomes + "/" + user.name)) {
        throw StatusError(Status::Denied, "the log of other homes is for their users");
    }
    folders_.emplace_back(place, path);
    bool there = true;
    try {
        service.tree().open(user, path);
    } catch (const StatusError&) {
        there = false;
    }
    if (!there && newest() == 0) {
        throw StatusError(Status::Missing, "no folder " + path);
    }
}

std::optional<std::string> LogView::shownPath(const std::string& place, bool withAllBelow) const {
    if (place.empty()) {
        return std::nullopt;
    }
    for (const auto& [folder, path] : folders_) {
        if (liesBelow(place, folder)) {
            return path + place.substr(folder.size());
        }
    }
    if (shares_ && !liesBelow(place, kHomes)) {
        return "/" + place;
    }
    for (const auto& [folder, path] : folders_) {
        if (withAllBelow && liesBelow(folder, place)) {
            return path;
        }
    }
    return std::nullopt;
}

std::optional<Change> LogView::show(const Change& change) const {
    const bool withAllBelow = takesAlong(change.action);
    const std::optional<std::string> now = shownPath(change.place, withAllBelow);
    const std::optional<std::string> was = shownPath(change.former, withAllBelow);
    if (!now && !was) {
        return std::nullopt;
    }
    Change shown = change;
    shown.place = now ? *now : *was;
    shown.former = now && was ? *was : "";
    if (!now) {
        shown.action = Action::Deleted;
    } else if (!was && !change.former.empty()) {
        shown.action = Action::Made;
    }
    return shown;
}

int64_t LogView::newest(const std::function<bool(const Change&)>& fits) const {
    int64_t found = 0;
    log_->eachDown([&](const Change& change) {
        found = fits(change) && show(change) ? change.id : 0;
        return found == 0;
    });
    return found;
}

int64_t LogView::newest() const {
    return newest([](const Change&) { return true; });
}

}  // namespace nas
