#include "request_reader.h"

#include <sys/socket.h>

#include <algorithm>

#include "nas/status.h"

namespace cloud {

namespace {

constexpr size_t kLongestHead = size_t{64} * 1024;
constexpr size_t kLongestBody = size_t{1024} * 1024;
constexpr size_t kLongestCheck = 60;  // twenty bytes, each replaced by three
const std::string kLineEnd = "\r\n";
const std::string kHeadEnd = "\r\n\r\n";
const std::string kCheck = kLineEnd + "X-VEXA-CHECK: ";
const std::string kBehindCheck = kLineEnd + "X-VEXA-TIME: ";

// A checksum may end with a line end, and then the head isn't over behind it.
bool endsInsideCheck(const std::string& head) {
    const size_t check = head.find(kCheck);
    return check != std::string::npos && head.find(kBehindCheck) == std::string::npos &&
           head.size() - check - kCheck.size() <= kLongestCheck &&
           head.find(kLineEnd + "X-VEXA-", check + kCheck.size()) == std::string::npos;
}

void takeRequestLine(const std::string& line, HttpRequest& request) {
    const size_t first = line.find(' ');
    const size_t second = first == std::string::npos ? first : line.find(' ', first + 1);
    if (second == std::string::npos || line.substr(second + 1) != "HTTP/1.1") {
        throw nas::Refusal("not a request line of HTTP/1.1");
    }
    request.method = line.substr(0, first);
    const std::string target = line.substr(first + 1, second - first - 1);
    const size_t question = target.find('?');
    request.path = target.substr(0, question);
    request.hasQuery = question != std::string::npos;
    request.query = request.hasQuery ? target.substr(question + 1) : "";
}

void takeHeaders(const std::string& lines, HttpRequest& request) {
    for (size_t from = 0; from < lines.size();) {
        const size_t to = std::min(lines.find(kLineEnd, from), lines.size());
        const std::string line = lines.substr(from, to - from);
        const size_t colon = line.find(':');
        if (colon == std::string::npos || colon == 0) {
            throw nas::Refusal("a header line without a name");
        }
        const size_t value = std::min(line.find_first_not_of(" \t", colon + 1), line.size());
        request.headers.emplace_back(line.substr(0, colon), line.substr(value));
        from = to + kLineEnd.size();
    }
}

// The checksum's bytes are any, line ends and blanks among them: it goes on to the header that follows it.
void takeHead(const std::string& head, HttpRequest& request) {
    const size_t lineEnd = std::min(head.find(kLineEnd), head.size());
    takeRequestLine(head.substr(0, lineEnd), request);
    const std::string headers = head.substr(lineEnd);
    const size_t from = headers.find(kCheck);
    const size_t to = from == std::string::npos ? from : headers.find(kBehindCheck, from + kCheck.size());
    auto lines = [&](size_t begin, size_t end) {
        begin += kLineEnd.size();
        return begin < end ? headers.substr(begin, end - begin) : "";
    };
    if (to == std::string::npos) {
        takeHeaders(lines(0, headers.size()), request);
        return;
    }
    takeHeaders(lines(0, from), request);
    request.headers.emplace_back("X-VEXA-CHECK",
                                 headers.substr(from + kCheck.size(), to - from - kCheck.size()));
    takeHeaders(lines(to, headers.size()), request);
}

}  // namespace

bool RequestReader::more() {
    char piece[16 * 1024];
    const ssize_t n = ::recv(socket_, piece, sizeof piece, 0);
    if (n > 0) {
        buffer_.append(piece, static_cast<size_t>(n));
    }
    ended_ = n <= 0;
    return !ended_;
}

// A head that is open to doubt counts as whole where nothing follows.
size_t RequestReader::headEnd() const {
    size_t end = buffer_.find(kHeadEnd);
    while (end != std::string::npos && !ended_ && endsInsideCheck(buffer_.substr(0, end))) {
        end = buffer_.find(kHeadEnd, end + 1);
    }
    return end;
}

void RequestReader::readBody(HttpRequest& request) {
    if (!request.header("Transfer-Encoding").empty()) {
        throw nas::Refusal("a body of unknown length", 411);
    }
    const std::string text = request.header("Content-Length");
    if (text.empty()) {
        return;
    }
    if (text.find_first_not_of("0123456789") != std::string::npos) {
        throw nas::Refusal("header Content-Length is \"" + text + "\"");
    }
    if (text.size() > 9 || std::stoul(text) > kLongestBody) {
        throw nas::Refusal("a body of " + text + " bytes", 413);
    }
    const size_t length = std::stoul(text);
    while (buffer_.size() < length) {
        if (!more()) {
            throw nas::Refusal("the body broke off");
        }
    }
    request.body = buffer_.substr(0, length);
    buffer_.erase(0, length);
}

bool RequestReader::next(HttpRequest& request) {
    size_t end = 0;
    while ((end = headEnd()) == std::string::npos) {
        if (buffer_.size() > kLongestHead) {
            throw nas::Refusal("a head without an end", 431);
        }
        if (ended_) {
            return false;
        }
        more();
    }
    const std::string head = buffer_.substr(0, end);
    buffer_.erase(0, end + kHeadEnd.size());
    takeHead(head, request);
    readBody(request);
    return true;
}

}  // namespace cloud
