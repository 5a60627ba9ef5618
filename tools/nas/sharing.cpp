#include "sharing.h"

#include <algorithm>
#include <future>
#include <memory>
#include <optional>

#include "change_log.h"

namespace nas {

namespace {

constexpr int kDeniedToSharing = -3;

using Over = std::shared_ptr<std::promise<void>>;

Jobs::Work shareWork(Service& service, std::function<void(ShareBook&)> act, Over over) {
    return [&service, act = std::move(act), over = std::move(over)](const Progress& progress) {
        try {
            takeTime(progress);
            service.shares().change(act);
        } catch (const std::exception&) {
            over->set_exception(std::current_exception());
            throw;
        } catch (...) {
            over->set_exception(std::make_exception_ptr(StatusError(Status::Failed, "the job was dropped")));
            throw;
        }
        over->set_value();
    };
}

// Of the folder that the user has there.
std::optional<std::string> markAt(Service& service, const std::string& user, const std::string& path) {
    const User* owner = service.options().users.find(user);
    try {
        return owner ? std::optional<std::string>(markOf(service.tree().open(*owner, path))) : std::nullopt;
    } catch (const StatusError&) {
        return std::nullopt;
    }
}

}  // namespace

void addTeams(Service& service, const Teams& teams) {
    const std::string& nas = service.shares().nas();
    for (const Team& team : teams.all()) {
        const User* owner = service.options().users.find(team.owner);
        if (!owner) {
            throw std::runtime_error("team folder of an unknown user: " + team.owner);
        }
        for (const auto& [receiver, readOnly] : team.receivers) {
            const std::string rule =
                nas + " " + team.owner + ":" + team.path + ":" + receiver + (readOnly ? ":ro" : "");
            if (service.shares().read()->rules.count(rule)) {
                continue;
            }
            const Folder folder = service.tree().make(*owner, team.path);
            service.shares().change([&, name = receiver, reading = readOnly](ShareBook& book) {
                const Share share =
                    book.share(nas, owner->name, pathFor(owner->name, placeOf(folder, "")), markOf(folder));
                book.invite(share, name, reading);
                const Event& event = *book.partIn(share.id, name);
                if (event.part == Part::Waiting) {
                    book.accept(event.id, "");
                }
                book.rules.insert(rule);
            });
        }
    }
}

const User& userHere(Service& service, Request& request, const std::string& sid) {
    requireNoPrefix(request);
    return service.authenticate(request, sid);
}

const User& userHere(Service& service, Request& request) {
    return userHere(service, request, field(request.query, "sid"));
}

bool isThere(Service& service, const Share& share) {
    return share.nas != service.shares().nas() || markAt(service, share.owner, share.path) == share.folder;
}

bool isReplaced(Service& service, const Share& share) {
    const std::optional<std::string> mark = markAt(service, share.owner, share.path);
    return mark && *mark != share.folder;
}

std::vector<Shape> withNas(const Shape& shape) {
    Shape more = shape;
    more.emplace_back("nas_id");
    return {shape, more};
}

void requireNas(const Share& share, const Fields& fields) {
    if (hasField(fields, "nas_id") && field(fields, "nas_id") != share.nas) {
        throw StatusError(Status::Missing, "share " + share.id + " is on another node");
    }
}

const std::string& shareId(const Fields& fields) {
    const std::string& id = field(fields, "share_id");
    if (id.empty()) {
        throw Refusal("key \"share_id\" is empty");
    }
    return id;
}

const Share& ownShare(const ShareBook& book, const User& user, const Fields& fields) {
    const std::string& id = shareId(fields);
    const Share* share = book.find(id);
    const bool own = share && share->owner == user.name;
    if (!share || (!own && !book.partIn(id, user.name))) {
        throw StatusError(Status::Missing, "no share " + id);
    }
    if (!own) {
        throw StatusError(Status::Denied, "share " + id + " is " + share->owner + "'s");
    }
    requireNas(*share, fields);
    return *share;
}

void requireInvitable(Service& service, const ShareBook& book, const User& owner, const std::string& name) {
    if (!service.options().users.find(name)) {
        throw StatusError(Status::Missing, "no user " + name);
    }
    if (name == owner.name) {
        throw StatusError(Status::Denied, "nobody shares with oneself");
    }
    if (book.settingsOf(name).policy == static_cast<int>(Policy::Refuse)) {
        throw StatusError(Status::Denied, name + " takes no shares");
    }
}

nlohmann::json page(const std::vector<nlohmann::json>& all, const Fields& query) {
    const int64_t lower = numberField(query, "lower");
    int64_t upper = numberField(query, "upper");
    if (lower < 0 || upper < -1) {
        throw Refusal("lower or upper is out of its range");
    }
    const auto size = static_cast<int64_t>(all.size());
    upper = upper == -1 ? size : std::min(upper, size);
    nlohmann::json items = nlohmann::json::array();
    for (int64_t i = lower; i < upper; ++i) {
        items.push_back(all[static_cast<size_t>(i)]);
    }
    return items;
}

Answer startedShareJob(Service& service, const Request& request, const std::string& name,
                       std::function<void(ShareBook&)> act) {
    const int pid = startJob(service, request, name,
                             shareWork(service, std::move(act), std::make_shared<std::promise<void>>()));
    return {{{"status", number(Status::Ok)}, {"pid", std::to_string(pid)}},
            false,
            name + " as job " + std::to_string(pid)};
}

Answer endedShareJob(Service& service, const Request& request, const std::string& name,
                     std::function<void(ShareBook&)> act) {
    const auto over = std::make_shared<std::promise<void>>();
    const int pid =
        service.jobs().start(request.userName, name, false, shareWork(service, std::move(act), over));
    if (service.options().jobDelay.count() == 0) {
        over->get_future().get();
    }
    Answer answer = doneWithZero(name + " as job " + std::to_string(pid));
    answer.json["pid"] = std::to_string(pid);
    return answer;
}

void requireSameSession(const Request& request, const Fields& form) {
    if (request.endpoint != Endpoint::ManagerCgi) {
        requireNoPrefix(request);
    }
    if (field(form, "sn") != field(request.query, "sid")) {
        throw Refusal("form key \"sn\" is not the session of the query");
    }
}

std::set<std::string> sharesBelow(Service& service, const std::string& place) {
    const auto book = service.shares().read();
    std::set<std::string> shares;
    for (const Share& share : book->shares) {
        if (share.nas == service.shares().nas() && liesBelow(placeFor(share.owner, share.path), place) &&
            isThere(service, share)) {
            shares.insert(share.id);
        }
    }
    return shares;
}

void followFolder(Service& service, const std::set<std::string>& shares, const std::string& from,
                  const std::string& to) {
    service.shares().change([&](ShareBook& book) {
        for (const Share& share : book.shares) {
            if (shares.count(share.id) == 0) {
                continue;
            }
            const std::string place = placeFor(share.owner, share.path);
            const std::string path = pathFor(share.owner, to + place.substr(from.size()));
            book.relocate(share.id, path, markAt(service, share.owner, path).value_or(share.folder));
        }
    });
}

Answer sharedRefusal(const StatusError& error) {
    const bool denied = error.status() == Status::Denied;
    nlohmann::json reply = {{"status", denied ? kDeniedToSharing : number(error.status())}};
    notDone(reply);
    return {reply, false, error.what()};
}

}  // namespace nas
