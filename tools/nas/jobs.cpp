#include "jobs.h"

#include <algorithm>

#include "log.h"

namespace nas {

namespace {

constexpr size_t kMostRunning = 64;
constexpr size_t kMostKept = 1000;
constexpr auto kUntold = std::chrono::minutes(10);
// Process ids begin anywhere, so that one from before a restart means nothing.
constexpr int kFirstPids = 30000;

struct Dropped {};

}  // namespace

struct Jobs::Job {
    int pid = 0;
    std::string user;
    bool keep = false;
    State state;
    bool dropped = false;
    bool over = false;  // the thread has nothing left to do but its line in the log
    Clock::time_point begun = Clock::now();
    Clock::time_point ended;
    std::thread thread;
};

Jobs::~Jobs() {
    std::unique_lock<std::mutex> lock(mutex_);
    while (!jobs_.empty()) {
        forget(jobs_.begin());
    }
    std::vector<std::shared_ptr<Job>> last;
    last.swap(forgotten_);
    lock.unlock();
    for (const auto& job : last) {
        job->thread.join();
    }
}

int Jobs::start(const std::string& user, const std::string& name, bool keep, Work work) {
    std::lock_guard<std::mutex> lock(mutex_);
    tidy();
    auto running =
        std::count_if(jobs_.begin(), jobs_.end(), [](const auto& job) { return !job.second->state.done; });
    if (static_cast<size_t>(running) >= kMostRunning) {
        throw StatusError(Status::Failed, "too many jobs");
    }
    if (lastPid_ == 0) {
        lastPid_ = 1000 + static_cast<int>(std::stoul(randomHex(3), nullptr, 16)) % kFirstPids;
    }
    auto job = std::make_shared<Job>();
    job->pid = ++lastPid_;
    job->user = user;
    job->keep = keep;
    job->state.name = name;
    jobs_[job->pid] = job;
    job->thread = std::thread([this, job = job.get(), work = std::move(work)] { run(*job, work); });
    return job->pid;
}

void Jobs::run(Job& job, const Work& work) {
    Status status = Status::Ok;
    std::string why = "done";
    try {
        work([&](int64_t done, int64_t total) { advance(job, done, total); });
    } catch (const Dropped&) {
        status = Status::Failed;
    } catch (const StatusError& error) {
        status = error.status();
        why = error.what();
    } catch (const std::exception& error) {
        status = Status::Failed;
        why = error.what();
    }
    // The log may be slow to take it, and the others need not wait for that.
    logLine(settle(job, status, std::move(why)));
}

std::string Jobs::settle(Job& job, Status status, std::string why) {
    std::lock_guard<std::mutex> lock(mutex_);
    // What it worked on may go before it notices that nobody waits any more.
    if (job.dropped && status != Status::Ok) {
        why = "dropped";
    }
    job.state.done = true;
    job.state.status = status;
    job.state.percent = status == Status::Ok ? 100 : job.state.percent;
    job.ended = Clock::now();
    job.over = true;
    return "job " + std::to_string(job.pid) + " " + job.state.name + " of " + job.user +
           " status=" + std::to_string(static_cast<int>(status)) + " (" + why + ")";
}

void Jobs::advance(Job& job, int64_t done, int64_t total) {
    std::unique_lock<std::mutex> lock(mutex_);
    const auto percent = total > 0 ? static_cast<int>(std::min<int64_t>(done * 100 / total, 99)) : 0;
    job.state.percent = std::max(job.state.percent, percent);
    const auto share = total > 0 ? shortest_ * std::min(done, total) / total : shortest_;
    ending_.wait_until(lock, job.begun + share, [&] { return job.dropped; });
    if (job.dropped) {
        throw Dropped();
    }
}

std::optional<Jobs::State> Jobs::look(const std::string& user, int64_t pid) {
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = jobs_.find(pid);
    if (it == jobs_.end() || it->second->user != user) {
        return std::nullopt;
    }
    State state = it->second->state;
    if (state.done && !it->second->keep) {
        forget(it);
    }
    return state;
}

std::optional<Jobs::State> Jobs::peek(const std::string& user, int64_t pid) {
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = jobs_.find(pid);
    return it == jobs_.end() || it->second->user != user ? std::nullopt
                                                         : std::optional<State>(it->second->state);
}

bool Jobs::drop(const std::string& user, int64_t pid) {
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = jobs_.find(pid);
    if (it == jobs_.end() || it->second->user != user) {
        return false;
    }
    forget(it);
    return true;
}

size_t Jobs::count() {
    std::lock_guard<std::mutex> lock(mutex_);
    return jobs_.size();
}

void takeTime(const Progress& progress) {
    for (int step = 0; step <= 100; ++step) {
        progress(step, 100);
    }
}

void Jobs::forget(std::map<int64_t, std::shared_ptr<Job>>::iterator job) {
    job->second->dropped = true;
    forgotten_.push_back(job->second);
    jobs_.erase(job);
    ending_.notify_all();
}

void Jobs::tidy() {
    const auto now = Clock::now();
    for (auto it = jobs_.begin(); it != jobs_.end();) {
        auto here = it++;
        const Job& job = *here->second;
        bool old = !job.keep && now - job.ended >= kUntold;
        if (job.state.done && (old || jobs_.size() >= kMostKept)) {
            forget(here);
        }
    }
    auto out =
        std::partition(forgotten_.begin(), forgotten_.end(), [](const auto& job) { return !job->over; });
    for (auto it = out; it != forgotten_.end(); ++it) {
        (*it)->thread.join();
    }
    forgotten_.erase(out, forgotten_.end());
}

}  // namespace nas
