// logger_child <log folder> <application> <finish> <end>
//   application: none, alive (until main ends), gone (before the library is told to finish)
//   finish:      never, once, twice, share (the share form first, then the other), late (calls go on), again
//   (the
//                library is started a second time, and that start isn't finished)
//   end:         return, exit, thread (exit on another thread), handler (exit on the logger's own thread)
// Writes one line for the start, `lines` lines of failed calls and, by `finish`, one for each end.

#include <QCoreApplication>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "WebFileManAPI.h"
#include "WebFileManShareAPI.h"

namespace {

constexpr int threads = 4;
constexpr int linesPerThread = 50;

/// A call that is refused for its port: one line with the server's name, in characters of every length.
void FailOnce() {
    uint32_t resultWord;
    _WFM_VERSION_INFORMATION version;
    WFMGetVersion(L"né文\U0001F600", 0, L"", false, 0, L"", L"", L"", L"", 0, &resultWord, &version);
}

void FailOften() {
    for (int i = 0; i < linesPerThread; ++i) {
        FailOnce();
    }
}

/// Made before the logger, so destroyed after its end at process exit: even then a call must not crash.
struct LateCaller {
    ~LateCaller() {
        FailOnce();
        WFMUpdateDebugLevel(63);
        WFMReOpenLogFile();
        WFMClearLog();
        WFMUnInitialization();
        WFMInitialization(63, QString(), true, true);
    }
} lateCaller;

std::atomic<bool> exitFromHandler{false};

void Handler(QtMsgType, const QMessageLogContext&, const QString& message) {
    std::fprintf(stderr, "%s\n", message.toUtf8().constData());
    if (exitFromHandler.exchange(false)) {
        std::exit(0);
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        return 2;
    }
    const QString folder = QString::fromUtf8(argv[1]);
    const std::string application = argv[2], finish = argv[3], end = argv[4];

    qInstallMessageHandler(Handler);
    std::unique_ptr<QCoreApplication> app;
    if (application != "none") {
        app = std::make_unique<QCoreApplication>(argc, argv);
    }

    WFMInitialization(63, folder, true, false);
    std::vector<std::thread> callers;
    for (int i = 0; i < threads; ++i) {
        callers.emplace_back(FailOften);
    }
    FailOften();
    for (std::thread& caller : callers) {
        caller.join();
    }

    if (application == "gone") {
        app.reset();
    }
    if (finish == "once" || finish == "late" || finish == "again") {
        WFMUnInitialization();
    } else if (finish == "twice") {
        WFMUnInitialization();
        WFMUnInitialization();
    } else if (finish == "share") {
        WFMShareUnInitialization();
        WFMUnInitialization();
    }
    if (finish == "late") {
        FailOften();
    } else if (finish == "again") {
        WFMInitialization(63, folder, true, true);
        FailOften();
    }

    if (end == "exit") {
        std::exit(0);
    } else if (end == "thread") {
        std::thread([] { std::exit(0); }).join();
    } else if (end == "handler") {
        exitFromHandler = true;
        FailOften();
        std::this_thread::sleep_for(std::chrono::minutes(5));  // the handler ends the process long before
        return 3;
    }
    return 0;
}
