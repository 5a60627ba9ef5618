#include "relay.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>

#include "connection.h"
#include "log.h"

namespace nas {

const char* const kTlsSource = "127.0.0.2";

namespace {

constexpr size_t kMostConnections = 1024;
constexpr int kBacklog = 512;
constexpr std::chrono::milliseconds kRest{100};
// Epoll data below any address: 0 wakes the loop, the rest are listeners.
constexpr uint64_t kSmallest = 4096;

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

sockaddr_in addressOf(const std::string& text, int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    if (::inet_pton(AF_INET, text.c_str(), &address.sin_addr) != 1) {
        throw std::runtime_error("not an IPv4 address: " + text);
    }
    return address;
}

bool comeFromTls(int socket) {
    sockaddr_in source = addressOf(kTlsSource, 0);
    int on = 1;
    // The port is left to connect(): one that is taken for every peer at once would be scarce.
    ::setsockopt(socket, IPPROTO_IP, IP_BIND_ADDRESS_NO_PORT, &on, sizeof on);
    return ::bind(socket, reinterpret_cast<sockaddr*>(&source), sizeof source) == 0;
}

}  // namespace

Relay::Relay(Faults& faults, int servicePort)
    : faults_(faults),
      servicePort_(servicePort),
      epoll_(::epoll_create1(EPOLL_CLOEXEC)),
      wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    epoll_event event{};
    event.events = EPOLLIN;
    if (!epoll_ || !wake_ || ::epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, wake_.get(), &event) != 0) {
        fail("epoll");
    }
}

Relay::~Relay() = default;

int Relay::listen(const std::string& address, int port, SSL_CTX* tls) {
    Fd fd(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    int on = 1;
    ::setsockopt(fd.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in where = addressOf(address, port);
    socklen_t length = sizeof where;
    if (::bind(fd.get(), reinterpret_cast<sockaddr*>(&where), length) != 0 ||
        ::listen(fd.get(), kBacklog) != 0 ||
        ::getsockname(fd.get(), reinterpret_cast<sockaddr*>(&where), &length) != 0) {
        fail("cannot listen on " + address + ":" + std::to_string(port));
    }
    listeners_.push_back({std::move(fd), tls});
    if (!watch(EPOLL_CTL_ADD, listeners_.size() - 1, EPOLLIN)) {
        fail("epoll");
    }
    return ntohs(where.sin_port);
}

bool Relay::watch(int how, size_t listener, uint32_t events) {
    epoll_event event{};
    event.events = events;
    event.data.u64 = listener + 1;
    return ::epoll_ctl(epoll_.get(), how, listeners_[listener].fd.get(), &event) == 0;
}

void Relay::rest(int error) {
    logLine(std::string("no connection is taken: ") + std::strerror(error));
    restUntil_ = Connection::Clock::now() + kRest;
    for (size_t i = 0; i < listeners_.size(); ++i) {
        watch(EPOLL_CTL_MOD, i, 0);
    }
}

void Relay::goOn() {
    restUntil_.reset();
    for (size_t i = 0; i < listeners_.size(); ++i) {
        watch(EPOLL_CTL_MOD, i, EPOLLIN);
    }
}

void Relay::accept(const Listener& listener) {
    // First, so that a client for whom there is none waits its turn.
    Fd service(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    Fd client(service ? ::accept4(listener.fd.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC) : -1);
    if (!client && errno != EAGAIN) {
        // Descriptors have run out: others must end first.
        return rest(errno);
    }
    if (!client || connections_.size() >= kMostConnections) {
        return;
    }
    sockaddr_in where = addressOf("127.0.0.1", servicePort_);
    int on = 1;
    if ((listener.tls && !comeFromTls(service.get())) ||
        (::connect(service.get(), reinterpret_cast<sockaddr*>(&where), sizeof where) != 0 &&
         errno != EINPROGRESS)) {
        return;
    }
    ::setsockopt(client.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    ::setsockopt(service.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    auto connection =
        std::make_unique<Connection>(faults_, epoll_.get(), SocketEnd(std::move(client), listener.tls),
                                     SocketEnd(std::move(service), nullptr));
    Connection* key = connection.get();
    connections_.emplace(key, std::move(connection));
}

int Relay::timeoutUntilDeadline() const {
    std::optional<Connection::Clock::time_point> earliest = restUntil_;
    for (const auto& [key, connection] : connections_) {
        if (auto deadline = connection->deadline()) {
            earliest = earliest ? std::min(*earliest, *deadline) : deadline;
        }
    }
    if (!earliest) {
        return -1;
    }
    // Rounded up, so that the deadline has passed when the loop wakes.
    auto left = std::chrono::ceil<std::chrono::milliseconds>(*earliest - Connection::Clock::now()).count();
    return static_cast<int>(std::clamp<int64_t>(left, 0, 60000));
}

void Relay::run() {
    while (!stopping_) {
        epoll_event events[64];
        int count = ::epoll_wait(epoll_.get(), events, 64, timeoutUntilDeadline());
        for (int i = 0; i < count; ++i) {
            uint64_t data = events[i].data.u64;
            if (data < kSmallest) {
                if (data > 0 && !restUntil_) {
                    accept(listeners_[data - 1]);
                }
                continue;
            }
            bool client = data & Connection::kClientMark;
            auto it = connections_.find(reinterpret_cast<Connection*>(data & ~Connection::kClientMark));
            if (it != connections_.end() && !it->second->pump(client ? events[i].events : 0)) {
                connections_.erase(it);
            }
        }
        auto now = Connection::Clock::now();
        for (auto it = connections_.begin(); it != connections_.end();) {
            auto deadline = it->second->deadline();
            bool over = deadline && *deadline <= now && !it->second->pump(0);
            it = over ? connections_.erase(it) : std::next(it);
        }
        if (restUntil_ && *restUntil_ <= now) {
            goOn();
        }
    }
    connections_.clear();
}

void Relay::stop() {
    stopping_ = true;
    uint64_t one = 1;
    if (::write(wake_.get(), &one, sizeof one) != sizeof one) {
        // The counter is full, so the loop wakes anyway.
    }
}

}  // namespace nas
