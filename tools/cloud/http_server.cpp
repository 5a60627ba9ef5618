#include "http_server.h"

#include <netinet/in.h>
#include <strings.h>
#include <sys/socket.h>

#include <algorithm>
#include <stdexcept>

#include "nas/log.h"
#include "nas/status.h"

namespace cloud {

namespace {

constexpr size_t kLongestHead = 64 * 1024;
constexpr size_t kLongestBody = 1024 * 1024;
constexpr int kBacklog = 512;
const std::string kLineEnd = "\r\n";
const std::string kHeadEnd = "\r\n\r\n";

// One connection's bytes, request by request.
class Reader {
public:
    explicit Reader(int socket) : socket_(socket) {}

    // False at the end of the connection; Refusal for what HTTP doesn't know.
    bool next(HttpRequest& request);

private:
    bool more();
    void readBody(HttpRequest& request);

    const int socket_;
    std::string buffer_;
};

bool Reader::more() {
    char piece[16 * 1024];
    const ssize_t n = ::recv(socket_, piece, sizeof piece, 0);
    if (n > 0) {
        buffer_.append(piece, static_cast<size_t>(n));
    }
    return n > 0;
}

void takeRequestLine(const std::string& line, HttpRequest& request) {
    const size_t first = line.find(' ');
    const size_t second = first == std::string::npos ? first : line.find(' ', first + 1);
    if (second == std::string::npos || line.substr(second + 1) != "HTTP/1.1") {
        throw nas::Refusal("not a request line of HTTP/1.1");
    }
    request.method = line.substr(0, first);
    const std::string target = line.substr(first + 1, second - first - 1);
    const size_t question = target.find('?');
    request.path = target.substr(0, question);
    request.hasQuery = question != std::string::npos;
    request.query = request.hasQuery ? target.substr(question + 1) : "";
}

void takeHeaders(const std::string& lines, HttpRequest& request) {
    for (size_t from = 0; from < lines.size();) {
        const size_t to = std::min(lines.find(kLineEnd, from), lines.size());
        const std::string line = lines.substr(from, to - from);
        const size_t colon = line.find(':');
        if (colon == std::string::npos || colon == 0) {
            throw nas::Refusal("a header line without a name");
        }
        const size_t value = std::min(line.find_first_not_of(" \t", colon + 1), line.size());
        request.headers.emplace_back(line.substr(0, colon), line.substr(value));
        from = to + kLineEnd.size();
    }
}

// The checksum's bytes are any, line ends and blanks among them: it goes on to the header that follows it.
void takeHead(const std::string& head, HttpRequest& request) {
    const std::string check = kLineEnd + "X-VEXA-CHECK: ";
    const std::string behind = kLineEnd + "X-VEXA-TIME: ";
    const size_t lineEnd = std::min(head.find(kLineEnd), head.size());
    takeRequestLine(head.substr(0, lineEnd), request);
    const std::string headers = head.substr(lineEnd);
    const size_t from = headers.find(check);
    const size_t to = from == std::string::npos ? from : headers.find(behind, from + check.size());
    auto lines = [&](size_t begin, size_t end) {
        begin += kLineEnd.size();
        return begin < end ? headers.substr(begin, end - begin) : "";
    };
    if (to == std::string::npos) {
        takeHeaders(lines(0, headers.size()), request);
        return;
    }
    takeHeaders(lines(0, from), request);
    request.headers.emplace_back("X-VEXA-CHECK",
                                 headers.substr(from + check.size(), to - from - check.size()));
    takeHeaders(lines(to, headers.size()), request);
}

void Reader::readBody(HttpRequest& request) {
    if (!request.header("Transfer-Encoding").empty()) {
        throw nas::Refusal("a body of unknown length", 411);
    }
    const std::string text = request.header("Content-Length");
    if (text.empty()) {
        return;
    }
    if (text.size() > 9 || text.find_first_not_of("0123456789") != std::string::npos ||
        std::stoul(text) > kLongestBody) {
        throw nas::Refusal("header Content-Length is \"" + text + "\"", 413);
    }
    const size_t length = std::stoul(text);
    while (buffer_.size() < length) {
        if (!more()) {
            throw nas::Refusal("the body broke off");
        }
    }
    request.body = buffer_.substr(0, length);
    buffer_.erase(0, length);
}

bool Reader::next(HttpRequest& request) {
    size_t end = 0;
    while ((end = buffer_.find(kHeadEnd)) == std::string::npos) {
        if (buffer_.size() > kLongestHead) {
            throw nas::Refusal("a head without an end", 431);
        }
        if (!more()) {
            return false;
        }
    }
    const std::string head = buffer_.substr(0, end);
    buffer_.erase(0, end + kHeadEnd.size());
    takeHead(head, request);
    readBody(request);
    return true;
}

const char* reasonOf(int status) {
    return status == 200 ? "OK" : "Refused";
}

bool sendReply(int socket, const HttpReply& reply, bool last) {
    const std::string text =
        "HTTP/1.1 " + std::to_string(reply.status) + " " + reasonOf(reply.status) +
        "\r\nContent-Type: application/json\r\nContent-Length: " + std::to_string(reply.body.size()) +
        (last ? "\r\nConnection: close" : "\r\nConnection: keep-alive") + kHeadEnd + reply.body;
    for (size_t done = 0; done < text.size();) {
        const ssize_t n = ::send(socket, text.data() + done, text.size() - done, MSG_NOSIGNAL);
        if (n <= 0) {
            return false;
        }
        done += static_cast<size_t>(n);
    }
    return true;
}

}  // namespace

std::string HttpRequest::header(const std::string& name) const {
    for (const auto& [key, value] : headers) {
        if (strcasecmp(key.c_str(), name.c_str()) == 0) {
            return value;
        }
    }
    return "";
}

HttpServer::HttpServer(Handler handler)
    : handler_(std::move(handler)), listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
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
        std::lock_guard<std::mutex> lock(mutex_);
        if (stopping_) {
            return;
        }
        if (socket) {
            const int fd = socket.release();
            open_.insert(fd);
            std::thread([this, fd] { serve(fd); }).detach();
        }
    }
}

void HttpServer::serve(int socket) {
    Reader reader(socket);
    for (bool last = false; !last;) {
        HttpRequest request;
        HttpReply reply;
        try {
            if (!reader.next(request)) {
                break;
            }
            last = strcasecmp(request.header("Connection").c_str(), "close") == 0;
            reply = handler_(request);
        } catch (const nas::Refusal& refusal) {
            last = true;
            reply = {refusal.http(), ""};
            nas::logLine("http=" + std::to_string(refusal.http()) + " refused: " + refusal.what());
        }
        last = !sendReply(socket, reply, last) || last;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    ::close(socket);
    open_.erase(socket);
    oneLess_.notify_all();
}

}  // namespace cloud
