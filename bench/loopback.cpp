#include "loopback.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace {

constexpr size_t kPiece = 1 << 18;
constexpr size_t kKeptBody = 1 << 16;

bool send_all(int connection, const char* data, size_t size) {
    while (size > 0) {
        const ssize_t sent = ::send(connection, data, size, MSG_NOSIGNAL);
        if (sent <= 0) return false;
        data += sent;
        size -= static_cast<size_t>(sent);
    }
    return true;
}

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

Request parse_head(const std::string& head) {
    Request request;
    size_t line_end = head.find("\r\n");
    const std::string first = head.substr(0, line_end);
    const size_t blank = first.find(' ');
    request.method = first.substr(0, blank);
    request.target = first.substr(blank + 1, first.rfind(' ') - blank - 1);
    while (line_end + 2 < head.size()) {
        const size_t start = line_end + 2;
        line_end = head.find("\r\n", start);
        if (line_end == std::string::npos) break;
        const std::string line = head.substr(start, line_end - start);
        const size_t colon = line.find(':');
        if (colon == std::string::npos) continue;
        const size_t value = line.find_first_not_of(' ', colon + 1);
        request.headers[lower(line.substr(0, colon))] = value == std::string::npos ? "" : line.substr(value);
    }
    return request;
}

}  // namespace

Loopback::Loopback(Handler handler) : m_handler(std::move(handler)) {
    m_listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (m_listener < 0 || ::bind(m_listener, generic, length) != 0 || ::listen(m_listener, 128) != 0 ||
        ::getsockname(m_listener, generic, &length) != 0)
        throw std::system_error(errno, std::generic_category(), "loopback server");
    m_port = ntohs(address.sin_port);
    m_acceptor = std::thread([this] { accept_all(); });
}

Loopback::~Loopback() {
    m_stopping = true;
    ::shutdown(m_listener, SHUT_RDWR);
    m_acceptor.join();
    ::close(m_listener);
    std::vector<std::thread> threads;
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        for (auto& entry : m_connections) {
            ::shutdown(entry.first, SHUT_RDWR);
            threads.push_back(std::move(entry.second));
        }
        m_connections.clear();
        std::move(m_ended.begin(), m_ended.end(), std::back_inserter(threads));
    }
    for (auto& thread : threads) thread.join();
}

Request Loopback::last() const {
    const std::lock_guard<std::mutex> guard(m_mutex);
    return m_last;
}

void Loopback::accept_all() {
    while (!m_stopping) {
        const int connection = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0) continue;
        const int on = 1;
        ::setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        std::vector<std::thread> ended;
        const std::lock_guard<std::mutex> guard(m_mutex);
        ended.swap(m_ended);
        for (auto& thread : ended) thread.join();
        m_connections[connection] = std::thread([this, connection] { serve(connection); });
    }
}

void Loopback::serve(int connection) {
    static const std::string filler(kPiece, 'x');
    std::vector<char> piece(kPiece);
    std::string pending;
    for (bool open = true; open;) {
        size_t head_end;
        while ((head_end = pending.find("\r\n\r\n")) == std::string::npos) {
            const ssize_t got = ::recv(connection, piece.data(), piece.size(), 0);
            if (got <= 0) break;
            pending.append(piece.data(), static_cast<size_t>(got));
        }
        if (head_end == std::string::npos) break;
        Request request = parse_head(pending.substr(0, head_end + 2));
        pending.erase(0, head_end + 4);
        const auto announced = request.headers.find("content-length");
        request.body_size = announced == request.headers.end() ? 0 : std::atoll(announced->second.c_str());
        int64_t left = request.body_size - static_cast<int64_t>(pending.size());
        request.body.swap(pending);
        while (left > 0) {
            const ssize_t got = ::recv(connection, piece.data(), piece.size(), 0);
            if (got <= 0) break;
            left -= got;
            if (request.body.size() < kKeptBody) request.body.append(piece.data(), static_cast<size_t>(got));
        }
        if (left > 0) break;
        const Reply reply = m_handler(request);
        {
            const std::lock_guard<std::mutex> guard(m_mutex);
            m_last = std::move(request);
        }
        int64_t size = reply.stream_size > 0 ? reply.stream_size : static_cast<int64_t>(reply.body.size());
        const std::string answer =
            "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: " + std::to_string(size) +
            "\r\n\r\n" + reply.body;
        open = send_all(connection, answer.data(), answer.size());
        for (size = reply.stream_size; open && size > 0; size -= static_cast<int64_t>(kPiece))
            open = send_all(connection, filler.data(),
                            static_cast<size_t>(std::min<int64_t>(size, static_cast<int64_t>(kPiece))));
    }
    const std::lock_guard<std::mutex> guard(m_mutex);
    ::close(connection);
    const auto own = m_connections.find(connection);
    if (own == m_connections.end()) return;  // the destructor waits for this thread already
    m_ended.push_back(std::move(own->second));
    m_connections.erase(own);
}
