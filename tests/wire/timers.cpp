#include "support/timers.h"

#include <QTimer>

namespace {

thread_local TimerCapture* current = nullptr;

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
