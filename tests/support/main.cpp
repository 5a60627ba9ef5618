#include <gmock/gmock.h>

#include <QCoreApplication>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

namespace {

/// The library writes its log lines to Qt's debug output. They are noise, unless someone looks for them.
void quietHandler(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtDebugMsg || type == QtInfoMsg) return;
    std::fprintf(stderr, "%s\n", message.toUtf8().constData());
}

/// Threads of this process but for Qt's D-Bus one, which stays.
int threadCount() {
    int count = 0;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::string name;
        std::ifstream(task.path() / "comm") >> name;
        if (!name.empty() && name != "QDBusConnection") ++count;
    }
    return count;
}

/// Qt's thread of an HTTP request still clears its OpenSSL data when the manager's destructor has long
/// returned; a leak check in between would count them. Threads that stay for good aren't waited for long.
void letThreadsEnd() {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(300);
    while (threadCount() > 1 && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

}  // namespace

int main(int argc, char** argv) {
    // The tests' traffic stays on this machine, whatever the environment says.
    for (const char* name : {"http_proxy", "https_proxy", "all_proxy", "no_proxy", "HTTP_PROXY",
                             "HTTPS_PROXY", "ALL_PROXY", "NO_PROXY"}) {
        unsetenv(name);
    }
    // Qt names the locale in "Accept-Language", and its rules can switch debug output off.
    setenv("LC_ALL", "C.UTF-8", 1);
    unsetenv("LANGUAGE");
    unsetenv("QT_LOGGING_RULES");
    unsetenv("QT_MESSAGE_PATTERN");
    std::signal(SIGPIPE, SIG_IGN);
    if (std::getenv("TORVI_TEST_VERBOSE") == nullptr) qInstallMessageHandler(quietHandler);
    int result = 0;
    {
        QCoreApplication application(argc, argv);
        testing::InitGoogleMock(&argc, argv);
        result = RUN_ALL_TESTS();
    }
    letThreadsEnd();
    return result;
}
