#include <algorithm>

#include "calls.h"
#include "disk_space.h"

namespace nas {

namespace {

// With decimals or without: here they are never needed.
std::string text(int64_t size) {
    static const char* const units[] = {"bytes", "KB", "MB", "GB", "TB"};
    const int unit = exactUnit(size, std::size(units));
    return inUnit(size, unit) + " " + units[unit];
}

// The key of the room that is left is misspelt, and clients know it so.
nlohmann::json quotaOf(int64_t limit, int64_t used) {
    return {{"quota_size", text(limit)},
            {"used_quota_size", text(used)},
            {"avaiable_quota_size", text(std::max<int64_t>(0, limit - used))}};
}

nlohmann::json everyQuota(Service& service, const User& user) {
    nlohmann::json quotas = nlohmann::json::array();
    const auto add = [&](int volume, int64_t limit, int64_t used) {
        nlohmann::json quota = quotaOf(limit, used);
        quota["vol_id"] = volume;
        quotas.push_back(std::move(quota));
    };
    if (user.quota >= 0 && service.tree().homeExists(user)) {
        add(kFirstVolume, user.quota, usedInHome(service, user.name));
    }
    for (const Volume& volume : service.options().volumes.all()) {
        try {
            add(volume.id, volume.limit, usedInShare(service, volume.share));
        } catch (const StatusError&) {
            // The share isn't there.
        }
    }
    return quotas;
}

Answer quota(Service& service, Request& request, httplib::Response&) {
    const User& user = service.authenticate(request, field(request.query, "sid"));
    const Space disk = diskSpace(service);
    nlohmann::json reply = {{"volume_total_size", text(disk.total)}, {"volume_free_size", text(disk.free)}};
    if (hasField(request.query, "get_all")) {
        reply["quota"] = everyQuota(service, user);
        reply["quota_enable"] = !reply["quota"].empty();
    } else {
        reply["quota_enable"] = user.quota >= 0 && service.tree().homeExists(user);
        if (reply["quota_enable"].get<bool>()) {
            reply.update(quotaOf(user.quota, usedInHome(service, user.name)));
            reply["vol_id"] = kFirstVolume;
        }
    }
    return {reply};
}

// Others' homes are for administrators.
Answer home(Service& service, Request& request, httplib::Response&) {
    const User& asking = service.authenticate(request, field(request.query, "sid"));
    const std::string& name = field(request.query, "user");
    if (name.empty()) {
        throw Refusal("query key \"user\" is empty");
    }
    if (name != asking.name && !asking.admin) {
        throw StatusError(Status::Denied, "the homes of others are for administrators");
    }
    const User* user = service.options().users.find(name);
    if (!user) {
        throw StatusError(Status::Missing, "no user " + name);
    }
    if (!service.tree().homeExists(*user)) {
        throw StatusError(Status::NoPath, name + " has no home");
    }
    const std::string path = name == asking.name ? "/home" : "/homes/" + name;
    return {{{"status", number(Status::Ok)}, {"home", path}}, false, path};
}

}  // namespace

void addQuotaCalls(std::vector<Call>& calls) {
    calls.push_back({"nubo_get_quota_info",
                     kBothCgis,
                     "GET",
                     BodyKind::None,
                     true,
                     {{"func=nubo_get_quota_info", "sid"}, {"func=nubo_get_quota_info", "sid", "get_all=1"}},
                     quota,
                     {}});
    calls.push_back({"nubo_get_user_home",
                     kBothCgis,
                     "GET",
                     BodyKind::None,
                     true,
                     {{"func=nubo_get_user_home", "sid", "user"}},
                     home,
                     {}});
}

}  // namespace nas
