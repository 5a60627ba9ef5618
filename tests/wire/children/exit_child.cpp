// exit_child <port>
// Asks once over TLS and ends, while the threads that were made meanwhile take their time to end. Prints the
// call's `dwStatus` and how many of Qt's threads are left when the process is nearly over.

#include <WebFileManAPI.h>
#include <dlfcn.h>
#include <pthread.h>
#include <unistd.h>

#include <QCoreApplication>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

namespace {

using Routine = void* (*)(void*);

pthread_key_t slowEnd;

struct Start {
    Routine routine;
    void* argument;
};

void* RunAndEndSlowly(void* given) {
    const std::unique_ptr<Start> start(static_cast<Start*>(given));
    pthread_setspecific(slowEnd, &slowEnd);
    return start->routine(start->argument);
}

void PrintThreadsLeft() {
    int left = 0;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::string name;
        std::getline(std::ifstream(task.path() / "comm"), name);
        if (name == "QNetworkAccessM") ++left;
    }
    std::printf(" threads %d\n", left);
}

}  // namespace

// In front of the system's own, for Qt as well.
extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, Routine routine,
                              void* argument) {
    using Create = int (*)(pthread_t*, const pthread_attr_t*, Routine, void*);
    static const auto create = reinterpret_cast<Create>(dlsym(RTLD_NEXT, "pthread_create"));
    return create(thread, attributes, RunAndEndSlowly, new Start{routine, argument});
}

int main(int argc, char** argv) {
    std::atexit(PrintThreadsLeft);  // the first one runs last
    pthread_key_create(&slowEnd, [](void*) { usleep(100000); });
    QCoreApplication application(argc, argv);
    uint32_t result = 0;
    _WFM_VERSION_INFORMATION version;
    const auto port = static_cast<uint32_t>(std::atoi(argv[1]));
    std::printf("dwStatus %u",
                WFMGetVersion(L"127.0.0.1", port, L"", true, 0, L"", L"", L"", L"", 0, &result, &version));
    return 0;
}
