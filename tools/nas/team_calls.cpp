#include <algorithm>

#include "change_log.h"
#include "sharing.h"
#include "time_text.h"

namespace nas {

namespace {

// "event_type" asks for any of the roles by their sum, for all by 0.
constexpr int64_t kAllRoles = 15;

int64_t wantedRoles(const Fields& query) {
    const int64_t roles = numberField(query, "event_type");
    if (roles < 0 || roles > kAllRoles) {
        throw Refusal("query key \"event_type\" is out of its range");
    }
    return roles == 0 ? kAllRoles : roles;
}

bool wanted(int64_t roles, Role role) {
    return (roles & static_cast<int64_t>(role)) != 0;
}

std::string parentOf(const ShareBook& book, const Share& share) {
    const Share* parent = nullptr;
    for (const Share& other : book.shares) {
        const bool above = other.id != share.id && other.nas == share.nas && other.owner == share.owner &&
                           liesBelow(share.path, other.path);
        if (above && (!parent || other.path.size() > parent->path.size())) {
            parent = &other;
        }
    }
    return parent ? parent->id : "";
}

nlohmann::json receiversOf(const ShareBook& book, const Share& share) {
    nlohmann::json receivers = nlohmann::json::array();
    for (const Event& event : book.events) {
        if (event.share == share.id && event.live()) {
            receivers.push_back({{"name", event.receiver},
                                 {"display_name", event.display},
                                 {"permission", event.readOnly ? 1 : 2},
                                 {"status", static_cast<int>(event.part)}});
        }
    }
    return receivers;
}

nlohmann::json folderJson(Service& service, const ShareBook& book, const Share& share, const Event* part) {
    const bool received = part && part->part == Part::Accepted;
    const Role role = part ? part->roleOf(part->receiver) : Role::Owner;
    nlohmann::json receivers = receiversOf(book, share);
    return {{"type", static_cast<int>(role)},
            {"status", isThere(service, share) ? 1 : 0},
            {"owner", share.owner},
            {"share_id", share.id},
            {"parent_id", parentOf(book, share)},
            {"nas_id", share.nas},
            {"name", received ? part->display : leafOf(share.path)},
            {"path", received ? kTeamScheme + share.team + "/"
                     : part   ? ""
                              : share.path},
            {"original_path", received ? teamAreaPath(*part) + "/"
                              : part   ? ""
                                       : share.path},
            {"receiver_number", receivers.size()},
            {"receiver", std::move(receivers)}};
}

bool concerns(const ShareBook& book, const Share& share, const std::string& user) {
    return share.owner == user || book.partIn(share.id, user);
}

// A folder by any of its paths, or one that it lies in.
bool atPath(const nlohmann::json& folder, const std::string& path) {
    const std::string top = withoutLastSlash(path);
    return liesBelow(folder["path"].get<std::string>(), top) ||
           liesBelow(folder["original_path"].get<std::string>(), top);
}

Answer teamFolders(Service& service, Request& request, httplib::Response&) {
    const Fields& query = request.query;
    const User& user = userHere(service, request);
    const int64_t roles = wantedRoles(query);
    const auto book = service.shares().read();
    std::vector<nlohmann::json> folders;
    for (const Share& share : book->shares) {
        const Event* part = book->partIn(share.id, user.name);
        const bool own = share.owner == user.name;
        if ((!own && !part) || !wanted(roles, own ? Role::Owner : part->roleOf(user.name))) {
            continue;
        }
        if (hasField(query, "target_user") && !concerns(*book, share, field(query, "target_user"))) {
            continue;
        }
        nlohmann::json folder = folderJson(service, *book, share, own ? nullptr : part);
        if (!hasField(query, "path") || atPath(folder, field(query, "path"))) {
            folders.push_back(std::move(folder));
        }
    }
    return {{{"status", 0}, {"total", folders.size()}, {"team_folder", page(folders, query)}},
            false,
            std::to_string(folders.size()) + " team folders"};
}

Answer events(Service& service, Request& request, httplib::Response&) {
    const User& user = userHere(service, request);
    const int64_t roles = wantedRoles(request.query);
    const auto book = service.shares().read();
    std::vector<nlohmann::json> events;
    for (const Event& event : book->events) {
        const bool own = event.owner == user.name;
        const Role role = event.roleOf(user.name);
        if ((!own && event.receiver != user.name) || event.removedBy.count(user.name) ||
            !wanted(roles, role)) {
            continue;
        }
        events.push_back({{"event_id", event.id},
                          {"target_name", own ? event.receiver : event.owner},
                          {"event_type", static_cast<int>(role)},
                          {"event_status", static_cast<int>(event.part)},
                          {"share_id", event.share},
                          {"file", role == Role::Receiver ? teamAreaPath(event) : event.file},
                          {"date", timeText(event.time, "%Y/%m/%d")},
                          {"time", timeText(event.time, "%H:%M:%S")}});
    }
    return {
        {{"status", number(Status::Ok)}, {"total", events.size()}, {"event", page(events, request.query)}},
        false,
        std::to_string(events.size()) + " events"};
}

Part partOfAll(const ShareBook& book, const Share& share) {
    const bool accepted = std::any_of(book.events.begin(), book.events.end(), [&](const Event& event) {
        return event.share == share.id && event.part == Part::Accepted;
    });
    return accepted ? Part::Accepted : Part::Waiting;
}

Answer findShare(Service& service, Request& request, httplib::Response&) {
    const User& user = userHere(service, request);
    const std::string& file = field(request.query, "file");
    if (file.empty()) {
        throw Refusal("query key \"file\" is empty");
    }
    // Below the root lies everything.
    const std::string top = file == "/" ? "" : lowerCase(withoutLastSlash(file));
    const auto book = service.shares().read();
    std::vector<nlohmann::json> found;
    for (const Share& share : book->shares) {
        if (share.owner == user.name && liesBelow(lowerCase(share.path), top)) {
            // Clients compare with what they asked for and a slash.
            found.push_back({{"event_type", static_cast<int>(Role::Owner)},
                             {"event_status", static_cast<int>(partOfAll(*book, share))},
                             {"file", share.path + "/"},
                             {"share_id", share.id}});
        }
    }
    return {{{"status", number(Status::Ok)}, {"total", found.size()}, {"event", page(found, request.query)}},
            false,
            std::to_string(found.size()) + " shares"};
}

struct Found {
    const Share* share = nullptr;
    const Event* part = nullptr;  // of a receiver
};

Found findByPath(Service& service, const ShareBook& book, const User& user, const std::string& path) {
    // Of several shares of one path all but one lost their folder.
    const Share* own = nullptr;
    for (const Share& share : book.shares) {
        if (share.owner == user.name && share.nas == service.shares().nas() && share.path == path &&
            (!own || isThere(service, share))) {
            own = &share;
        }
    }
    if (own) {
        return {own, nullptr};
    }
    for (const Event& event : book.events) {
        if (event.part == Part::Accepted && event.receiver == user.name && teamAreaPath(event) == path) {
            return {book.find(event.share), &event};
        }
    }
    return {};
}

bool folderAt(Service& service, const User& user, const std::string& path) {
    try {
        return !service.tree().open(user, path).shares;
    } catch (const StatusError&) {
        return false;
    }
}

// The sync client cuts the team area from a path.
std::string askedPath(const Request& request) {
    const bool sync = request.endpoint == Endpoint::SyncCgi;
    const std::string& path = field(request.query, sync ? "path" : "file");
    if (path.empty() && !sync) {
        throw Refusal("the path is empty");
    }
    return withoutLastSlash(sync && path[0] != '/' ? "/home/.Torvi/" + path : path);
}

Answer shareInfo(Service& service, Request& request, httplib::Response&) {
    const User& user = userHere(service, request);
    const std::string path = askedPath(request);
    const auto book = service.shares().read();
    const Found found = findByPath(service, *book, user, path);
    nlohmann::json reply = {{"status", number(Status::Ok)}};
    if (!found.share) {
        reply["file_exist"] = folderAt(service, user, path) ? 1 : 0;
        reply["nubo_type"] = 0;
        reply["event_status"] = 0;
        reply["share_id"] = kNoShare;
        reply["nas_id"] = kNoShare;
        return {reply};
    }
    const Share& share = *found.share;
    reply["file_exist"] = isThere(service, share) ? 1 : 0;
    reply["nubo_type"] = static_cast<int>(found.part ? Role::Receiver : Role::Owner);
    reply["event_status"] = static_cast<int>(found.part ? found.part->part : partOfAll(*book, share));
    reply["event_id"] = found.part ? found.part->id : 0;
    reply["share_id"] = share.id;
    reply["share_id_status"] = reply["file_exist"];
    reply["nas_id"] = share.nas.empty() ? kNoShare : share.nas;
    return {reply};
}

std::vector<Shape> teamForms() {
    const Shape plain = {
        "func=nubo_team_folder_get_list", "sid", "event_status=0", "event_type", "lower", "upper"};
    std::vector<Shape> shapes = {plain};
    for (const Shape& more : {Shape{"target_user"}, Shape{"path"}, Shape{"target_user", "path"}}) {
        shapes.push_back(plain);
        shapes.back().insert(shapes.back().end(), more.begin(), more.end());
    }
    return shapes;
}

}  // namespace

void addTeamCalls(std::vector<Call>& calls) {
    const unsigned sync = on(Endpoint::SyncCgi);
    const unsigned manager = on(Endpoint::ManagerCgi);
    addGet(calls, sync, teamForms(), teamFolders, notSuccess);
    addGet(calls, manager, {{"func=nubo_get_my_event", "sid", "event_type", "lower", "upper"}}, events);
    addGet(calls, kBothCgis, {{"func=nubo_find_share", "sid", "file", "lower", "upper"}}, findShare);
    addGet(calls, sync, {{"func=nubo_team_folder_get_info", "sid", "path"}}, shareInfo);
    addGet(calls, manager, {{"func=nubo_get_share_info", "sid", "file"}}, shareInfo);
}

}  // namespace nas
