#include <algorithm>

#include "change_log.h"
#include "sharing.h"

namespace nas {

namespace {

bool onSync(const Request& request) {
    return request.endpoint == Endpoint::SyncCgi;
}

// The receiver's own: named by the share at the sync service, by the event at the file manager.
const Event& ownPart(const ShareBook& book, const Request& request, const User& user) {
    const Fields& query = request.query;
    const Event* part = nullptr;
    if (onSync(request)) {
        part = book.partIn(shareId(query), user.name);
        if (part) {
            requireNas(*book.find(part->share), query);
        }
    } else {
        part = book.findEvent(numberField(query, "event_id"));
    }
    if (!part || !part->live() || part->receiver != user.name) {
        throw StatusError(Status::Missing, "nothing of the kind was shared with " + user.name);
    }
    return *part;
}

void requirePart(const Event& event, Part part) {
    if (event.part != part) {
        throw StatusError(Status::Denied, part == Part::Waiting ? "the invitation is accepted already"
                                                                : "the invitation isn't accepted yet");
    }
}

Answer accept(Service& service, Request& request, httplib::Response&) {
    const User& user = userHere(service, request);
    const std::string name = onSync(request) ? field(request.query, "display_name") : "";
    if (onSync(request)) {
        if (name.empty()) {
            throw Refusal("query key \"display_name\" is empty");
        }
        checkName(name);
    }
    std::string path;
    service.shares().change([&](ShareBook& book) {
        const int64_t id = ownPart(book, request, user).id;
        book.accept(id, name);
        path = teamAreaPath(*book.findEvent(id));
    });
    Answer answer = doneWithZero(path);
    answer.json["file"] = path;
    return answer;
}

Answer deny(Service& service, Request& request, httplib::Response&) {
    const User& user = userHere(service, request);
    std::string file;
    service.shares().change([&](ShareBook& book) {
        const Event& event = ownPart(book, request, user);
        requirePart(event, Part::Waiting);
        file = event.file;
        book.end(event.id, Part::Denied);
    });
    return doneWithZero(file + " denied");
}

Answer leave(Service& service, Request& request, httplib::Response&) {
    const User& user = userHere(service, request);
    const auto book = service.shares().read();
    const Event& event = ownPart(*book, request, user);
    requirePart(event, Part::Accepted);
    return endedShareJob(service, request, "leave " + event.display,
                         [id = event.id](ShareBook& later) { later.end(id, Part::Left); });
}

// Where only the share is named, it must be clear who is meant.
const Event& onlyMember(const ShareBook& book, const Share& share) {
    const Event* only = nullptr;
    for (const Event& event : book.events) {
        if (event.share == share.id && event.live()) {
            if (only) {
                throw StatusError(Status::Denied, "share " + share.id + " has several members");
            }
            only = &event;
        }
    }
    if (!only) {
        throw StatusError(Status::Missing, "share " + share.id + " has no members");
    }
    return *only;
}

const Event& memberToRemove(const ShareBook& book, const Request& request, const User& user) {
    if (onSync(request)) {
        return onlyMember(book, ownShare(book, user, request.query));
    }
    const Event* event = book.findEvent(numberField(request.query, "event_id"));
    if (!event || !event->live() || (event->owner != user.name && event->receiver != user.name)) {
        throw StatusError(Status::Missing, "no such member of a share of " + user.name);
    }
    if (event->owner != user.name) {
        throw StatusError(Status::Denied, "the share is " + event->owner + "'s");
    }
    return *event;
}

Answer kickOut(Service& service, Request& request, httplib::Response&) {
    const User& user = userHere(service, request);
    const auto book = service.shares().read();
    const Event& event = memberToRemove(*book, request, user);
    return endedShareJob(service, request, "kick out " + event.receiver,
                         [id = event.id](ShareBook& later) { later.end(id, Part::TakenAway); });
}

Answer unshare(Service& service, Request& request, httplib::Response&) {
    const User& user = userHere(service, request);
    const auto book = service.shares().read();
    const Share& share = ownShare(*book, user, request.query);
    return startedShareJob(service, request, "unshare " + leafOf(share.path),
                           [id = share.id](ShareBook& later) { later.unshare(id); });
}

Answer removeEvent(Service& service, Request& request, httplib::Response&) {
    const User& user = userHere(service, request);
    const int64_t id = numberField(request.query, "event_id");
    service.shares().change([&](ShareBook& book) {
        const Event* event = book.findEvent(id);
        const bool own = event && (event->owner == user.name || event->receiver == user.name);
        if (!own || event->removedBy.count(user.name)) {
            throw StatusError(Status::Missing, user.name + " has no event " + std::to_string(id));
        }
        if (event->live()) {
            throw StatusError(Status::Denied, "event " + std::to_string(id) + " isn't over yet");
        }
        book.forget(id, user.name);
    });
    return doneWithZero("event " + std::to_string(id));
}

// Clients send paths of homes without the first slash.
std::string sharedPath(const std::string& file) {
    const auto inHome = [](const std::string& path) { return lowerCase(path).rfind("/home/", 0) == 0; };
    if (file.empty() || inHome(file)) {
        throw Refusal(file.empty() ? "form key \"file\" is empty"
                                   : "form key \"file\" has a slash in front of the home");
    }
    return inHome("/" + file) ? "/" + file : file;
}

std::vector<std::string> targetsOf(const Fields& form) {
    const int64_t count = numberField(form, "target_number");
    if (count < 1 || count > static_cast<int64_t>(form.size())) {
        throw Refusal("form key \"target_number\" is out of its range");
    }
    Shape shape = {"sid", "target_number"};
    for (int64_t i = 0; i < count; ++i) {
        shape.push_back("target_name" + std::to_string(i));
    }
    shape.emplace_back("file");
    requireShape(form, {shape}, "form");
    std::vector<std::string> targets;
    for (int64_t i = 0; i < count; ++i) {
        const std::string& name = field(form, "target_name" + std::to_string(i));
        if (std::find(targets.begin(), targets.end(), name) == targets.end()) {
            targets.push_back(name);
        }
    }
    return targets;
}

void requireShareable(Service& service, const User& user, const Folder& folder) {
    const bool kept = !folder.home.empty() && !folder.below.empty() &&
                      (folder.below[0] == kRecycle || folder.below[0] == kVersions);
    if (folder.received || liesBelow(pathFor(user.name, placeOf(folder, "")), kTeamArea)) {
        throw StatusError(Status::Denied, "nobody shares what was shared with them");
    }
    if (folder.below.empty() || kept) {
        throw StatusError(Status::Denied, "only a folder below a home or a share can be shared");
    }
    if (!service.tree().lookup(user, folder, "")->readable()) {
        throw StatusError(Status::Denied, "the folder may not be read");
    }
}

Answer shareTo(Service& service, Request& request, httplib::Response&) {
    const Fields form = readForm(request);
    if (!hasField(form, "target_number")) {
        throw Refusal("form key \"target_number\" is missing");
    }
    const std::vector<std::string> targets = targetsOf(form);
    const std::string path = sharedPath(field(form, "file"));
    const User& user = userHere(service, request, field(form, "sid"));
    const Folder folder = service.tree().open(user, path);
    requireShareable(service, user, folder);
    const auto book = service.shares().read();
    for (const std::string& name : targets) {
        requireInvitable(service, *book, user, name);
    }
    const Share share = {
        "", "", service.shares().nas(), user.name, pathFor(user.name, placeOf(folder, "")), markOf(folder)};
    return startedShareJob(
        service, request, "share " + leafOf(share.path), [&service, &user, share, targets](ShareBook& later) {
            const Share known = later.share(share.nas, share.owner, share.path, share.folder);
            for (const std::string& name : targets) {
                if (!later.partIn(known.id, name)) {
                    requireInvitable(service, later, user, name);
                    later.invite(known, name, false);
                }
            }
        });
}

}  // namespace

void addShareCalls(std::vector<Call>& calls) {
    const unsigned sync = on(Endpoint::SyncCgi);
    const unsigned manager = on(Endpoint::ManagerCgi);
    const auto byShare = [&](const std::string& name, Serve serve, Shape more = {}) {
        Shape shape = {"func=" + name, "sid"};
        shape.insert(shape.end(), more.begin(), more.end());
        shape.emplace_back("share_id");
        addGet(calls, sync, withNas(shape), serve, notDone);
    };
    const auto byEvent = [&](const std::string& name, Serve serve) {
        addGet(calls, manager, {{"func=" + name, "sid", "event_id"}}, serve, notDone);
    };
    byShare("nubo_team_folder_accept_share", accept, {"display_name"});
    byShare("nubo_team_folder_deny_share", deny);
    byShare("nubo_team_folder_leave_share", leave);
    byShare("nubo_kickout_share", kickOut);
    byEvent("nubo_accept_share", accept);
    byEvent("nubo_deny_share", deny);
    byEvent("nubo_leave_share", leave);
    byEvent("nubo_kickout_share", kickOut);
    byEvent("nubo_remove_event", removeEvent);
    byShare("nubo_team_folder_unshare_ex", unshare);
    addGet(calls, manager, {{"func=nubo_unshare", "sid", "share_id"}}, unshare);
    addForm(calls, sync, {"func=nubo_team_folder_share_to"}, shareTo);
    addForm(calls, manager, {"func=nubo_share_to"}, shareTo);
}

}  // namespace nas
