#pragma once

#include <openssl/ssl.h>

#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "faults.h"
#include "fd.h"

namespace nas {

class Connection;

// Where connections that came by TLS reach the service from; all others come from 127.0.0.1.
extern const char* const kTlsSource;

// Stands between the clients and the service: owns the public ports, ends TLS there, and passes bytes in both
// directions through small buffers, on one thread. Faults happen here, where the bytes are.
class Relay {
public:
    Relay(Faults& faults, int servicePort);
    ~Relay();

    // The real port. Before run().
    int listen(const std::string& address, int port, SSL_CTX* tls);
    void run();
    // From any thread.
    void stop();

private:
    struct Listener {
        Fd fd;
        SSL_CTX* tls;
    };

    bool watch(int how, size_t listener, uint32_t events);
    void accept(const Listener& listener);
    // Takes no connections for a moment, since none can be had.
    void rest(int error);
    void goOn();
    int timeoutUntilDeadline() const;

    Faults& faults_;
    const int servicePort_;
    Fd epoll_;
    Fd wake_;
    std::atomic<bool> stopping_{false};
    std::vector<Listener> listeners_;
    std::optional<std::chrono::steady_clock::time_point> restUntil_;
    std::map<Connection*, std::unique_ptr<Connection>> connections_;
};

}  // namespace nas
