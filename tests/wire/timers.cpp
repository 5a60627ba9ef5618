#include "support/timers.h"

#include <QThread>
#include <QTimer>
#include <chrono>
#include <thread>

namespace {

thread_local TimerCapture* current = nullptr;
thread_local SleepCapture* currentSleeps = nullptr;

}  // namespace

struct TimerNotes {
    static void note(int msec) {
        if (current != nullptr) current->m_started.push_back(msec);
    }
};

TimerCapture::TimerCapture() {
    current = this;
}
TimerCapture::~TimerCapture() {
    current = nullptr;
}

/// The program's own definition goes before Qt's, for the library under test as well.
void QTimer::start(int msec) {
    TimerNotes::note(msec);
    setInterval(msec);
    start();
}

struct SleepNotes {
    /// Whether someone noted it, and it needs no real sleep.
    static bool note(unsigned long msecs) {
        if (currentSleeps != nullptr) currentSleeps->m_slept.push_back(static_cast<int>(msecs));
        return currentSleeps != nullptr;
    }
};

SleepCapture::SleepCapture() {
    currentSleeps = this;
}
SleepCapture::~SleepCapture() {
    currentSleeps = nullptr;
}

void QThread::msleep(unsigned long msecs) {
    if (!SleepNotes::note(msecs)) std::this_thread::sleep_for(std::chrono::milliseconds(msecs));
}
