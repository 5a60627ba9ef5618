#include "nasclient.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

namespace {

NasReply parsed(NasReply reply) {
    std::string rest = reply.raw;
    const std::string interim = "HTTP/1.1 100 Continue\r\n\r\n";
    if (rest.rfind(interim, 0) == 0) rest.erase(0, interim.size());
    const auto end = rest.find("\r\n\r\n");
    if (end == std::string::npos) return reply;
    std::istringstream head(rest.substr(0, end));
    std::string line;
    std::getline(head, line);
    if (line.rfind("HTTP/1.1 ", 0) == 0) reply.http = std::atoi(line.c_str() + 9);
    while (std::getline(head, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        const auto colon = line.find(": ");
        std::string name = line.substr(0, colon);
        std::transform(name.begin(), name.end(), name.begin(),
                       [](unsigned char c) { return std::tolower(c); });
        reply.headers[name] = line.substr(colon + 2);
    }
    reply.body = rest.substr(end + 4);
    if (reply.headers["transfer-encoding"] == "chunked") {
        std::string whole;
        for (std::size_t at = 0; at < reply.body.size();) {
            const auto eol = reply.body.find("\r\n", at);
            const auto size = std::strtoul(reply.body.c_str() + at, nullptr, 16);
            if (eol == std::string::npos || size == 0) break;
            whole += reply.body.substr(eol + 2, size);
            at = eol + 2 + size + 2;
        }
        reply.body = whole;
    }
    return reply;
}

}  // namespace

Json::Value NasReply::json() const {
    Json::Value value;
    Json::CharReaderBuilder builder;
    std::istringstream in(body);
    std::string errors;
    if (!Json::parseFromStream(builder, in, &value, &errors)) return Json::Value();
    return value;
}

bool NasReply::complete() const {
    const auto length = headers.find("content-length");
    return length != headers.end() && std::to_string(body.size()) == length->second;
}

std::string encoded(const std::string& text) {
    std::string out;
    for (const unsigned char c : text) {
        if (std::isalnum(c) || c == '-' || c == '.' || c == '_' || c == '~') {
            out += static_cast<char>(c);
        } else {
            char hex[4];
            std::snprintf(hex, sizeof hex, "%%%02X", c);
            out += hex;
        }
    }
    return out;
}

std::string base64(const std::string& text) {
    std::string out(4 * ((text.size() + 2) / 3) + 1, '\0');
    const int length =
        EVP_EncodeBlock(reinterpret_cast<unsigned char*>(out.data()),
                        reinterpret_cast<const unsigned char*>(text.data()), static_cast<int>(text.size()));
    out.resize(static_cast<std::size_t>(length));
    return out;
}

NasRequest NasRequest::get(const std::string& target) {
    NasRequest request;
    request.target = target;
    request.headers = {{"Host", "127.0.0.1"},
                       {"User-Agent", "Tests"},
                       {"Connection", "close"},
                       {"Cache-Control", "no-cache"},
                       {"Pragma", "no-cache"}};
    return request;
}

NasRequest NasRequest::form(const std::string& target,
                            const std::vector<std::pair<std::string, std::string>>& fields) {
    NasRequest request = get(target);
    request.method = "POST";
    for (const auto& [key, value] : fields) {
        request.body += (request.body.empty() ? "" : "&") + encoded(key) + "=" + encoded(value);
    }
    request.set("Content-Type", "application/x-www-form-urlencoded;charset=UTF-8");
    request.set("Content-Length", std::to_string(request.body.size()));
    return request;
}

NasRequest NasRequest::download(const std::string& target,
                                const std::vector<std::pair<std::string, std::string>>& fields) {
    NasRequest request = form(target, fields);
    request.set("Pragma", "");
    return request;
}

NasRequest NasRequest::upload(const std::string& target, const std::string& name, const std::string& content,
                              const std::string& closing) {
    NasRequest request = get(target);
    request.method = "POST";
    const std::string delimiter = std::string("--") + kBoundary;
    request.body = delimiter + "\r\nContent-Disposition: form-data; name=\"Filename\"\r\n\r\n" + name +
                   "\r\n" + delimiter + "\r\nContent-Disposition: form-data; name=\"Filedata\"; filename=\"" +
                   name + "\"\r\nContent-Type: application/octet-stream\r\n\r\n" + content + "\r\n" +
                   delimiter + "\r\nContent-Disposition: form-data; name=\"" + closing +
                   "\"\r\n\r\nSubmit Query\r\n" + delimiter + "--";
    request.set("Pragma", "");
    request.set("Content-Type", std::string("multipart/form-data; boundary=") + kBoundary);
    request.set("Content-Length", std::to_string(request.body.size()));
    return request;
}

NasRequest& NasRequest::set(const std::string& name, const std::string& value) {
    const auto at = std::find_if(headers.begin(), headers.end(),
                                 [&](const auto& header) { return header.first == name; });
    if (at == headers.end()) {
        if (!value.empty()) headers.emplace_back(name, value);
    } else if (value.empty()) {
        headers.erase(at);
    } else {
        at->second = value;
    }
    return *this;
}

std::string NasRequest::bytes() const {
    std::string text = method + " " + target + " HTTP/1.1\r\n";
    for (const auto& [name, value] : headers) text += name + ": " + value + "\r\n";
    return text + "\r\n" + body;
}

struct NasConnection::Tls {
    SSL_CTX* context = SSL_CTX_new(TLS_client_method());
    SSL* ssl = SSL_new(context);
    ~Tls() {
        SSL_free(ssl);
        SSL_CTX_free(context);
    }
};

NasConnection::NasConnection(std::uint16_t port, bool tls)
    : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        ::close(m_socket);
        throw std::runtime_error("connect");
    }
    if (tls) {
        m_tls = new Tls;
        SSL_set_fd(m_tls->ssl, m_socket);
        if (SSL_connect(m_tls->ssl) != 1) throw std::runtime_error("TLS handshake");
    }
}

NasConnection::~NasConnection() {
    delete m_tls;
    ::close(m_socket);
}

bool NasConnection::send(const std::string& bytes) {
    for (std::size_t done = 0; done < bytes.size();) {
        const long n = m_tls
                           ? SSL_write(m_tls->ssl, bytes.data() + done, static_cast<int>(bytes.size() - done))
                           : ::send(m_socket, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
        if (n <= 0) return false;
        done += static_cast<std::size_t>(n);
    }
    return true;
}

/// -1 for a failed connection, -2 when nothing came in time.
long NasConnection::readSome(char* data, std::size_t length, int patienceMs) {
    if (m_tls == nullptr || SSL_pending(m_tls->ssl) == 0) {
        pollfd wait{m_socket, POLLIN, 0};
        if (::poll(&wait, 1, patienceMs) <= 0) return -2;
    }
    if (m_tls) {
        errno = 0;
        const int n = SSL_read(m_tls->ssl, data, static_cast<int>(length));
        if (n > 0) return n;
        return SSL_get_error(m_tls->ssl, n) == SSL_ERROR_SYSCALL && errno == ECONNRESET ? -1 : 0;
    }
    return ::recv(m_socket, data, length, 0);
}

NasReply NasConnection::readAll(int patienceMs) {
    NasReply reply;
    char data[65536];
    while (true) {
        const long n = readSome(data, sizeof data, patienceMs);
        if (n <= 0) {
            reply.reset = n == -1;
            reply.timedOut = n == -2;
            break;
        }
        reply.raw.append(data, static_cast<std::size_t>(n));
    }
    return parsed(std::move(reply));
}

bool NasConnection::readBytes(std::string& into, std::size_t count, int patienceMs) {
    char data[65536];
    while (into.size() < count) {
        const long n = readSome(data, std::min(sizeof data, count - into.size()), patienceMs);
        if (n <= 0) return false;
        into.append(data, static_cast<std::size_t>(n));
    }
    return true;
}

NasReply exchange(std::uint16_t port, const NasRequest& request, bool tls) {
    NasConnection connection(port, tls);
    connection.send(request.bytes());
    return connection.readAll();
}

NasRequest loginRequest(const std::string& user, const std::string& password, const std::string& target) {
    return NasRequest::form(target, {{"user", user},
                                     {"pwd", base64(password)},
                                     {"nubo_user", "1"},
                                     {"nubo_computer", "desk"},
                                     {"uid", "u-1"},
                                     {"nubo_device_type", "2"},
                                     {"Torvi_client_version", "1.0"}});
}

std::string loginSid(std::uint16_t port, const std::string& user, const std::string& password) {
    return exchange(port, loginRequest(user, password)).json().get("sid", "").asString();
}
