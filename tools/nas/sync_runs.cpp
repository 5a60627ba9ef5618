#include "sync_runs.h"

namespace nas {

void SyncRuns::begin(const std::string& user, int64_t number) {
    std::lock_guard<std::mutex> lock(mutex_);
    users_[user].running.insert(number);
    ++users_[user].signals;
}

bool SyncRuns::end(const std::string& user, int64_t number) {
    std::lock_guard<std::mutex> lock(mutex_);
    OfUser& own = users_[user];
    auto it = own.running.find(number);
    if (it == own.running.end()) {
        return false;
    }
    own.running.erase(it);
    ++own.signals;
    return true;
}

int64_t SyncRuns::signals(const std::string& user) {
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = users_.find(user);
    return it == users_.end() ? 0 : it->second.signals;
}

nlohmann::json SyncRuns::toJson() {
    std::lock_guard<std::mutex> lock(mutex_);
    nlohmann::json runs = nlohmann::json::array();
    for (const auto& [user, own] : users_) {
        for (int64_t number : own.running) {
            runs.push_back({{"user", user}, {"number", number}});
        }
    }
    return runs;
}

}  // namespace nas
