#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <string>

namespace nas {

// Session ids and whom they stand for. Use renews a session; one that rests for the whole ttl is gone.
// With a folder the sessions are files there, so that the nodes of a cluster share them.
class Sessions {
public:
    Sessions(std::chrono::seconds ttl, std::string folder);

    std::string open(const std::string& user);
    // The user's name, empty for an unknown or expired id.
    std::string use(const std::string& sid);
    bool close(const std::string& sid);
    void expireAll();
    size_t count();

private:
    using Clock = std::chrono::steady_clock;
    struct Session {
        std::string user;
        Clock::time_point lastUse;
    };

    std::string file(const std::string& sid) const;
    void dropExpired();

    const std::chrono::seconds ttl_;
    const std::string folder_;
    std::mutex mutex_;
    std::map<std::string, Session> sessions_;
};

}  // namespace nas
