#pragma once

#include <csignal>
#include <functional>

namespace nas {

/// SIGTERM and SIGINT, which end a server. Made before any thread starts, so that only wait() takes them; a
/// connection that breaks ends nothing.
class EndSignals {
public:
    EndSignals();
    void wait() const;

private:
    sigset_t m_signals;
};

/// What main() answers: what `serve` does, or 1 behind a line of what it throws.
int serveOrTell(const char* program, const std::function<int()>& serve);

}  // namespace nas
