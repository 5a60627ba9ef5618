#include "signals.h"

#include <csignal>

#include "failure.h"

namespace torvi {
namespace {

volatile std::sig_atomic_t g_interrupted = 0;
bool g_cancel = false;

extern "C" void onInterrupt(int) {
    g_interrupted = 1;
    *static_cast<volatile bool*>(&g_cancel) = true;
}

constexpr int kTickMs = 100;
constexpr int kGraceTicks = 20;

}  // namespace

void installInterruptHandlers() {
    struct sigaction action = {};
    action.sa_handler = onInterrupt;
    sigemptyset(&action.sa_mask);
    // No SA_RESTART, so that a password prompt ends; the second signal takes its default way.
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGINT, SIGTERM}) sigaction(signal, &action, nullptr);
    // Someone who started it with nohup wants it to outlive the terminal.
    struct sigaction hangUp = {};
    if (sigaction(SIGHUP, nullptr, &hangUp) == 0 && hangUp.sa_handler != SIG_IGN) {
        sigaction(SIGHUP, &action, nullptr);
    }
}

bool interrupted() {
    return g_interrupted != 0;
}

bool* cancelFlag() {
    return &g_cancel;
}

void throwCancelled(const QString& what) {
    throw Failure(Exit::Cancelled, QStringLiteral("%1: cancelled").arg(what));
}

InterruptWatch::InterruptWatch(std::function<void()> leave) {
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this, leave = std::move(leave)] {
        if (!interrupted() || m_leaving || ++m_ticks < kGraceTicks) return;
        m_leaving = true;
        leave();
    });
    m_timer.start(kTickMs);
}

}  // namespace torvi
