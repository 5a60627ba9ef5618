#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <limits>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

/// A scripted HTTP server on a raw socket: it records what arrives byte for byte and answers what the script
/// says, right or wrong.
namespace wire {

using HeaderList = std::vector<std::pair<std::string, std::string>>;

/// One "key=value" as it stood on the wire, and decoded ("%XX" and "+").
struct Field {
    std::string rawKey, rawValue;
    std::string key, value;
};

struct Part {
    std::string head;  ///< without the blank line behind it
    HeaderList headers;
    std::string name;
    std::optional<std::string> filename;
    std::string body;

    /// The value of a header, empty if there is none.
    std::string header(std::string_view name) const;
};

struct Multipart {
    std::string boundary;
    std::vector<Part> parts;
    std::string preamble;  ///< before the first boundary
    std::string epilogue;  ///< behind the closing "--"
    bool closed = false;   ///< the closing boundary was there

    /// The part of that name; throws if there isn't exactly one.
    const Part& part(std::string_view name) const;
};

/// One request as it arrived.
struct Request {
    std::string raw;   ///< head and kept body, byte for byte
    std::string line;  ///< without CRLF
    HeaderList headers;
    std::string body;            ///< what Options::keepBody allows of it
    std::uint64_t bodySize = 0;  ///< all of it
    std::string bodySha256;      ///< of all of it, in lower-case hex; once it is complete
    bool complete = false;       ///< head and body arrived whole
    std::size_t connection = 0;  ///< counts from 0 in the order of acceptance

    std::string method() const;
    std::string target() const;
    std::string path() const;       ///< the target without its query
    std::string queryText() const;  ///< behind the first "?"
    std::vector<Field> query() const;
    std::vector<Field> form() const;  ///< the body as form fields
    Multipart multipart() const;      ///< the body as parts; throws if it isn't multipart
    std::size_t headerCount(std::string_view name) const;
    /// The value of a header whatever its case, empty if there is none.
    std::string header(std::string_view name) const;
};

/// One step of the script: how a request is read, what is answered and how it ends.
class Reply {
public:
    static Reply json(std::string body) {
        return status(200, std::move(body)).header("Content-Type", "application/json");
    }
    static Reply text(std::string body) {
        return status(200, std::move(body)).header("Content-Type", "text/plain");
    }
    static Reply status(int code, std::string body = {});
    /// A redirect, which the library doesn't follow.
    static Reply redirect(std::string location) {
        return status(302).header("Location", std::move(location));
    }
    /// The bytes as they stand. The connection stays open unless the step says otherwise.
    static Reply bytes(std::string raw);
    /// A body that is made while it is sent; see fillPattern().
    static Reply generated(std::uint64_t size,
                           std::function<void(std::uint64_t offset, char* out, std::size_t size)> fill);

    /// Reads the request and closes without a byte.
    static Reply closeBeforeReply() { return bytes({}).close(); }
    static Reply resetBeforeReply() { return bytes({}).reset(); }
    /// Reads the request and never answers.
    static Reply stall() { return bytes({}).stallAtEnd(); }
    /// Closes as soon as the connection is accepted, before a byte is read.
    static Reply closeOnAccept();
    /// Closes or resets once that much of the request's body has been read.
    static Reply closeDuringBody(std::uint64_t bodyBytes);
    static Reply resetDuringBody(std::uint64_t bodyBytes);

    /// Adds a header behind those that are there.
    Reply& header(std::string name, std::string value);
    /// Sends the body in chunks of that size.
    Reply& chunked(std::size_t piece = 7);
    /// Compresses the body and says so.
    Reply& gzip();
    /// No Content-Length: the end of the connection ends the body.
    Reply& untilClose();
    /// States this length, whatever the body's is. Closes behind a body that is shorter.
    Reply& contentLength(std::uint64_t lie);
    /// How the connection goes on behind the last byte.
    Reply& close();
    Reply& reset();
    Reply& stallAtEnd();
    /// Sends only the first bytes of the whole reply (head included), then closes, resets or stalls.
    Reply& closeAfterBytes(std::uint64_t count);
    Reply& resetAfterBytes(std::uint64_t count);
    Reply& stallAfterBytes(std::uint64_t count);
    /// As above, counted from the reply's body.
    Reply& closeAfterBodyBytes(std::uint64_t count);
    Reply& resetAfterBodyBytes(std::uint64_t count);
    Reply& stallAfterBodyBytes(std::uint64_t count);
    /// Sends in pieces of that size with a pause behind each.
    Reply& trickle(std::size_t piece, std::chrono::milliseconds pause = std::chrono::milliseconds(1));
    /// Reads the request's body in pieces of that size with a pause behind each.
    Reply& readSlowly(std::size_t piece, std::chrono::milliseconds pause = std::chrono::milliseconds(1));
    /// Answers once that much of the request's body has been read, then reads what is left and closes.
    Reply& answerDuringBody(std::uint64_t bodyBytes);
    /// Waits for RawServer::release() before it answers.
    Reply& held();

private:
    friend class RawServer;
    friend class Connection;
    enum class End { KeepOpen, Close, Reset, Stall };
    enum class Framing { None, Length, Chunked, UntilClose };

    Reply& cut(std::uint64_t count, bool inBody, End how);
    std::string head(bool withoutBody) const;

    int m_code = 0;
    HeaderList m_headers;
    std::string m_body;  // the raw bytes if m_code is 0
    std::function<void(std::uint64_t, char*, std::size_t)> m_fill;
    std::uint64_t m_fillSize = 0;
    Framing m_framing = Framing::None;
    std::size_t m_chunk = 0;
    std::optional<std::uint64_t> m_statedLength;
    std::optional<std::uint64_t> m_cutAt;
    bool m_cutInBody = false;
    End m_end = End::KeepOpen;
    std::optional<std::uint64_t> m_stopReadingAt;
    bool m_answerEarly = false;
    bool m_closeOnAccept = false;
    bool m_held = false;
    std::size_t m_sendPiece = 0, m_readPiece = 0;
    std::chrono::milliseconds m_sendPause{0}, m_readPause{0};
};

enum class Certificate { None, SelfSigned, Expired };

class Connection;

class RawServer {
public:
    /// Makes the answer from the request; called on the connection's thread, one call at a time.
    using Handler = std::function<Reply(const Request&)>;

    struct Options {
        Certificate certificate = Certificate::None;  ///< anything but None speaks TLS
        bool repeatLast = true;            ///< the last step answers what comes behind it; else: close
        std::size_t keepBody = 16u << 20;  ///< bytes of each request's body that are kept
        int listenBacklog = 64;
        std::string address = "127.0.0.1";
        std::uint16_t port = 0;  ///< 0: any that is free
    };

    // Two overloads: a default argument can't use the nested struct's own defaults.
    explicit RawServer(std::vector<Reply> script);
    RawServer(std::vector<Reply> script, Options options);
    explicit RawServer(Handler handler);
    RawServer(Handler handler, Options options);
    /// Ends every connection and joins every thread.
    ~RawServer();
    RawServer(const RawServer&) = delete;
    RawServer& operator=(const RawServer&) = delete;

    std::uint16_t port() const { return m_port; }
    /// "127.0.0.1:<port>", as in the Host header.
    std::string authority() const;

    /// Adds a step at the end of the script.
    void enqueue(Reply reply);
    /// Lets one held() answer go, this one or the next to come.
    void release();

    /// What has arrived so far, in the order of arrival.
    std::vector<Request> requests() const;
    /// The request of that number; throws if it hasn't come.
    Request request(std::size_t index = 0) const;
    /// The one request that came; throws if there are more or none.
    Request onlyRequest() const;
    std::size_t requestCount() const;
    std::size_t connectionCount() const;

    /// Wait on the server's side, with a generous bound; false when it passes.
    bool waitForRequests(std::size_t count) const;  ///< whole ones
    bool waitForHeads(std::size_t count) const;     ///< their bodies may still be on the way
    bool waitForConnections(std::size_t count) const;
    bool waitUntilAllClosed() const;  ///< every connection so far has ended, on whichever side

private:
    friend class Connection;
    struct State;

    void start(const Options& options);
    void acceptLoop();

    std::unique_ptr<State> m_state;
    std::uint16_t m_port = 0;
};

/// A port of this machine that refuses connections as long as the object lives.
class RefusedPort {
public:
    RefusedPort();
    ~RefusedPort();
    RefusedPort(const RefusedPort&) = delete;
    RefusedPort& operator=(const RefusedPort&) = delete;
    std::uint16_t port() const { return m_port; }

private:
    std::uint16_t m_port = 0;  // first: making the socket sets it
    int m_fd = -1;
};

/// A port that nobody listened on a moment ago, for child processes that can't choose their own.
std::uint16_t freePort();

/// Decodes "%XX"; "+" stays unless asked for.
std::string percentDecode(std::string_view text, bool plusIsBlank = false);
std::string sha256Hex(std::string_view data);

/// A body without end that can be checked at any offset.
void fillPattern(std::uint64_t offset, char* out, std::size_t size);
std::string pattern(std::size_t size, std::uint64_t offset = 0);

/// Certificate and key as PEM texts, made once per process and kind.
struct CertificatePem {
    std::string certificate, key;
};
const CertificatePem& certificatePem(Certificate kind);

}  // namespace wire

using wire::RawServer;
using wire::Reply;
