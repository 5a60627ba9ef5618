#pragma once

#include <QString>
#include <QTimer>
#include <functional>

namespace torvi {

/// SIGINT, SIGTERM and SIGHUP ask the running command to stop; a second one ends the process at once.
void installInterruptHandlers();
bool interrupted();
/// For the calls of the library that take a cancel flag.
bool* cancelFlag();
/// The failure of a command that was asked to stop.
[[noreturn]] void throwCancelled(const QString& what);

/// Most calls look at no flag while they wait, and a transfer's callback comes only with bytes. The library's
/// waits run this thread's timers: when an interrupted command hasn't ended by itself after a grace period,
/// this one ends the process in an orderly way.
class InterruptWatch {
public:
    explicit InterruptWatch(std::function<void()> leave);

private:
    QTimer m_timer;
    int m_ticks = 0;
    bool m_leaving = false;
};

}  // namespace torvi
