#pragma once

#include <json/json.h>

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

/// What came back on one connection, to its very end.
struct NasReply {
    int http = 0;  ///< 0 if there was no whole head
    std::map<std::string, std::string> headers;
    std::string body;
    std::string raw;
    bool reset = false;  ///< the connection ended with a reset
    bool timedOut = false;

    Json::Value json() const;
    int status() const { return json().get("status", -1000).asInt(); }
    /// The body has as many bytes as the head announces.
    bool complete() const;
};

/// One request, byte by byte as it goes out.
struct NasRequest {
    std::string method = "GET";
    std::string target;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;

    /// A short call without a body.
    static NasRequest get(const std::string& target);
    /// A short call with a form.
    static NasRequest form(const std::string& target,
                           const std::vector<std::pair<std::string, std::string>>& fields);
    /// A file in the protocol's multipart body.
    static NasRequest upload(const std::string& target, const std::string& name, const std::string& content,
                             const std::string& closing = "Upload");
    static NasRequest download(const std::string& target,
                               const std::vector<std::pair<std::string, std::string>>& fields);

    /// Sets a header in its place, or takes it out when the value is empty.
    NasRequest& set(const std::string& name, const std::string& value);
    std::string bytes() const;
};

inline const char* const kBoundary = "__-----------------------17000000000001234";

std::string encoded(const std::string& text);
std::string base64(const std::string& text);

/// Sends bytes to a port of this machine and reads until the connection ends.
class NasConnection {
public:
    explicit NasConnection(std::uint16_t port, bool tls = false);
    ~NasConnection();
    NasConnection(const NasConnection&) = delete;
    NasConnection& operator=(const NasConnection&) = delete;

    /// False when the peer takes no more.
    bool send(const std::string& bytes);
    /// Reads what there is until the end, or for so long.
    NasReply readAll(int patienceMs = 20000);
    /// Reads until that many bytes came in all; false if the connection ends first.
    bool readBytes(std::string& into, std::size_t count, int patienceMs = 20000);

private:
    long readSome(char* data, std::size_t length, int patienceMs);

    int m_socket = -1;
    struct Tls;
    Tls* m_tls = nullptr;
};

NasReply exchange(std::uint16_t port, const NasRequest& request, bool tls = false);

/// Logs in at the sync service; empty if that failed.
std::string loginSid(std::uint16_t port, const std::string& user, const std::string& password);
NasRequest loginRequest(const std::string& user, const std::string& password,
                        const std::string& target = "/cgi-bin/torvi/torvisrv_login.cgi");
