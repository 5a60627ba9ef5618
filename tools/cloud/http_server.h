#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <set>
#include <thread>

#include "http_request.h"
#include "nas/fd.h"
#include "nas/status.h"

namespace cloud {

class RequestReader;

// What becomes of requests.
struct HttpHandlers {
    std::function<HttpReply(const HttpRequest&)> serve;
    // What isn't HTTP, as far as it was read. The connection ends with the reply.
    std::function<HttpReply(const HttpRequest&, const nas::Refusal&)> refuse;
};

// The HTTP server behind the relay, on a loopback port of its own.
class HttpServer {
public:
    // Waits for so many seconds until a client sends or takes something.
    HttpServer(HttpHandlers handlers, int64_t patience);
    ~HttpServer();

    int port() const { return port_; }
    void start();
    void stop();

private:
    void acceptAll();
    // False if there is no thread left for it.
    bool serveAside(nas::Fd& socket);
    void serve(int socket);
    bool serveNext(RequestReader& reader, int socket);

    const HttpHandlers handlers_;
    const int64_t patience_;
    nas::Fd listener_;
    int port_ = 0;
    std::thread thread_;
    std::mutex mutex_;
    std::condition_variable oneLess_;
    std::set<int> open_;
    bool stopping_ = false;
};

}  // namespace cloud
