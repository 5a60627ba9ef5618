#include "multipart.h"

#include <algorithm>

#include "status.h"
#include "wire_text.h"

namespace nas {

namespace {

constexpr size_t kLongestHead = 16 * 1024;
const char* const kCrlf = "\r\n";
const char* const kTypePrefix = "multipart/form-data; boundary=";
const char* const kBoundaryPrefix = "__-----------------------";
const char* const kNamePart = "Content-Disposition: form-data; name=\"Filename\"\r\n\r\n";
const char* const kFilePart = "Content-Disposition: form-data; name=\"Filedata\"; filename=\"";
const char* const kFileType = "\"\r\nContent-Type: application/octet-stream\r\n\r\n";

bool cutPrefix(std::string& text, const std::string& prefix) {
    if (text.compare(0, prefix.size(), prefix) != 0) {
        return false;
    }
    text.erase(0, prefix.size());
    return true;
}

}  // namespace

std::string boundaryOf(const std::string& contentType) {
    std::string boundary = contentType;
    if (!cutPrefix(boundary, kTypePrefix)) {
        throw Refusal("Content-Type is " + excerpt(contentType) + ", not a multipart form with a boundary");
    }
    std::string number = boundary;
    if (!cutPrefix(number, kBoundaryPrefix) || number.empty() ||
        !std::all_of(number.begin(), number.end(), [](char c) { return c >= '0' && c <= '9'; })) {
        throw Refusal("boundary is not the protocol's: " + excerpt(boundary));
    }
    return boundary;
}

size_t sureData(const std::string& pending, const std::string& delimiter, bool& found) {
    const size_t end = pending.find(delimiter);
    found = end != std::string::npos;
    if (found) {
        return end;
    }
    // Held back is only what may be the delimiter's beginning: a body that breaks off loses nothing else.
    const size_t size = pending.size();
    size_t at = pending.find('\r', size < delimiter.size() ? 0 : size - delimiter.size() + 1);
    while (at != std::string::npos && delimiter.compare(0, size - at, pending, at, size - at) != 0) {
        at = pending.find('\r', at + 1);
    }
    return std::min(at, size);
}

std::string excerpt(const std::string& text) {
    return "\"" + text.substr(0, 90) + "\"";
}

void requirePlain(const std::string& what, const std::string& name) {
    if (!validUtf8(name) || name.find('\0') != std::string::npos) {
        throw Refusal("\"" + what + "\" is not plain UTF-8");
    }
}

MultipartReader::MultipartReader(const std::string& contentType, std::string closing, Sink sink)
    : boundary_(boundaryOf(contentType)), closing_(std::move(closing)), sink_(std::move(sink)) {
    expectedTail_ = std::string(kCrlf) + "Content-Disposition: form-data; name=\"" + closing_ +
                    "\"\r\n\r\nSubmit Query\r\n--" + boundary_ + "--";
}

void MultipartReader::feed(const char* data, size_t length) {
    pending_.append(data, length);
    if (stage_ == Stage::Head) {
        readHead();
    }
    if (stage_ == Stage::File) {
        readFile();
    }
    if (stage_ == Stage::Tail) {
        checkTail(false);
    }
}

void MultipartReader::readHead() {
    const std::string delimiter = "--" + boundary_ + kCrlf;
    const std::string first = delimiter + kNamePart;
    size_t common = std::min(first.size(), pending_.size());
    if (pending_.compare(0, common, first, 0, common) != 0) {
        throw Refusal("multipart body doesn't begin with the part \"Filename\": " + excerpt(pending_));
    }
    size_t nameEnd = pending_.find(kCrlf + delimiter, first.size());
    size_t next = nameEnd == std::string::npos ? nameEnd : nameEnd + 2 + delimiter.size();
    size_t headEnd = next == std::string::npos ? next : pending_.find("\r\n\r\n", next);
    if (headEnd == std::string::npos) {
        if (pending_.size() > kLongestHead) {
            throw Refusal("head of the multipart body doesn't end");
        }
        return;
    }
    const std::string name = pending_.substr(first.size(), nameEnd - first.size());
    requirePlain("Filename", name);
    std::string part = pending_.substr(next, headEnd + 4 - next);
    // Without a file part the closing field follows at once. A folder as the target of a new file does that.
    if (name.empty() && part.compare(0, expectedTail_.size() - 2, expectedTail_, 2, part.size()) == 0) {
        pending_.erase(0, next - 2);
        stage_ = Stage::Tail;
        sink_.begin(name, false);
        return;
    }
    if (!cutPrefix(part, kFilePart)) {
        throw Refusal("second part isn't \"Filedata\": " + excerpt(part));
    }
    const std::string type = kFileType;
    if (part.size() < type.size() || part.compare(part.size() - type.size(), type.size(), type) != 0) {
        throw Refusal("head of the part \"Filedata\" isn't the protocol's: " + excerpt(part));
    }
    const std::string fileName = part.substr(0, part.size() - type.size());
    if (!name.empty() && fileName != name) {
        throw Refusal("\"Filename\" is " + excerpt(name) + " but the file part says " + excerpt(fileName));
    }
    pending_.erase(0, headEnd + 4);
    stage_ = Stage::File;
    sink_.begin(name, true);
}

void MultipartReader::readFile() {
    const std::string delimiter = kCrlf + ("--" + boundary_);
    bool found = false;
    const size_t sure = sureData(pending_, delimiter, found);
    if (sure > 0) {
        sink_.data(pending_.data(), sure);
    }
    pending_.erase(0, found ? sure + delimiter.size() : sure);
    if (found) {
        stage_ = Stage::Tail;
    }
}

void MultipartReader::checkTail(bool whole) const {
    size_t common = std::min(pending_.size(), expectedTail_.size());
    if (pending_.compare(0, common, expectedTail_, 0, common) != 0) {
        throw Refusal("body doesn't close with the field \"" + closing_ + "\": " + excerpt(pending_));
    }
    if (pending_.size() > expectedTail_.size()) {
        throw Refusal("bytes after the closing delimiter of the multipart body");
    }
    if (whole && pending_.size() < expectedTail_.size()) {
        throw Refusal("multipart body ends inside its closing field");
    }
}

void MultipartReader::finish() {
    if (stage_ != Stage::Tail) {
        throw Refusal("multipart body ends inside the part \"" +
                      std::string(stage_ == Stage::Head ? "Filename" : "Filedata") + "\"");
    }
    checkTail(true);
}

}  // namespace nas
