#include "sharing.h"

namespace nas {

namespace {

// A setting of the user who asks. A value that it can't have is refused, not in the protocol's words but in
// the setting's: the client takes it as denied.
Answer set(Service& service, Request& request, const std::string& key, int ShareSettings::*setting,
           int most) {
    const User& user = userHere(service, request);
    const int64_t value = numberField(request.query, key);
    if (value < 0 || value > most) {
        throw StatusError(Status::Denied, key + " can't be " + std::to_string(value));
    }
    service.shares().change(
        [&](ShareBook& book) { book.settings[user.name].*setting = static_cast<int>(value); });
    return doneWithZero(key + " " + std::to_string(value));
}

Answer tell(Service& service, Request& request, const std::string& key, int ShareSettings::*setting) {
    const User& user = userHere(service, request);
    return {{{"status", 0}, {key, service.shares().read()->settingsOf(user.name).*setting}}};
}

Answer setRecycleBin(Service& service, Request& request, httplib::Response&) {
    return set(service, request, "recycle_bin", &ShareSettings::recycleBin, 1);
}

Answer getRecycleBin(Service& service, Request& request, httplib::Response&) {
    return tell(service, request, "recycle_bin_enable", &ShareSettings::recycleBin);
}

Answer setPolicy(Service& service, Request& request, httplib::Response&) {
    return set(service, request, "share_policy", &ShareSettings::policy, static_cast<int>(Policy::Refuse));
}

Answer getPolicy(Service& service, Request& request, httplib::Response&) {
    return tell(service, request, "share_policy", &ShareSettings::policy);
}

}  // namespace

void addSettingCalls(std::vector<Call>& calls) {
    addGet(calls, kBothCgis, {{"func=nubo_set_recycle_bin", "recycle_bin", "sid"}}, setRecycleBin, notDone);
    addGet(calls, kBothCgis, {{"func=nubo_get_recycle_bin_status", "sid"}}, getRecycleBin, notSuccess);
    addGet(calls, kBothCgis, {{"func=nubo_set_policy", "share_policy", "sid"}}, setPolicy, notDone);
    addGet(calls, kBothCgis, {{"func=nubo_get_policy", "sid"}}, getPolicy, notSuccess);
}

}  // namespace nas
