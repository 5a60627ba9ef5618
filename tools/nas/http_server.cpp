#include "http_server.h"

#include <sys/socket.h>

#include <stdexcept>

#include "log.h"
#include "question_marks.h"
#include "service.h"

namespace nas {

namespace {

constexpr int kThreads = 64;
constexpr int kBacklog = 512;
constexpr time_t kPatience = 600;

// Set while a request is in the service's hands; what never gets there is logged by the server's own hook.
thread_local bool reachedService = false;

// The library's multipart reader forgives what the protocol doesn't, its compression and ranges are no part
// of it. So the headers that set them off are put out of its sight before it looks, and what the relay hid
// from it comes back.
void prepare(httplib::Request& request) {
    request.headers.erase("X-Body-Type");
    std::string type = request.get_header_value("Content-Type");
    if (!type.empty()) {
        request.headers.emplace("X-Body-Type", type);
        request.headers.erase("Content-Type");
    }
    request.headers.erase("Accept-Encoding");
    request.ranges.clear();
    request.target = showQuestionMarks(request.target);
}

}  // namespace

HttpServer::HttpServer(Service& service) {
    server_.new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
    server_.set_tcp_nodelay(true);
    server_.set_read_timeout(kPatience);
    server_.set_write_timeout(kPatience);
    server_.set_keep_alive_max_count(1000000);
    server_.set_keep_alive_timeout(30);
    server_.set_socket_options([this](socket_t sock) { socket_ = sock; });
    server_.set_pre_routing_handler([&](const httplib::Request& request, httplib::Response& response) {
        // The server owns the request and hands it out read-only; it isn't a constant object.
        prepare(const_cast<httplib::Request&>(request));
        const std::string& method = request.method;
        if (method == "POST" || method == "PUT" || method == "PATCH" || method == "DELETE") {
            return httplib::Server::HandlerResponse::Unhandled;
        }
        reachedService = true;
        service.serve(request, response, nullptr);
        return httplib::Server::HandlerResponse::Handled;
    });
    auto withBody = [&](const httplib::Request& request, httplib::Response& response,
                        const httplib::ContentReader& body) {
        reachedService = true;
        // Without a length there is no body; reading would wait for the connection's end.
        bool has = request.has_header("Content-Length") || request.has_header("Transfer-Encoding");
        service.serve(request, response, has ? &body : nullptr);
    };
    const char* any = "[^]*";
    server_.Post(any, withBody);
    server_.Put(any, withBody);
    server_.Patch(any, withBody);
    server_.Delete(any, withBody);
    server_.set_logger([](const httplib::Request& request, const httplib::Response& response) {
        if (!reachedService) {
            logLine((request.method.empty() ? "?" : request.method) + " " + request.path.substr(0, 200) +
                    " http=" + std::to_string(response.status) + " refused: not a request that HTTP knows");
        }
        reachedService = false;
    });
    port_ = server_.bind_to_any_port("127.0.0.1");
    // The library listens with a backlog of 5, too short for a burst of connections from the relay.
    if (port_ <= 0 || ::listen(socket_, kBacklog) != 0) {
        throw std::runtime_error("cannot listen on a loopback port");
    }
}

HttpServer::~HttpServer() {
    stop();
}

void HttpServer::start() {
    thread_ = std::thread([this] { server_.listen_after_bind(); });
}

void HttpServer::stop() {
    if (thread_.joinable()) {
        server_.stop();
        thread_.join();
    }
}

}  // namespace nas
