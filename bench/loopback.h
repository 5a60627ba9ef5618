#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// One request as it came in; a body above 64 KiB is counted and thrown away.
struct Request {
    std::string method;
    std::string target;
    std::map<std::string, std::string> headers;
    std::string body;
    int64_t body_size = 0;
};

/// A reply of `body`, or of `stream_size` bytes of no meaning if that isn't 0.
struct Reply {
    std::string body;
    int64_t stream_size = 0;
};

/// The smallest server that lets a client show its own cost: a thread per connection on the loopback
/// interface, connections kept open.
class Loopback {
public:
    using Handler = std::function<Reply(const Request&)>;

    explicit Loopback(Handler handler);
    ~Loopback();
    Loopback(const Loopback&) = delete;
    Loopback& operator=(const Loopback&) = delete;

    uint16_t port() const { return m_port; }
    /// The last request that came in.
    Request last() const;

private:
    void accept_all();
    void serve(int connection);

    Handler m_handler;
    int m_listener = -1;
    uint16_t m_port = 0;
    std::atomic<bool> m_stopping{false};
    mutable std::mutex m_mutex;
    Request m_last;
    std::map<int, std::thread> m_connections;
    std::vector<std::thread> m_ended;
    std::thread m_acceptor;
};
