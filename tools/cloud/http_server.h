#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <thread>

#include "nas/fd.h"
#include "nas/wire_text.h"

namespace cloud {

struct HttpRequest {
    std::string method;
    std::string path;
    std::string query;
    bool hasQuery = false;
    nas::Fields headers;  // in the order in which they came
    std::string body;

    // The first header of that name, in whatever case; empty without one.
    std::string header(const std::string& name) const;
};

struct HttpReply {
    int status = 200;
    std::string body;  // JSON
};

// The HTTP server behind the relay, on a loopback port of its own. It keeps headers in their order, which is
// part of the protocol, and a checksum whatever bytes it holds.
class HttpServer {
public:
    using Handler = std::function<HttpReply(const HttpRequest&)>;

    explicit HttpServer(Handler handler);
    ~HttpServer();

    int port() const { return port_; }
    void start();
    void stop();

private:
    void acceptAll();
    void serve(int socket);

    const Handler handler_;
    nas::Fd listener_;
    int port_ = 0;
    std::thread thread_;
    std::mutex mutex_;
    std::condition_variable oneLess_;
    std::set<int> open_;
    bool stopping_ = false;
};

}  // namespace cloud
