#include "http_server.h"

#include <netinet/in.h>
#include <strings.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <stdexcept>
#include <system_error>

#include "nas/log.h"
#include "request_reader.h"

namespace cloud {

namespace {

constexpr int kBacklog = 512;
constexpr size_t kMostDrained = size_t{4} * 1024 * 1024;
constexpr std::chrono::milliseconds kPause{100};

const char* reasonOf(int status) {
    return status == 200 ? "OK" : "Refused";
}

bool sendReply(int socket, const HttpReply& reply, bool last) {
    const std::string text =
        "HTTP/1.1 " + std::to_string(reply.status) + " " + reasonOf(reply.status) +
        "\r\nContent-Type: application/json\r\nContent-Length: " + std::to_string(reply.body.size()) +
        (last ? "\r\nConnection: close" : "\r\nConnection: keep-alive") + "\r\n\r\n" + reply.body;
    for (size_t done = 0; done < text.size();) {
        const ssize_t n = ::send(socket, text.data() + done, text.size() - done, MSG_NOSIGNAL);
        if (n <= 0) {
            return false;
        }
        done += static_cast<size_t>(n);
    }
    return true;
}

void limitWaits(int socket, int64_t seconds) {
    const timeval limit{static_cast<time_t>(seconds), 0};
    ::setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    ::setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
}

// What a client still sends would make the connection's end a reset, and the reply might be lost.
void drain(int socket) {
    ::shutdown(socket, SHUT_WR);
    char piece[16 * 1024];
    for (size_t seen = 0; seen < kMostDrained;) {
        const ssize_t n = ::recv(socket, piece, sizeof piece, 0);
        if (n <= 0) {
            return;
        }
        seen += static_cast<size_t>(n);
    }
}

}  // namespace

HttpServer::HttpServer(HttpHandlers handlers, int64_t patience)
    : handlers_(std::move(handlers)),
      patience_(patience),
      listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in where{};
    where.sin_family = AF_INET;
    where.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof where;
    if (!listener_ || ::bind(listener_.get(), reinterpret_cast<sockaddr*>(&where), length) != 0 ||
        ::listen(listener_.get(), kBacklog) != 0 ||
        ::getsockname(listener_.get(), reinterpret_cast<sockaddr*>(&where), &length) != 0) {
        throw std::runtime_error("cannot listen on a loopback port");
    }
    port_ = ntohs(where.sin_port);
}

HttpServer::~HttpServer() {
    stop();
}

void HttpServer::start() {
    thread_ = std::thread([this] { acceptAll(); });
}

void HttpServer::stop() {
    if (!thread_.joinable()) {
        return;
    }
    std::unique_lock<std::mutex> lock(mutex_);
    stopping_ = true;
    oneLess_.notify_all();
    ::shutdown(listener_.get(), SHUT_RDWR);
    for (int socket : open_) {
        ::shutdown(socket, SHUT_RDWR);
    }
    oneLess_.wait(lock, [this] { return open_.empty(); });
    lock.unlock();
    thread_.join();
}

void HttpServer::acceptAll() {
    while (true) {
        nas::Fd socket(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
        const int error = errno;
        std::unique_lock<std::mutex> lock(mutex_);
        if (stopping_) {
            return;
        }
        if (socket && serveAside(socket)) {
            continue;
        }
        // Descriptors or threads have run out: others must end first.
        nas::logLine(std::string("no connection is taken: ") +
                     (socket ? "no thread for it" : std::strerror(error)));
        socket.reset();
        oneLess_.wait_for(lock, kPause, [this] { return stopping_; });
    }
}

bool HttpServer::serveAside(nas::Fd& socket) {
    const int fd = socket.get();
    limitWaits(fd, patience_);
    try {
        open_.insert(fd);
        std::thread([this, fd] { serve(fd); }).detach();
    } catch (const std::system_error&) {
        open_.erase(fd);
        return false;
    }
    socket.release();
    return true;
}

// False when it was the connection's last.
bool HttpServer::serveNext(RequestReader& reader, int socket) {
    HttpRequest request;
    try {
        if (!reader.next(request)) {
            return false;
        }
    } catch (const nas::Refusal& refusal) {
        sendReply(socket, handlers_.refuse(request, refusal), true);
        drain(socket);
        return false;
    }
    const bool last = strcasecmp(request.header("Connection").c_str(), "close") == 0;
    return sendReply(socket, handlers_.serve(request), last) && !last;
}

void HttpServer::serve(int socket) {
    try {
        RequestReader reader(socket);
        while (serveNext(reader, socket)) {
        }
    } catch (const std::exception& error) {
        nas::logLine(std::string("a connection ends: ") + error.what());
    }
    std::lock_guard<std::mutex> lock(mutex_);
    ::close(socket);
    open_.erase(socket);
    oneLess_.notify_all();
}

}  // namespace cloud
