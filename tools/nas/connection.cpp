#include "connection.h"

#include <sys/epoll.h>
#include <sys/socket.h>

#include <strings.h>
#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "log.h"
#include "question_marks.h"

namespace nas {

namespace {

constexpr size_t kBuffer = 128 * 1024;
constexpr size_t kLongestHead = 64 * 1024;
// One busy connection mustn't keep the others waiting.
constexpr int kRoundsPerTurn = 32;
constexpr auto kLinger = std::chrono::seconds(2);
const char* const kHeadEnd = "\r\n\r\n";

// The value of a header in a raw head; the offset of the value too, if asked for.
std::optional<std::string> headerValue(const std::string& head, const std::string& name,
                                       size_t* at = nullptr) {
    for (size_t line = head.find("\r\n"); line != std::string::npos && line + 2 < head.size();) {
        size_t from = line + 2;
        size_t to = head.find("\r\n", from);
        if (to > from + name.size() && head[from + name.size()] == ':' &&
            strncasecmp(head.c_str() + from, name.c_str(), name.size()) == 0) {
            size_t value = head.find_first_not_of(" \t", from + name.size() + 1);
            if (at) {
                *at = value;
            }
            return head.substr(value, to - value);
        }
        line = to;
    }
    return std::nullopt;
}

// The name of the call, for matching: the "func" of the query, or what the address says.
std::string funcOf(const std::string& target) {
    size_t question = target.find('?');
    const std::string path = target.substr(0, question);
    size_t func = question == std::string::npos ? question : target.find("func=", question);
    if (func != std::string::npos && (target[func - 1] == '?' || target[func - 1] == '&')) {
        return target.substr(func + 5, target.find('&', func) - func - 5);
    }
    auto endsWith = [&](const std::string& tail) {
        return path.size() >= tail.size() && path.compare(path.size() - tail.size(), tail.size(), tail) == 0;
    };
    if (endsWith("_login.cgi") || endsWith("wfm2Login.cgi")) return "login";
    if (endsWith("_logout.cgi") || endsWith("wfm2Logout.cgi")) return "logout";
    if (endsWith("/upload.php")) return "upload.php";
    if (endsWith("/torvisrvPrepare.cgi") || endsWith("/torviPrepare.cgi")) return "identity";
    if (endsWith("/authLogin.cgi") && question != std::string::npos) {
        return target.substr(question + 1, target.find('=', question) - question - 1);
    }
    return question == std::string::npos ? "version" : "";
}

std::string withTarget(std::string head, const std::string& old, const std::string& target) {
    return old.empty() ? head : head.replace(head.find(old), old.size(), target);
}

}  // namespace

Connection::Connection(Faults& faults, int epoll, SocketEnd client, SocketEnd service)
    : faults_(faults), epoll_(epoll), client_(std::move(client)), service_(std::move(service)) {
    watch();
}

Connection::~Connection() {
    if (clientInterest_) ::epoll_ctl(epoll_, EPOLL_CTL_DEL, client_.fd(), nullptr);
    if (serviceInterest_) ::epoll_ctl(epoll_, EPOLL_CTL_DEL, service_.fd(), nullptr);
}

bool Connection::answersInstead() const {
    return isFault(FaultKind::Garbage) || isFault(FaultKind::HttpStatus) || isFault(FaultKind::Reply);
}

bool Connection::cutsUpload() const {
    return isFault(FaultKind::CutUpload) || isFault(FaultKind::ResetUpload) ||
           isFault(FaultKind::StallUpload);
}

void Connection::hit() {
    if (!faultTold_) {
        faultTold_ = true;
        faults_.hit(fault_->id);
        logLine(std::string("fault ") + faultName(fault_->kind) +
                " hit func=" + (func_.empty() ? "-" : func_));
    }
}

void Connection::end(Ending ending) {
    ending_ = ending;
    up_.clear();
}

bool Connection::pump(uint32_t clientEvents) {
    if (clientEvents & (EPOLLERR | EPOLLHUP)) {
        return false;
    }
    // Nobody waits any more for what is held back.
    if ((clientEvents & EPOLLRDHUP) && (replyStopped_ || readingStopped_)) {
        return false;
    }
    auto now = Clock::now();
    if (deadline_ && now >= *deadline_) {
        deadline_.reset();
        if (lingering_) {
            return false;
        }
        // A stall of limited length is over.
        if ((replyStopped_ || readingStopped_) && fault_) {
            fault_.reset();
            replyStopped_ = readingStopped_ = false;
            down_ += stalled_;
            stalled_.clear();
        }
    }
    more_ = true;
    for (int round = 0; more_ && round < kRoundsPerTurn; ++round) {
        bool moved = readClient();
        moved |= writeService();
        moved |= readService();
        moved |= writeClient();
        more_ = moved;
    }
    if (cutting() && up_.empty() && !serviceFinished_) {
        service_.finish();
        serviceFinished_ = true;
    }
    if (ending_ != Ending::None && down_.empty() && !cutting()) {
        if (ending_ == Ending::Reset) {
            client_.resetOnClose();
            return false;
        }
        if (isFault(FaultKind::CloseBeforeReply) || isFault(FaultKind::CloseInReply) || cutsUpload()) {
            // The end comes without the courtesies of TLS. A half close first, lest unread bytes make it a
            // reset.
            ::shutdown(client_.fd(), SHUT_WR);
        } else {
            client_.finish();
        }
        ending_ = Ending::None;
        serviceEnded_ = true;
        lingering_ = true;
        ::shutdown(service_.fd(), SHUT_RDWR);
        deadline_ = now + kLinger;
    }
    if (serviceEnded_ && down_.empty() && !lingering_ && !replyStopped_) {
        client_.finish();
        lingering_ = true;
        deadline_ = now + kLinger;
    }
    if (lingering_ && clientEnded_) {
        return false;
    }
    if (clientEnded_ && up_.empty() && !serviceFinished_ && !lingering_) {
        service_.finish();
        serviceFinished_ = true;
    }
    watch();
    return true;
}

bool Connection::readClient() {
    // Behind a cut the client's bytes stay where they are until the connection ends.
    if (clientEnded_ || cutting() || (readingStopped_ && !lingering_) || up_.size() >= kBuffer) {
        return false;
    }
    char data[16 * 1024];
    ssize_t n = client_.read(data, sizeof data);
    if (n == SocketEnd::kAgain) {
        return false;
    }
    if (n <= 0) {
        clientEnded_ = true;
        if (n == SocketEnd::kFailed) {
            // Gone for good: nothing can be delivered.
            down_.clear();
            up_.clear();
            lingering_ = true;
        }
        return true;
    }
    if (!lingering_ && ending_ == Ending::None) {
        takeRequest(data, static_cast<size_t>(n));
    }
    return true;
}

bool Connection::writeService() {
    if (up_.empty() || serviceEnded_) {
        return false;
    }
    ssize_t n = service_.write(up_.data(), up_.size());
    if (n == SocketEnd::kFailed) {
        up_.clear();
        return false;
    }
    if (n <= 0) {
        return false;
    }
    up_.erase(0, static_cast<size_t>(n));
    return true;
}

bool Connection::readService() {
    if (serviceEnded_ || replyStopped_ || (ending_ != Ending::None && !cutting()) ||
        down_.size() >= kBuffer) {
        return false;
    }
    char data[16 * 1024];
    ssize_t n = service_.read(data, sizeof data);
    if (n == SocketEnd::kAgain) {
        return false;
    }
    if (n <= 0) {
        serviceEnded_ = true;
        return true;
    }
    if (!cutting()) {
        takeReply(data, static_cast<size_t>(n));
    }
    return true;
}

bool Connection::writeClient() {
    if (down_.empty() || lingering_) {
        return false;
    }
    size_t allowed = down_.size();
    if (isFault(FaultKind::Trickle)) {
        auto now = Clock::now();
        if (now < nextDrop_) {
            return false;
        }
        allowed = std::min(allowed, static_cast<size_t>(fault_->bytes));
        nextDrop_ = now + std::chrono::milliseconds(fault_->ms);
        deadline_ = nextDrop_;
        hit();
    }
    ssize_t n = client_.write(down_.data(), allowed);
    if (n == SocketEnd::kAgain) {
        return false;
    }
    if (n < 0) {
        down_.clear();
        clientEnded_ = true;
        lingering_ = true;
        return true;
    }
    down_.erase(0, static_cast<size_t>(n));
    return true;
}

// Interest in nothing means out of the set: a hang-up is reported even unasked, again and again.
void Connection::watch() {
    uint32_t client = 0;
    bool held = readingStopped_ || replyStopped_;
    if (!clientEnded_) {
        client |= EPOLLRDHUP;
        if (up_.size() < kBuffer && !readingStopped_ && !cutting()) client |= EPOLLIN;
        if (lingering_) client |= EPOLLIN;
        if (client_.wantsWrite()) client |= EPOLLOUT;
    }
    if (!down_.empty() && !lingering_ && !(isFault(FaultKind::Trickle) && Clock::now() < nextDrop_)) {
        client |= EPOLLOUT;
    }
    if (!held && !(client & EPOLLIN)) {
        client &= ~static_cast<uint32_t>(EPOLLRDHUP);
    }
    uint32_t service = 0;
    if (!serviceEnded_) {
        if (down_.size() < kBuffer && !replyStopped_ && (ending_ == Ending::None || cutting())) {
            service |= EPOLLIN;
        }
        if (!up_.empty()) service |= EPOLLOUT;
    }
    auto update = [this](int fd, uint32_t& old, uint32_t wanted, uint64_t mark) {
        if (old == wanted) {
            return;
        }
        epoll_event event{};
        event.events = wanted;
        event.data.u64 = reinterpret_cast<uint64_t>(this) | mark;
        ::epoll_ctl(epoll_, !wanted ? EPOLL_CTL_DEL : old ? EPOLL_CTL_MOD : EPOLL_CTL_ADD, fd, &event);
        old = wanted;
    };
    update(client_.fd(), clientInterest_, client, kClientMark);
    update(service_.fd(), serviceInterest_, service, 0);
}

void Connection::takeRequest(const char* data, size_t length) {
    while (length > 0 && ending_ == Ending::None && !lingering_) {
        if (requestStage_ == RequestStage::Opaque) {
            up_.append(data, length);
            return;
        }
        if (requestStage_ == RequestStage::Body) {
            auto now = static_cast<size_t>(std::min<int64_t>(requestLeft_, static_cast<int64_t>(length)));
            takeRequestBody(data, now);
            data += now;
            length -= now;
            continue;
        }
        size_t before = requestHead_.size();
        requestHead_.append(data, length);
        size_t end = requestHead_.find(kHeadEnd, before < 3 ? 0 : before - 3);
        if (end == std::string::npos) {
            if (requestHead_.size() > kLongestHead) {
                // Not for us to judge; the service will.
                up_ += requestHead_;
                requestHead_.clear();
                requestStage_ = RequestStage::Opaque;
            }
            return;
        }
        size_t used = end + 4 - before;
        std::string head = requestHead_.substr(0, end + 4);
        requestHead_.clear();
        data += used;
        length -= used;
        beginRequest(head);
    }
}

void Connection::beginRequest(const std::string& head) {
    size_t first = head.find(' ');
    size_t second = first == std::string::npos ? first : head.find(' ', first + 1);
    std::string target = second == std::string::npos ? "" : head.substr(first + 1, second - first - 1);
    func_ = funcOf(target);
    fault_.reset();
    faultTold_ = false;
    requestSeen_ = 0;
    replyStage_ = ReplyStage::Head;
    replyHead_.clear();
    replyPassed_ = 0;
    replyLeft_ = -1;
    std::string path = target.substr(0, target.find('?'));
    if (path.rfind("/control/", 0) != 0) {
        fault_ = faults_.matchRelayed(func_, path);
    }
    if (!answersInstead()) {
        up_ += withTarget(head, target, hideQuestionMarks(target));
    }
    if (headerValue(head, "Transfer-Encoding")) {
        requestStage_ = RequestStage::Opaque;
        return;
    }
    requestLeft_ = std::max(0LL, std::atoll(headerValue(head, "Content-Length").value_or("0").c_str()));
    requestStage_ = RequestStage::Body;
    if (answersInstead() && headerValue(head, "Expect") && requestLeft_ > 0) {
        down_ += "HTTP/1.1 100 Continue\r\n\r\n";
    }
    if (requestLeft_ == 0) {
        endRequest();
    } else if (cutsUpload() && fault_->bytes == 0) {
        takeRequestBody(nullptr, 0);
    }
}

void Connection::takeRequestBody(const char* data, size_t length) {
    if (cutsUpload() && requestSeen_ + static_cast<int64_t>(length) >= fault_->bytes && !faultTold_) {
        hit();
        if (isFault(FaultKind::StallUpload)) {
            // What was read already goes on: the stall keeps the rest with the client.
            readingStopped_ = true;
            if (fault_->ms > 0) {
                deadline_ = Clock::now() + std::chrono::milliseconds(fault_->ms);
            }
        } else {
            // The bytes before the cut still reach the service.
            up_.append(data, static_cast<size_t>(fault_->bytes - requestSeen_));
            ending_ = isFault(FaultKind::ResetUpload) ? Ending::Reset : Ending::Close;
            return;
        }
    }
    requestSeen_ += static_cast<int64_t>(length);
    requestLeft_ -= static_cast<int64_t>(length);
    if (!answersInstead() && length > 0) {
        up_.append(data, length);
    }
    if (requestLeft_ == 0) {
        endRequest();
    }
}

void Connection::endRequest() {
    requestStage_ = RequestStage::Head;
    if (!answersInstead()) {
        return;
    }
    hit();
    std::string head = "HTTP/1.1 " + std::to_string(fault_->status) + " Fault\r\nConnection: close\r\n";
    if (!fault_->location.empty()) {
        head += "Location: " + fault_->location + "\r\n";
    }
    head += "Content-Type: " + fault_->contentType +
            "\r\nContent-Length: " + std::to_string(fault_->content.size()) + kHeadEnd;
    down_ += head + fault_->content;
    end(Ending::Close);
}

void Connection::takeReply(const char* data, size_t length) {
    if (!fault_) {
        down_.append(data, length);
        return;
    }
    if (replyStage_ == ReplyStage::Body) {
        passReply(data, length, false);
        return;
    }
    replyHead_.append(data, length);
    takeReplyHead();
}

void Connection::takeReplyHead() {
    size_t end = replyHead_.find(kHeadEnd);
    if (end == std::string::npos) {
        return;
    }
    std::string head = replyHead_.substr(0, end + 4);
    std::string rest = replyHead_.substr(end + 4);
    replyHead_.clear();
    if (head.compare(0, 12, "HTTP/1.1 100") == 0) {
        down_ += head;
        replyHead_ = rest;
        takeReplyHead();
        return;
    }
    replyStage_ = ReplyStage::Body;
    if (isFault(FaultKind::WrongLength)) {
        head = lengthChanged(head);
    }
    passReply(head.data(), head.size(), true);
    passReply(rest.data(), rest.size(), false);
}

std::string Connection::lengthChanged(const std::string& head) {
    size_t at = 0;
    std::optional<std::string> length = headerValue(head, "Content-Length", &at);
    if (!length) {
        return head;
    }
    hit();
    replyLeft_ = std::atoll(length->c_str());
    std::string changed = head;
    changed.replace(at, length->size(), std::to_string(std::max<int64_t>(0, replyLeft_ + fault_->bytes)));
    if (replyLeft_ == 0) {
        end(Ending::Close);
    }
    return changed;
}

void Connection::passReply(const char* data, size_t length, bool head) {
    if (isFault(FaultKind::WrongLength) && replyLeft_ >= 0 && !head) {
        auto now = std::min<int64_t>(replyLeft_, static_cast<int64_t>(length));
        down_.append(data, static_cast<size_t>(now));
        replyLeft_ -= now;
        if (replyLeft_ == 0) {
            // The connection ends where the reply really does.
            end(Ending::Close);
        }
        return;
    }
    bool stops = isFault(FaultKind::CloseBeforeReply) || isFault(FaultKind::CloseInReply) ||
                 isFault(FaultKind::Reset) || isFault(FaultKind::Stall);
    if (replyStopped_) {
        stalled_.append(data, length);
        return;
    }
    if (!stops || (head && fault_->body)) {
        down_.append(data, length);
        return;
    }
    int64_t limit = isFault(FaultKind::CloseBeforeReply) ? 0 : fault_->bytes;
    auto now = std::min<int64_t>(limit - replyPassed_, static_cast<int64_t>(length));
    down_.append(data, static_cast<size_t>(now));
    replyPassed_ += now;
    if (replyPassed_ < limit || ending_ != Ending::None) {
        return;
    }
    hit();
    if (isFault(FaultKind::Stall)) {
        replyStopped_ = true;
        // What a stall of limited length holds back comes after it.
        stalled_.append(data + now, length - static_cast<size_t>(now));
        if (fault_->ms > 0) {
            deadline_ = Clock::now() + std::chrono::milliseconds(fault_->ms);
        }
    } else {
        end(isFault(FaultKind::Reset) ? Ending::Reset : Ending::Close);
    }
}

}  // namespace nas
