#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

namespace nas {

// The sync runs that clients said they began, each under a number of the client's choice.
class SyncRuns {
public:
    void begin(const std::string& user, int64_t number);
    // False if this user has no run of that number.
    bool end(const std::string& user, int64_t number);
    // How often this user's clients told of a beginning or an end.
    int64_t signals(const std::string& user);
    nlohmann::json toJson();

private:
    struct OfUser {
        std::multiset<int64_t> running;
        int64_t signals = 0;
    };

    std::mutex mutex_;
    std::map<std::string, OfUser> users_;
};

}  // namespace nas
