#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "disk.h"
#include "status.h"

namespace nas {

// Work that goes on behind a reply, each on a thread of its own, known by its process id.
class Jobs {
public:
    using Work = std::function<void(const Progress& progress)>;

    struct State {
        std::string name;
        bool done = false;
        Status status = Status::Ok;  // how it ended
        int percent = 0;             // 100 only when it is done and good
    };

    // The shortest time that a job takes; its progress is spread over it.
    explicit Jobs(std::chrono::milliseconds shortest) : shortest_(shortest) {}
    ~Jobs();
    Jobs(const Jobs&) = delete;
    Jobs& operator=(const Jobs&) = delete;

    // A job that isn't kept is forgotten once its end was told.
    int start(const std::string& user, const std::string& name, bool keep, Work work);
    // Another user's jobs are unknown.
    std::optional<State> look(const std::string& user, int64_t pid);
    // The same, without telling its end to anybody.
    std::optional<State> peek(const std::string& user, int64_t pid);
    // Ends the job if it still runs, and forgets it. False if there is none.
    bool drop(const std::string& user, int64_t pid);
    size_t count();

private:
    using Clock = std::chrono::steady_clock;
    struct Job;

    void run(Job& job, const Work& work);
    // Marks its end; what the log is to say of it.
    std::string settle(Job& job, Status status, std::string why);
    void advance(Job& job, int64_t done, int64_t total);
    void forget(std::map<int64_t, std::shared_ptr<Job>>::iterator job);
    void tidy();

    const std::chrono::milliseconds shortest_;
    std::mutex mutex_;
    std::condition_variable ending_;
    std::map<int64_t, std::shared_ptr<Job>> jobs_;
    std::vector<std::shared_ptr<Job>> forgotten_;  // their threads may still be on their way out
    int lastPid_ = 0;
};

// For work that has no measure of its own: it takes the time that a job takes.
void takeTime(const Progress& progress);

}  // namespace nas
