#include "core/threadends.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <thread>

namespace Lattice {

namespace {

/// What the kernel keeps of the name that Qt gives such a thread.
constexpr const char* kThreadName = "QNetworkAccessM";
/// Those of somebody else's access manager don't end at all.
constexpr std::chrono::milliseconds kPatience{300};

bool HasRequestThread() {
    std::error_code error;
    std::filesystem::directory_iterator task("/proc/self/task", error);
    for (; !error && task != std::filesystem::directory_iterator(); task.increment(error)) {
        std::string name;
        if (std::getline(std::ifstream(task->path() / "comm"), name) && name == kThreadName) return true;
    }
    return false;
}

void AwaitRequestThreads() {
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (HasRequestThread() && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

}  // namespace

// A manager's destructor waits until its thread is over for Qt; the thread then still gives back what OpenSSL
// keeps for it. OpenSSL's own exit handler does the same for all threads without asking, and if both do it,
// the process ends in a double free. This handler comes behind OpenSSL's, so that it runs before it.
void AwaitRequestThreadsAtExit() {
    [[maybe_unused]] static const int registered = std::atexit(AwaitRequestThreads);
}

}  // namespace Lattice
