#include "share_book.h"

#include <algorithm>
#include <ctime>

#include "change_log.h"
#include "disk.h"
#include "status.h"

namespace nas {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(Share, id, team, nas, owner, path, folder)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(Event, id, share, owner, receiver, file, readOnly, part, display, time,
                                   removedBy)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(ShareSettings, recycleBin, policy)

namespace {

constexpr size_t kMostEnded = 1000;

template <typename Items, typename Fits>
auto firstOf(Items& items, Fits fits) {
    auto it = std::find_if(items.begin(), items.end(), fits);
    return it == items.end() ? nullptr : &*it;
}

// The event, which is there.
Event& eventIn(ShareBook& book, int64_t id) {
    Event* event = firstOf(book.events, [&](const Event& e) { return e.id == id; });
    if (!event || !event->live()) {
        throw StatusError(Status::Missing, "event " + std::to_string(id) + " is over");
    }
    return *event;
}

}  // namespace

void to_json(nlohmann::json& json, const ShareBook& book) {
    json = {{"shares", book.shares},     {"events", book.events}, {"links", book.links},
            {"settings", book.settings}, {"rules", book.rules},   {"last_event", book.lastEvent}};
}

void from_json(const nlohmann::json& json, ShareBook& book) {
    json.at("shares").get_to(book.shares);
    json.at("events").get_to(book.events);
    json.at("links").get_to(book.links);
    json.at("settings").get_to(book.settings);
    json.at("rules").get_to(book.rules);
    json.at("last_event").get_to(book.lastEvent);
}

std::string leafOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

std::string teamAreaPath(const Event& event) {
    return std::string(kTeamArea) + "/" + event.display;
}

std::string pathFor(const std::string& user, const std::string& place) {
    const std::string home = "homes/" + user;
    return liesBelow(place, home) ? "/home" + place.substr(home.size()) : "/" + place;
}

std::string placeFor(const std::string& user, const std::string& path) {
    const std::string home = "/home";
    return liesBelow(path, home) ? "homes/" + user + path.substr(home.size()) : path.substr(1);
}

Role Event::roleOf(const std::string& user) const {
    if (!live()) {
        return Role::Ended;
    }
    if (owner == user) {
        return Role::Owner;
    }
    return part == Part::Waiting ? Role::Invited : Role::Receiver;
}

const Share* ShareBook::find(const std::string& id) const {
    return firstOf(shares, [&](const Share& share) { return share.id == id; });
}

const Share* ShareBook::findTeam(const std::string& nas, const std::string& team) const {
    return firstOf(shares, [&](const Share& share) { return share.nas == nas && share.team == team; });
}

const Event* ShareBook::findEvent(int64_t id) const {
    return firstOf(events, [&](const Event& event) { return event.id == id; });
}

std::vector<const Event*> ShareBook::receivedBy(const std::string& nas, const std::string& user) const {
    std::vector<const Event*> received;
    for (const Event& event : events) {
        if (event.part == Part::Accepted && event.receiver == user && find(event.share)->nas == nas) {
            received.push_back(&event);
        }
    }
    return received;
}

const Event* ShareBook::partIn(const std::string& share, const std::string& user) const {
    return firstOf(events, [&](const Event& event) {
        return event.live() && event.share == share && event.receiver == user;
    });
}

ShareSettings ShareBook::settingsOf(const std::string& user) const {
    auto it = settings.find(user);
    return it == settings.end() ? ShareSettings() : it->second;
}

bool ShareBook::hasTeamFolder(const std::string& user) const {
    return firstOf(shares, [&](const Share& share) { return share.owner == user; }) ||
           firstOf(events, [&](const Event& event) {
               return event.receiver == user && event.part == Part::Accepted;
           });
}

Share& ShareBook::share(const std::string& nas, const std::string& owner, const std::string& path,
                        const std::string& folder) {
    Share* known = firstOf(shares, [&](const Share& share) {
        return share.nas == nas && share.owner == owner && share.path == path && share.folder == folder;
    });
    if (known) {
        return *known;
    }
    const std::string name = owner + "-" + leafOf(path);
    std::string team = name;
    for (int n = 2; findTeam(nas, team); ++n) {
        team = name + "-" + std::to_string(n);
    }
    shares.push_back({randomHex(8), team, nas, owner, path, folder});
    return shares.back();
}

void ShareBook::invite(const Share& share, const std::string& receiver, bool readOnly) {
    if (const Event* known = partIn(share.id, receiver)) {
        eventIn(*this, known->id).readOnly = readOnly;
        return;
    }
    Event event;
    event.id = ++lastEvent;
    event.share = share.id;
    event.owner = share.owner;
    event.receiver = receiver;
    event.file = share.path;
    event.readOnly = readOnly;
    event.time = std::time(nullptr);
    events.push_back(event);
    if (settingsOf(receiver).policy == static_cast<int>(Policy::Accept)) {
        accept(event.id, "");
    }
}

bool ShareBook::displayTaken(const std::string& user, const std::string& display) const {
    return firstOf(events, [&](const Event& event) {
        return event.part == Part::Accepted && event.receiver == user && event.display == display;
    });
}

void ShareBook::accept(int64_t id, const std::string& display) {
    Event& event = eventIn(*this, id);
    if (event.part == Part::Accepted) {
        throw StatusError(Status::Exists, "event " + std::to_string(id) + " is accepted already");
    }
    if (!display.empty() && displayTaken(event.receiver, display)) {
        throw StatusError(Status::Exists, event.receiver + " has a team folder " + display);
    }
    const std::string leaf = leafOf(event.file);
    std::string name = display.empty() ? leaf : display;
    for (int n = 2; displayTaken(event.receiver, name); ++n) {
        name = leaf + " (" + std::to_string(n) + ")";
    }
    event.display = name;
    event.part = Part::Accepted;
    event.time = std::time(nullptr);
}

void ShareBook::end(int64_t id, Part how) {
    Event& event = eventIn(*this, id);
    event.part = how;
    event.time = std::time(nullptr);
    dropOldest();
}

void ShareBook::unshare(const std::string& id) {
    for (Event& event : events) {
        if (event.share == id && event.live()) {
            event.part = Part::TakenAway;
            event.time = std::time(nullptr);
        }
    }
    shares.erase(
        std::remove_if(shares.begin(), shares.end(), [&](const Share& share) { return share.id == id; }),
        shares.end());
    dropOldest();
}

void ShareBook::forget(int64_t id, const std::string& user) {
    for (Event& event : events) {
        if (event.id == id) {
            event.removedBy.insert(user);
        }
    }
    events.erase(std::remove_if(events.begin(), events.end(),
                                [](const Event& event) {
                                    return event.removedBy.count(event.owner) &&
                                           event.removedBy.count(event.receiver);
                                }),
                 events.end());
}

void ShareBook::relocate(const std::string& id, const std::string& path, const std::string& folder) {
    for (Share& share : shares) {
        if (share.id == id) {
            share.path = path;
            share.folder = folder;
        }
    }
    for (Event& event : events) {
        if (event.share == id && event.live()) {
            event.file = path;
        }
    }
}

void ShareBook::dropOldest() {
    auto ended = static_cast<size_t>(
        std::count_if(events.begin(), events.end(), [](const Event& event) { return !event.live(); }));
    for (auto it = events.begin(); it != events.end() && ended > kMostEnded;) {
        if (it->live()) {
            ++it;
        } else {
            it = events.erase(it);
            --ended;
        }
    }
}

}  // namespace nas
