#include "end_signals.h"

#include <iostream>

namespace nas {

EndSignals::EndSignals() {
    sigemptyset(&m_signals);
    sigaddset(&m_signals, SIGTERM);
    sigaddset(&m_signals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &m_signals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
}

void EndSignals::wait() const {
    int signal = 0;
    sigwait(&m_signals, &signal);
}

int serveOrTell(const char* program, const std::function<int()>& serve) {
    try {
        return serve();
    } catch (const std::exception& error) {
        std::cerr << program << ": " << error.what() << "\n";
        return 1;
    }
}

}  // namespace nas
