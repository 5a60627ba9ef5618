#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "faults.h"
#include "socket_end.h"

namespace nas {

// One client's connection and its twin to the service. Follows the requests just far enough to know where
// each begins and ends, so that a fault hits the request that it is meant for.
class Connection {
public:
    using Clock = std::chrono::steady_clock;
    // Set in the epoll data of the client's socket, to tell it from the service's.
    static constexpr uint64_t kClientMark = 1;

    Connection(Faults& faults, int epoll, SocketEnd client, SocketEnd service);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Moves what can be moved. False: the connection is over.
    bool pump(uint32_t clientEvents);
    // When to pump again without an event; the clock's beginning stands for at once.
    std::optional<Clock::time_point> deadline() const {
        return more_ ? std::optional<Clock::time_point>(Clock::time_point()) : deadline_;
    }

private:
    enum class RequestStage { Head, Body, Opaque };
    enum class ReplyStage { Head, Body };
    enum class Ending { None, Close, Reset };

    bool readClient();
    bool writeService();
    bool readService();
    bool writeClient();
    void watch();

    void takeRequest(const char* data, size_t length);
    void beginRequest(const std::string& head);
    void takeRequestBody(const char* data, size_t length);
    void endRequest();
    void takeReply(const char* data, size_t length);
    void takeReplyHead();
    std::string lengthChanged(const std::string& head);
    void passReply(const char* data, size_t length, bool head);
    void hit();
    bool isFault(FaultKind kind) const { return fault_ && fault_->kind == kind; }
    bool answersInstead() const;
    bool cutsUpload() const;
    // A body was cut, and the service has yet to put away what it got of it.
    bool cutting() const { return cutsUpload() && ending_ != Ending::None && !serviceEnded_; }
    void end(Ending ending);

    Faults& faults_;
    const int epoll_;
    SocketEnd client_;
    SocketEnd service_;
    uint32_t clientInterest_ = 0;
    uint32_t serviceInterest_ = 0;
    std::string up_;    // on the way to the service
    std::string down_;  // on the way to the client
    bool clientEnded_ = false;
    bool serviceEnded_ = false;
    bool serviceFinished_ = false;  // we told the service that no more comes
    bool more_ = false;             // there was more to move than one turn may take
    bool lingering_ = false;        // all is sent; what the client still sends is dropped
    Ending ending_ = Ending::None;  // once `down_` is empty
    std::optional<Clock::time_point> deadline_;

    RequestStage requestStage_ = RequestStage::Head;
    std::string requestHead_;
    int64_t requestLeft_ = 0;
    int64_t requestSeen_ = 0;
    bool readingStopped_ = false;

    std::optional<Fault> fault_;
    std::string func_;
    bool faultTold_ = false;
    ReplyStage replyStage_ = ReplyStage::Head;
    std::string replyHead_;
    int64_t replyPassed_ = 0;
    int64_t replyLeft_ = -1;  // bytes of the body behind a changed length
    bool replyStopped_ = false;
    std::string stalled_;  // what a stall holds back
    Clock::time_point nextDrop_{};
};

}  // namespace nas
