#include "support/rawserver.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>
#include <zlib.h>

#include <strings.h>
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>

namespace wire {

namespace {

constexpr std::chrono::seconds kPatience{20};
constexpr std::size_t kMaxHead = 1u << 20;

bool sameName(std::string_view a, std::string_view b) {
    return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

std::string find(const HeaderList& headers, std::string_view name) {
    for (const auto& [key, value] : headers) {
        if (sameName(key, name)) return value;
    }
    return {};
}

std::string trim(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(" \t") - first + 1));
}

/// The lines of a head, the first one apart if it is a request's.
HeaderList parseHeaders(std::string_view head) {
    HeaderList headers;
    while (!head.empty()) {
        const auto end = head.find("\r\n");
        const std::string_view line = head.substr(0, end);
        head.remove_prefix(end == std::string_view::npos ? head.size() : end + 2);
        if (line.empty()) continue;
        const auto colon = line.find(':');
        if (colon == std::string_view::npos) {
            headers.emplace_back(std::string(line), std::string());
        } else {
            headers.emplace_back(std::string(line.substr(0, colon)), trim(line.substr(colon + 1)));
        }
    }
    return headers;
}

std::vector<Field> parseFields(std::string_view text) {
    std::vector<Field> fields;
    while (!text.empty()) {
        const auto end = text.find('&');
        const std::string_view pair = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        const auto equals = pair.find('=');
        Field field;
        field.rawKey = pair.substr(0, equals);
        if (equals != std::string_view::npos) field.rawValue = pair.substr(equals + 1);
        field.key = percentDecode(field.rawKey, true);
        field.value = percentDecode(field.rawValue, true);
        fields.push_back(std::move(field));
    }
    return fields;
}

/// The value of `name="..."` in a header, or nothing.
std::optional<std::string> parameter(const std::string& header, const std::string& name) {
    const std::string key = name + "=";
    for (std::size_t at = header.find(key); at != std::string::npos; at = header.find(key, at + 1)) {
        if (at > 0 && header[at - 1] != ' ' && header[at - 1] != ';') continue;  // the tail of another name
        std::size_t begin = at + key.size();
        if (begin < header.size() && header[begin] == '"') {
            const auto end = header.find('"', begin + 1);
            return header.substr(begin + 1, end == std::string::npos ? end : end - begin - 1);
        }
        return trim(header.substr(begin, header.find(';', begin) - begin));
    }
    return std::nullopt;
}

std::string gzipped(const std::string& text) {
    z_stream stream{};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
        throw std::runtime_error("deflateInit2");
    }
    std::string out(deflateBound(&stream, text.size()) + 32, '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = static_cast<uInt>(out.size());
    deflate(&stream, Z_FINISH);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return out;
}

const char* reasonPhrase(int code) {
    switch (code) {
        case 200:
            return "OK";
        case 206:
            return "Partial Content";
        case 302:
            return "Found";
        case 400:
            return "Bad Request";
        case 401:
            return "Unauthorized";
        case 403:
            return "Forbidden";
        case 404:
            return "Not Found";
        case 407:
            return "Proxy Authentication Required";
        case 500:
            return "Internal Server Error";
        case 503:
            return "Service Unavailable";
        default:
            return "Whatever";
    }
}

class Sha256 {
public:
    Sha256() : m_context(EVP_MD_CTX_new()) { EVP_DigestInit_ex(m_context, EVP_sha256(), nullptr); }
    ~Sha256() { EVP_MD_CTX_free(m_context); }
    Sha256(const Sha256&) = delete;
    Sha256& operator=(const Sha256&) = delete;
    void add(const char* data, std::size_t size) { EVP_DigestUpdate(m_context, data, size); }
    std::string hex() {
        unsigned char digest[EVP_MAX_MD_SIZE];
        unsigned size = 0;
        EVP_DigestFinal_ex(m_context, digest, &size);
        std::string text;
        for (unsigned i = 0; i < size; ++i) {
            text += "0123456789abcdef"[digest[i] >> 4];
            text += "0123456789abcdef"[digest[i] & 15];
        }
        return text;
    }

private:
    EVP_MD_CTX* m_context;
};

/// A port of 0 becomes one that is free.
int boundSocket(std::uint16_t& port, const char* host = "127.0.0.1") {
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) throw std::runtime_error("socket");
    const int yes = 1;  // connections of an earlier server at a given port may still be ending
    if (port != 0) ::setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof(yes));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = ::inet_addr(host);
    address.sin_port = htons(port);
    socklen_t size = sizeof(address);
    if (::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0 ||
        ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        ::close(fd);
        throw std::runtime_error("bind");
    }
    port = ntohs(address.sin_port);
    return fd;
}

CertificatePem makeCertificate(Certificate kind) {
    EVP_PKEY* key = EVP_EC_gen("P-256");
    X509* certificate = X509_new();
    X509_set_version(certificate, 2);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), 1);
    const long day = 24 * 60 * 60;
    X509_gmtime_adj(X509_getm_notBefore(certificate), kind == Certificate::Expired ? -30 * day : -day);
    X509_gmtime_adj(X509_getm_notAfter(certificate), kind == Certificate::Expired ? -day : 30 * day);
    X509_set_pubkey(certificate, key);
    X509_NAME* name = X509_get_subject_name(certificate);
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>("localhost"),
                               -1, -1, 0);
    X509_set_issuer_name(certificate, name);
    X509_sign(certificate, key, EVP_sha256());

    const auto text = [](auto write) {
        BIO* bio = BIO_new(BIO_s_mem());
        write(bio);
        char* data = nullptr;
        const long size = BIO_get_mem_data(bio, &data);
        std::string pem(data, static_cast<std::size_t>(size));
        BIO_free(bio);
        return pem;
    };
    CertificatePem pem;
    pem.certificate = text([&](BIO* bio) { PEM_write_bio_X509(bio, certificate); });
    pem.key =
        text([&](BIO* bio) { PEM_write_bio_PrivateKey(bio, key, nullptr, nullptr, 0, nullptr, nullptr); });
    X509_free(certificate);
    EVP_PKEY_free(key);
    return pem;
}

SSL_CTX* makeTlsContext(Certificate kind) {
    const CertificatePem& pem = certificatePem(kind);
    SSL_CTX* context = SSL_CTX_new(TLS_server_method());
    BIO* bio = BIO_new_mem_buf(pem.certificate.data(), static_cast<int>(pem.certificate.size()));
    X509* certificate = PEM_read_bio_X509(bio, nullptr, nullptr, nullptr);
    BIO_free(bio);
    bio = BIO_new_mem_buf(pem.key.data(), static_cast<int>(pem.key.size()));
    EVP_PKEY* key = PEM_read_bio_PrivateKey(bio, nullptr, nullptr, nullptr);
    BIO_free(bio);
    SSL_CTX_use_certificate(context, certificate);
    SSL_CTX_use_PrivateKey(context, key);
    X509_free(certificate);
    EVP_PKEY_free(key);
    return context;
}

}  // namespace

// --- Texts
// -----------------------------------------------------------------------------------------------------

std::string percentDecode(std::string_view text, bool plusIsBlank) {
    const auto digit = [](char c) {
        if (c >= '0' && c <= '9') return c - '0';
        if (c >= 'a' && c <= 'f') return c - 'a' + 10;
        if (c >= 'A' && c <= 'F') return c - 'A' + 10;
        return -1;
    };
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size() && digit(text[i + 1]) >= 0 && digit(text[i + 2]) >= 0) {
            out += static_cast<char>(digit(text[i + 1]) * 16 + digit(text[i + 2]));
            i += 2;
        } else {
            out += plusIsBlank && text[i] == '+' ? ' ' : text[i];
        }
    }
    return out;
}

std::string sha256Hex(std::string_view data) {
    Sha256 sha;
    sha.add(data.data(), data.size());
    return sha.hex();
}

void fillPattern(std::uint64_t offset, char* out, std::size_t size) {
    // Eight bytes from each word's number: no period that a misplaced block could hide behind.
    std::size_t done = 0;
    while (done < size) {
        const std::uint64_t at = offset + done;
        std::uint64_t word = (at / 8 + 1) * 0x9E3779B97F4A7C15ull;
        word ^= word >> 29;
        word *= 0xBF58476D1CE4E5B9ull;
        word ^= word >> 32;
        const std::size_t skip = at % 8;
        const std::size_t count = std::min<std::size_t>(8 - skip, size - done);
        std::memcpy(out + done, reinterpret_cast<const char*>(&word) + skip, count);
        done += count;
    }
}

std::string pattern(std::size_t size, std::uint64_t offset) {
    std::string text(size, '\0');
    fillPattern(offset, text.data(), size);
    return text;
}

const CertificatePem& certificatePem(Certificate kind) {
    static const CertificatePem selfSigned = makeCertificate(Certificate::SelfSigned);
    static const CertificatePem expired = makeCertificate(Certificate::Expired);
    return kind == Certificate::Expired ? expired : selfSigned;
}

std::string Part::header(std::string_view wanted) const {
    return find(headers, wanted);
}

const Part& Multipart::part(std::string_view name) const {
    const Part* found = nullptr;
    for (const Part& part : parts) {
        if (part.name != name) continue;
        if (found != nullptr) throw std::runtime_error("two parts named " + std::string(name));
        found = &part;
    }
    if (found == nullptr) throw std::runtime_error("no part named " + std::string(name));
    return *found;
}

// --- Request
// ---------------------------------------------------------------------------------------------------

std::string Request::method() const {
    return line.substr(0, line.find(' '));
}

std::string Request::target() const {
    const auto begin = line.find(' ');
    const auto end = line.rfind(' ');
    if (begin == std::string::npos || end <= begin) return {};
    return line.substr(begin + 1, end - begin - 1);
}

std::string Request::path() const {
    const std::string text = target();
    return text.substr(0, text.find('?'));
}

std::string Request::queryText() const {
    const std::string text = target();
    const auto mark = text.find('?');
    return mark == std::string::npos ? std::string() : text.substr(mark + 1);
}

std::vector<Field> Request::query() const {
    return parseFields(queryText());
}
std::vector<Field> Request::form() const {
    return parseFields(body);
}
std::string Request::header(std::string_view name) const {
    return find(headers, name);
}

std::size_t Request::headerCount(std::string_view name) const {
    return static_cast<std::size_t>(std::count_if(
        headers.begin(), headers.end(), [&](const auto& header) { return sameName(header.first, name); }));
}

Multipart Request::multipart() const {
    const std::string type = header("Content-Type");
    const auto boundary = parameter(type, "boundary");
    if (type.rfind("multipart/", 0) != 0 || !boundary) throw std::runtime_error("no multipart body: " + type);
    Multipart result;
    result.boundary = *boundary;
    const std::string mark = "--" + *boundary;
    std::string_view rest = body;
    auto at = rest.find(mark);
    if (at == std::string_view::npos) throw std::runtime_error("the boundary doesn't stand in the body");
    result.preamble = rest.substr(0, at);
    rest.remove_prefix(at + mark.size());
    while (rest.substr(0, 2) == "\r\n") {
        rest.remove_prefix(2);
        const std::string next = "\r\n" + mark;
        at = rest.find(next);
        const std::string_view whole = rest.substr(0, at);
        Part part;
        const auto blank = whole.find("\r\n\r\n");
        part.head = whole.substr(0, blank);
        if (blank != std::string_view::npos) part.body = whole.substr(blank + 4);
        part.headers = parseHeaders(part.head);
        const std::string disposition = part.header("Content-Disposition");
        part.name = parameter(disposition, "name").value_or("");
        part.filename = parameter(disposition, "filename");
        result.parts.push_back(std::move(part));
        if (at == std::string_view::npos) return result;
        rest.remove_prefix(at + next.size());
    }
    result.closed = rest.substr(0, 2) == "--";
    result.epilogue = rest.substr(result.closed ? 2 : 0);
    return result;
}

// --- Reply
// -----------------------------------------------------------------------------------------------------

Reply Reply::status(int code, std::string body) {
    Reply reply;
    reply.m_code = code;
    reply.m_body = std::move(body);
    reply.m_framing = Framing::Length;
    return reply;
}

Reply Reply::bytes(std::string raw) {
    Reply reply;
    reply.m_body = std::move(raw);
    return reply;
}

Reply Reply::generated(std::uint64_t size, std::function<void(std::uint64_t, char*, std::size_t)> fill) {
    Reply reply = status(200);
    reply.m_headers.emplace_back("Content-Type", "application/octet-stream");
    reply.m_fill = std::move(fill);
    reply.m_fillSize = size;
    return reply;
}

Reply Reply::closeOnAccept() {
    Reply reply;
    reply.m_closeOnAccept = true;
    return reply;
}

Reply Reply::closeDuringBody(std::uint64_t bodyBytes) {
    Reply reply = closeBeforeReply();
    reply.m_stopReadingAt = bodyBytes;
    return reply;
}

Reply Reply::resetDuringBody(std::uint64_t bodyBytes) {
    Reply reply = resetBeforeReply();
    reply.m_stopReadingAt = bodyBytes;
    return reply;
}

Reply& Reply::header(std::string name, std::string value) {
    m_headers.emplace_back(std::move(name), std::move(value));
    return *this;
}

Reply& Reply::chunked(std::size_t piece) {
    m_framing = Framing::Chunked;
    m_chunk = std::max<std::size_t>(piece, 1);
    return *this;
}

Reply& Reply::gzip() {
    m_body = gzipped(m_body);
    return header("Content-Encoding", "gzip");
}

Reply& Reply::untilClose() {
    m_framing = Framing::UntilClose;
    m_end = End::Close;
    return *this;
}

Reply& Reply::contentLength(std::uint64_t lie) {
    m_statedLength = lie;
    const std::uint64_t real = m_fill ? m_fillSize : m_body.size();
    if (lie > real && m_end == End::KeepOpen) m_end = End::Close;
    return *this;
}

Reply& Reply::close() {
    m_end = End::Close;
    return *this;
}

Reply& Reply::reset() {
    m_end = End::Reset;
    return *this;
}

Reply& Reply::stallAtEnd() {
    m_end = End::Stall;
    return *this;
}

Reply& Reply::cut(std::uint64_t count, bool inBody, End how) {
    m_cutAt = count;
    m_cutInBody = inBody;
    m_end = how;
    return *this;
}

Reply& Reply::closeAfterBytes(std::uint64_t count) {
    return cut(count, false, End::Close);
}
Reply& Reply::resetAfterBytes(std::uint64_t count) {
    return cut(count, false, End::Reset);
}
Reply& Reply::stallAfterBytes(std::uint64_t count) {
    return cut(count, false, End::Stall);
}
Reply& Reply::closeAfterBodyBytes(std::uint64_t count) {
    return cut(count, true, End::Close);
}
Reply& Reply::resetAfterBodyBytes(std::uint64_t count) {
    return cut(count, true, End::Reset);
}
Reply& Reply::stallAfterBodyBytes(std::uint64_t count) {
    return cut(count, true, End::Stall);
}

Reply& Reply::trickle(std::size_t piece, std::chrono::milliseconds pause) {
    m_sendPiece = piece;
    m_sendPause = pause;
    return *this;
}

Reply& Reply::readSlowly(std::size_t piece, std::chrono::milliseconds pause) {
    m_readPiece = piece;
    m_readPause = pause;
    return *this;
}

Reply& Reply::answerDuringBody(std::uint64_t bodyBytes) {
    m_stopReadingAt = bodyBytes;
    m_answerEarly = true;
    return *this;
}

Reply& Reply::held() {
    m_held = true;
    return *this;
}

std::string Reply::head(bool withoutBody) const {
    if (m_code == 0) return {};
    std::string text = "HTTP/1.1 " + std::to_string(m_code) + " " + reasonPhrase(m_code) + "\r\n";
    for (const auto& [name, value] : m_headers) text += name + ": " + value + "\r\n";
    const std::uint64_t size = m_fill ? m_fillSize : m_body.size();
    if (m_framing == Framing::Length) {
        text += "Content-Length: " + std::to_string(m_statedLength.value_or(size)) + "\r\n";
    } else if (m_framing == Framing::Chunked) {
        text += "Transfer-Encoding: chunked\r\n";
    }
    if ((m_end == End::Close && !m_cutAt && !withoutBody) || m_answerEarly) text += "Connection: close\r\n";
    return text + "\r\n";
}

// --- The server
// ------------------------------------------------------------------------------------------------

struct RawServer::State {
    Options options;
    Handler handler;
    std::vector<Reply> script;
    std::size_t next = 0;

    mutable std::mutex mutex;
    mutable std::condition_variable changed;
    std::list<Request> requests;  // a list: connections keep their place in it
    std::size_t connections = 0, closed = 0;
    std::uint64_t releases = 0;
    bool stopping = false;

    int listener = -1, wake = -1;
    SSL_CTX* tls = nullptr;
    std::thread acceptor;
    struct Worker {
        std::thread thread;
        std::atomic<bool> done{false};
    };
    std::list<Worker> workers;  // of the acceptor's thread alone, until it has ended
    std::mutex handlerMutex;

    /// The step of the next request; mutex held.
    Reply take() {
        if (next < script.size()) return script[next++];
        if (options.repeatLast && !script.empty() && !script.back().m_closeOnAccept) return script.back();
        return Reply::closeBeforeReply();
    }
    bool takesNextOnAccept() {
        if (next < script.size()) return script[next].m_closeOnAccept && (++next, true);
        return options.repeatLast && !script.empty() && script.back().m_closeOnAccept;
    }
};

/// One accepted connection, on its own thread.
class Connection {
public:
    Connection(RawServer::State& state, int fd, std::size_t number)
        : m_state(state), m_fd(fd), m_number(number) {
        ::fcntl(m_fd, F_SETFL, ::fcntl(m_fd, F_GETFL) | O_NONBLOCK);
        const int on = 1;
        ::setsockopt(m_fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
    }
    ~Connection() {
        if (m_ssl != nullptr) SSL_free(m_ssl);
        ::close(m_fd);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    void run() {
        if (m_state.tls != nullptr && !handshake()) return;
        while (serveOne()) {
        }
    }

private:
    /// Waits until the socket is ready or the server stops; false for the latter.
    bool await(short events) {
        pollfd fds[2] = {{m_fd, events, 0}, {m_state.wake, POLLIN, 0}};
        while (::poll(fds, 2, -1) < 0) {
            if (errno != EINTR) return false;
        }
        return fds[1].revents == 0;
    }

    bool pause(std::chrono::milliseconds time) {
        pollfd fd{m_state.wake, POLLIN, 0};
        return ::poll(&fd, 1, static_cast<int>(time.count())) == 0;
    }

    bool awaitTls(int result) {
        switch (SSL_get_error(m_ssl, result)) {
            case SSL_ERROR_WANT_READ:
                return await(POLLIN);
            case SSL_ERROR_WANT_WRITE:
                return await(POLLOUT);
            default:
                ERR_clear_error();
                return false;
        }
    }

    bool handshake() {
        m_ssl = SSL_new(m_state.tls);
        SSL_set_fd(m_ssl, m_fd);
        for (;;) {
            const int result = SSL_accept(m_ssl);
            if (result == 1) return true;
            if (!awaitTls(result)) return false;
        }
    }

    /// Bytes read, 0 when the other side or the server ends.
    std::size_t readSome(char* out, std::size_t size) {
        for (;;) {
            if (m_ssl != nullptr) {
                const int result =
                    SSL_read(m_ssl, out, static_cast<int>(std::min<std::size_t>(size, 1 << 20)));
                if (result > 0) return static_cast<std::size_t>(result);
                if (!awaitTls(result)) return 0;
            } else {
                const ssize_t result = ::recv(m_fd, out, size, 0);
                if (result >= 0) return static_cast<std::size_t>(result);
                if (errno != EAGAIN && errno != EINTR) return 0;
                if (!await(POLLIN)) return 0;
            }
        }
    }

    bool writeAll(const char* data, std::size_t size) {
        while (size > 0) {
            std::size_t done = 0;
            if (m_ssl != nullptr) {
                const int result =
                    SSL_write(m_ssl, data, static_cast<int>(std::min<std::size_t>(size, 1 << 14)));
                if (result > 0) {
                    done = static_cast<std::size_t>(result);
                } else if (!awaitTls(result)) {
                    return false;
                }
            } else {
                const ssize_t result = ::send(m_fd, data, size, MSG_NOSIGNAL);
                if (result >= 0) {
                    done = static_cast<std::size_t>(result);
                } else if ((errno != EAGAIN && errno != EINTR) || !await(POLLOUT)) {
                    return false;
                }
            }
            data += done;
            size -= done;
        }
        return true;
    }

    /// Sends what the step's limit still allows; false when that is used up or the connection is gone.
    bool send(const Reply& reply, std::string_view data) {
        while (!data.empty()) {
            if (m_budget == 0) return false;
            std::size_t count = static_cast<std::size_t>(std::min<std::uint64_t>(data.size(), m_budget));
            if (reply.m_sendPiece > 0) count = std::min(count, reply.m_sendPiece);
            if (!writeAll(data.data(), count)) return false;
            m_budget -= count;
            data.remove_prefix(count);
            if (reply.m_sendPiece > 0 && !pause(reply.m_sendPause)) return false;
        }
        return true;
    }

    bool sendBody(const Reply& reply) {
        const std::uint64_t size = reply.m_fill ? reply.m_fillSize : reply.m_body.size();
        const bool chunked = reply.m_framing == Reply::Framing::Chunked;
        const std::size_t piece = chunked ? reply.m_chunk : 256u << 10;
        std::string buffer;
        for (std::uint64_t at = 0; at < size;) {
            const std::size_t count = static_cast<std::size_t>(std::min<std::uint64_t>(piece, size - at));
            std::string_view data;
            if (reply.m_fill) {
                buffer.resize(count);
                reply.m_fill(at, buffer.data(), count);
                data = buffer;
            } else {
                data = std::string_view(reply.m_body).substr(static_cast<std::size_t>(at), count);
            }
            if (chunked) {
                char head[32];
                std::snprintf(head, sizeof(head), "%zx\r\n", count);
                if (!send(reply, head) || !send(reply, data) || !send(reply, "\r\n")) return false;
            } else if (!send(reply, data)) {
                return false;
            }
            at += count;
        }
        return !chunked || send(reply, "0\r\n\r\n");
    }

    /// Reads until the other side closes, so that a reply in flight isn't lost to a reset.
    void drain() {
        char buffer[64 << 10];
        while (readSome(buffer, sizeof(buffer)) > 0) {
        }
    }

    void end(Reply::End how, bool unread) {
        switch (how) {
            case Reply::End::KeepOpen:
                break;
            case Reply::End::Stall:
                drain();
                break;
            case Reply::End::Reset: {
                const linger hard{1, 0};
                ::setsockopt(m_fd, SOL_SOCKET, SO_LINGER, &hard, sizeof(hard));
                break;
            }
            case Reply::End::Close:
                if (m_ssl != nullptr) {
                    SSL_shutdown(m_ssl);
                    ERR_clear_error();
                }
                ::shutdown(m_fd, SHUT_WR);
                if (!unread) drain();
                break;
        }
    }

    /// The head of the next request with its blank line; what was read behind it stays in m_pending.
    std::optional<std::string> readHead() {
        for (;;) {
            const auto end = m_pending.find("\r\n\r\n");
            if (end != std::string::npos) {
                std::string head = m_pending.substr(0, end + 4);
                m_pending.erase(0, end + 4);
                return head;
            }
            if (m_pending.size() > kMaxHead) return std::nullopt;
            char buffer[16 << 10];
            const std::size_t count = readSome(buffer, sizeof(buffer));
            if (count == 0) return std::nullopt;
            m_pending.append(buffer, count);
        }
    }

    /// Up to `limit` bytes of what was read ahead or comes next; empty at the end.
    std::string readBytes(std::size_t limit) {
        if (m_pending.empty()) {
            std::string buffer(std::min<std::size_t>(limit, 256u << 10), '\0');
            buffer.resize(readSome(buffer.data(), buffer.size()));
            return buffer;
        }
        std::string data = m_pending.substr(0, limit);
        m_pending.erase(0, data.size());
        return data;
    }

    struct Body {
        std::uint64_t stated = 0;
        bool chunked = false;
        Sha256 sha;
    };

    void keep(Request& request, Body& body, const std::string& data) {
        body.sha.add(data.data(), data.size());
        std::lock_guard lock(m_state.mutex);
        request.bodySize += data.size();
        if (request.body.size() < m_state.options.keepBody) {
            const std::string_view kept =
                std::string_view(data).substr(0, m_state.options.keepBody - request.body.size());
            request.body += kept;
            request.raw += kept;
        }
    }

    /// Reads `count` bytes of body, no more than up to `stopAt` in all; false when the connection ends.
    bool readPlain(Request& request, Body& body, const Reply& reply, std::uint64_t count,
                   std::uint64_t stopAt) {
        while (count > 0 && request.bodySize < stopAt) {
            std::uint64_t limit = std::min(count, stopAt - request.bodySize);
            if (reply.m_readPiece > 0) limit = std::min<std::uint64_t>(limit, reply.m_readPiece);
            const std::string data =
                readBytes(static_cast<std::size_t>(std::min<std::uint64_t>(limit, 1u << 20)));
            if (data.empty()) return false;
            keep(request, body, data);
            count -= data.size();
            if (reply.m_readPiece > 0 && !pause(reply.m_readPause)) return false;
        }
        return true;
    }

    std::optional<std::string> readLine() {
        std::string line;
        while (line.size() < kMaxHead) {
            const std::string byte = readBytes(1);
            if (byte.empty()) return std::nullopt;
            line += byte;
            if (line.size() >= 2 && line.compare(line.size() - 2, 2, "\r\n") == 0) return line;
        }
        return std::nullopt;
    }

    bool readChunked(Request& request, Body& body, const Reply& reply, std::uint64_t stopAt) {
        for (;;) {
            const auto line = readLine();
            if (!line) return false;
            const std::uint64_t size = std::strtoull(line->c_str(), nullptr, 16);
            if (size > 0 && !readPlain(request, body, reply, size, stopAt)) return false;
            if (request.bodySize >= stopAt) return true;
            const auto tail = readLine();
            if (!tail) return false;
            if (size == 0) return true;
        }
    }

    bool readBody(Request& request, Body& body, const Reply& reply, std::uint64_t stopAt) {
        return body.chunked ? readChunked(request, body, reply, stopAt)
                            : readPlain(request, body, reply, body.stated - request.bodySize, stopAt);
    }

    bool waitForRelease() {
        std::unique_lock lock(m_state.mutex);
        m_state.changed.wait(lock, [&] { return m_state.releases > 0 || m_state.stopping; });
        if (m_state.stopping) return false;
        --m_state.releases;
        return true;
    }

    void complete(Request& request, Body& body) {
        std::lock_guard lock(m_state.mutex);
        request.bodySha256 = body.sha.hex();
        request.complete = true;
        m_state.changed.notify_all();
    }

    /// Reads one request and answers it; false when the connection has ended.
    bool serveOne() {
        const auto head = readHead();
        if (!head) return false;
        Body body;
        Request* request = nullptr;
        Reply reply;
        {
            std::lock_guard lock(m_state.mutex);
            request = &m_state.requests.emplace_back();
            request->connection = m_number;
            request->raw = *head;
            const auto lineEnd = head->find("\r\n");
            request->line = head->substr(0, lineEnd);
            request->headers = parseHeaders(std::string_view(*head).substr(lineEnd + 2));
            body.stated = std::strtoull(request->header("Content-Length").c_str(), nullptr, 10);
            body.chunked = sameName(request->header("Transfer-Encoding"), "chunked");
            if (!m_state.handler) reply = m_state.take();
            m_state.changed.notify_all();
        }
        if (sameName(request->header("Expect"), "100-continue")) {
            const std::string_view goOn = "HTTP/1.1 100 Continue\r\n\r\n";
            if (!writeAll(goOn.data(), goOn.size())) return false;
        }
        if (reply.m_readPiece > 0) {
            const int small = 64 << 10;  // or the kernel takes the whole body by itself
            ::setsockopt(m_fd, SOL_SOCKET, SO_RCVBUF, &small, sizeof(small));
        }

        const std::uint64_t stopAt =
            reply.m_stopReadingAt.value_or(std::numeric_limits<std::uint64_t>::max());
        if (!readBody(*request, body, reply, stopAt)) return false;
        const bool whole = !reply.m_stopReadingAt || (!body.chunked && request->bodySize == body.stated);
        if (whole) complete(*request, body);
        if (m_state.handler) {
            std::lock_guard lock(m_state.handlerMutex);
            reply = m_state.handler(*request);
        }
        if (reply.m_held && !waitForRelease()) return false;

        const bool withoutBody = request->method() == "HEAD" && reply.m_code != 0;
        const std::string replyHead = reply.head(withoutBody);
        m_budget = std::numeric_limits<std::uint64_t>::max();
        if (reply.m_cutAt) m_budget = *reply.m_cutAt + (reply.m_cutInBody ? replyHead.size() : 0);
        const bool sent = send(reply, replyHead) && (withoutBody || sendBody(reply));
        if (!sent && m_budget > 0) return false;  // the other side has gone

        if (reply.m_answerEarly && !whole) {
            const bool rest = readBody(*request, body, reply, std::numeric_limits<std::uint64_t>::max());
            if (rest) complete(*request, body);
            end(reply.m_end == Reply::End::KeepOpen ? Reply::End::Close : reply.m_end, false);
            return false;
        }
        end(reply.m_end, !whole);
        return reply.m_end == Reply::End::KeepOpen;
    }

    RawServer::State& m_state;
    int m_fd;
    std::size_t m_number;
    SSL* m_ssl = nullptr;
    std::string m_pending;
    std::uint64_t m_budget = 0;
};

RawServer::RawServer(std::vector<Reply> script) : RawServer(std::move(script), Options()) {}

RawServer::RawServer(std::vector<Reply> script, Options options) : m_state(std::make_unique<State>()) {
    m_state->script = std::move(script);
    start(options);
}

RawServer::RawServer(Handler handler) : RawServer(std::move(handler), Options()) {}

RawServer::RawServer(Handler handler, Options options) : m_state(std::make_unique<State>()) {
    m_state->handler = std::move(handler);
    start(options);
}

void RawServer::start(const Options& options) {
    std::signal(SIGPIPE, SIG_IGN);  // TLS writes to a closed connection
    m_state->options = options;
    m_port = options.port;
    m_state->listener = boundSocket(m_port, options.address.c_str());
    m_state->wake = ::eventfd(0, EFD_CLOEXEC);
    if (m_state->wake < 0 || ::listen(m_state->listener, options.listenBacklog) != 0) {
        throw std::runtime_error("listen");
    }
    if (options.certificate != Certificate::None) m_state->tls = makeTlsContext(options.certificate);
    m_state->acceptor = std::thread([this] { acceptLoop(); });
}

RawServer::~RawServer() {
    {
        std::lock_guard lock(m_state->mutex);
        m_state->stopping = true;
        m_state->changed.notify_all();
    }
    const std::uint64_t one = 1;
    if (::write(m_state->wake, &one, sizeof(one)) != sizeof(one)) std::abort();
    m_state->acceptor.join();
    for (State::Worker& worker : m_state->workers) worker.thread.join();
    if (m_state->tls != nullptr) SSL_CTX_free(m_state->tls);
    ::close(m_state->listener);
    ::close(m_state->wake);
}

void RawServer::acceptLoop() {
    for (;;) {
        pollfd fds[2] = {{m_state->listener, POLLIN, 0}, {m_state->wake, POLLIN, 0}};
        if (::poll(fds, 2, -1) < 0 && errno == EINTR) continue;
        if (fds[1].revents != 0) return;
        const int fd = ::accept4(m_state->listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (fd < 0) continue;
        std::size_t number = 0;
        bool closeNow = false;
        {
            std::lock_guard lock(m_state->mutex);
            number = m_state->connections++;
            closeNow = !m_state->handler && m_state->takesNextOnAccept();
            m_state->changed.notify_all();
        }
        m_state->workers.remove_if(
            [](State::Worker& worker) { return worker.done && (worker.thread.join(), true); });
        State::Worker& worker = m_state->workers.emplace_back();
        worker.thread = std::thread([state = m_state.get(), &worker, fd, number, closeNow] {
            {
                Connection connection(*state, fd, number);
                if (!closeNow) connection.run();
            }
            {
                std::lock_guard lock(state->mutex);
                ++state->closed;
                state->changed.notify_all();
            }
            worker.done = true;
        });
    }
}

std::string RawServer::authority() const {
    return m_state->options.address + ":" + std::to_string(m_port);
}

void RawServer::enqueue(Reply reply) {
    std::lock_guard lock(m_state->mutex);
    m_state->script.push_back(std::move(reply));
}

void RawServer::release() {
    std::lock_guard lock(m_state->mutex);
    ++m_state->releases;
    m_state->changed.notify_all();
}

std::vector<Request> RawServer::requests() const {
    std::lock_guard lock(m_state->mutex);
    return {m_state->requests.begin(), m_state->requests.end()};
}

Request RawServer::request(std::size_t index) const {
    std::lock_guard lock(m_state->mutex);
    if (index >= m_state->requests.size()) {
        throw std::out_of_range("request " + std::to_string(index) + " hasn't come, only " +
                                std::to_string(m_state->requests.size()));
    }
    return *std::next(m_state->requests.begin(), static_cast<std::ptrdiff_t>(index));
}

Request RawServer::onlyRequest() const {
    const std::size_t count = requestCount();
    if (count != 1) throw std::out_of_range("one request expected, " + std::to_string(count) + " came");
    return request(0);
}

std::size_t RawServer::requestCount() const {
    std::lock_guard lock(m_state->mutex);
    return m_state->requests.size();
}

std::size_t RawServer::connectionCount() const {
    std::lock_guard lock(m_state->mutex);
    return m_state->connections;
}

bool RawServer::waitForRequests(std::size_t count) const {
    std::unique_lock lock(m_state->mutex);
    return m_state->changed.wait_for(lock, kPatience, [&] {
        return static_cast<std::size_t>(
                   std::count_if(m_state->requests.begin(), m_state->requests.end(),
                                 [](const Request& request) { return request.complete; })) >= count;
    });
}

bool RawServer::waitForHeads(std::size_t count) const {
    std::unique_lock lock(m_state->mutex);
    return m_state->changed.wait_for(lock, kPatience, [&] { return m_state->requests.size() >= count; });
}

bool RawServer::waitForConnections(std::size_t count) const {
    std::unique_lock lock(m_state->mutex);
    return m_state->changed.wait_for(lock, kPatience, [&] { return m_state->connections >= count; });
}

bool RawServer::waitUntilAllClosed() const {
    std::unique_lock lock(m_state->mutex);
    return m_state->changed.wait_for(lock, kPatience,
                                     [&] { return m_state->closed == m_state->connections; });
}

RefusedPort::RefusedPort() : m_fd(boundSocket(m_port)) {}
RefusedPort::~RefusedPort() {
    ::close(m_fd);
}

std::uint16_t freePort() {
    // Below the range that the system hands out, where nobody else takes it meanwhile; and the library reads
    // a proxy's port as a signed 16-bit number.
    static std::atomic<unsigned> next{static_cast<unsigned>(::getpid())};
    for (int attempt = 0; attempt < 1000; ++attempt) {
        const auto port = static_cast<std::uint16_t>(10000 + (next += 7919) % 22000);
        const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(port);
        const bool free = ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0;
        ::close(fd);
        if (free) return port;
    }
    throw std::runtime_error("no free port");
}

}  // namespace wire
