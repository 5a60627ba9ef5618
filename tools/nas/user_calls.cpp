#include "people.h"
#include "sharing.h"

namespace nas {

namespace {

Answer userList(Service& service, Request& request, httplib::Response&) {
    userHere(service, request);
    const auto book = service.shares().read();
    std::vector<nlohmann::json> users;
    for (const Person& person : choosePeople(service.options(), request.query)) {
        users.push_back({{"name", person.name},
                         {"policy", std::to_string(book->settingsOf(person.name).policy)},
                         {"torviuser", person.sync ? 1 : 0}});
        if (!person.description.empty()) {
            users.back()["description"] = person.description;
        }
    }
    return {{{"status", 0}, {"total", users.size()}, {"user", page(users, request.query)}},
            false,
            std::to_string(users.size()) + " users"};
}

Answer directoryInfo(Service& service, Request& request, httplib::Response&) {
    userHere(service, request);
    const auto& domains = service.options().directory.domains();
    nlohmann::json datas = nlohmann::json::array();
    for (const Domain& domain : domains) {
        datas.push_back({{"domain", domain.name}, {"netbios", domain.netbios}});
    }
    return {{{"status", number(Status::Ok)},
             {"ADSupport", domains.empty() ? 0 : 1},
             {"TrustedDomainEnable", domains.size() > 1 ? 1 : 0},
             {"count", domains.size()},
             {"datas", std::move(datas)}}};
}

Answer sharePath(Service& service, Request& request, httplib::Response&) {
    const User& user = userHere(service, request);
    const std::string& id = field(request.query, "share_id");
    const auto book = service.shares().read();
    const Share* share = book->find(id);
    const Event* part = book->partIn(id, user.name);
    const bool received = part && part->part == Part::Accepted;
    if (!share || (share->owner != user.name && !received)) {
        throw StatusError(Status::Missing, user.name + " has no share " + id);
    }
    return {{{"status", number(Status::Ok)}, {"share_path", received ? teamAreaPath(*part) : share->path}}};
}

}  // namespace

void addUserCalls(std::vector<Call>& calls) {
    const Shape users = {"func=nubo_get_user_list",
                         "sid",
                         "user_type",
                         "all_user",
                         "refresh",
                         "lower",
                         "upper",
                         "netbios",
                         "domain",
                         "filter"};
    addGet(calls, kBothCgis, {users}, userList, notSuccess);
    addGet(calls, kBothCgis, {{"func=get_ad_info", "sid"}}, directoryInfo);
    addGet(calls, kBothCgis, {{"func=nubo_get_share_path", "sid", "share_id"}}, sharePath);
}

}  // namespace nas
