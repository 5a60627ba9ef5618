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

    // The device is the computer's name, as the login told it.
    std::string open(const std::string& user, const std::string& device = {});
    // The user's name, empty for an unknown or expired id.
    std::string use(const std::string& sid);
    // The device of a session that was found.
    std::string device(const std::string& sid);
    // The system's own session for this user, the same as long as it lives.
    std::string ofSystem(const std::string& user);
    bool close(const std::string& sid);
    void expireAll();
    size_t count();

private:
    using Clock = std::chrono::steady_clock;
    struct Session {
        std::string user;
        std::string device;
        Clock::time_point lastUse;
    };

    std::string file(const std::string& sid) const;
    void dropExpired();

    const std::chrono::seconds ttl_;
    const std::string folder_;
    std::mutex mutex_;
    std::map<std::string, Session> sessions_;
    std::mutex systemMutex_;
    std::map<std::string, std::string> system_;
};

}  // namespace nas
