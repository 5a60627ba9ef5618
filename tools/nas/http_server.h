#pragma once

#include <httplib.h>

#include <thread>

namespace nas {

class Service;

// The HTTP server behind the relay, on a loopback port of its own.
class HttpServer {
public:
    explicit HttpServer(Service& service);
    ~HttpServer();

    int port() const { return port_; }
    void start();
    void stop();

private:
    httplib::Server server_;
    std::thread thread_;
    int socket_ = -1;
    int port_ = 0;
};

}  // namespace nas
