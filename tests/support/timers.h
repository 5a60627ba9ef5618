#pragma once

#include <vector>

/// Notes with what times the timers of this thread are started while it lives: how long a call would wait can
/// be told without waiting.
class TimerCapture {
public:
    TimerCapture();
    ~TimerCapture();
    TimerCapture(const TimerCapture&) = delete;
    TimerCapture& operator=(const TimerCapture&) = delete;

    const std::vector<int>& started() const { return m_started; }

private:
    friend struct TimerNotes;
    std::vector<int> m_started;
};

/// Notes for how many milliseconds the calls of this thread would sleep while it lives, and lets them go on
/// at once.
class SleepCapture {
public:
    SleepCapture();
    ~SleepCapture();
    SleepCapture(const SleepCapture&) = delete;
    SleepCapture& operator=(const SleepCapture&) = delete;

    const std::vector<int>& slept() const { return m_slept; }

private:
    friend struct SleepNotes;
    std::vector<int> m_slept;
};
