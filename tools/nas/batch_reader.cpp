#include "batch_reader.h"

#include "multipart.h"
#include "status.h"

namespace nas {

namespace {

constexpr size_t kLongestHead = 16 * 1024;
const char* const kFieldHead = "Content-Disposition: form-data; name=\"";
const char* const kFileHead = "Content-Disposition: form-data; name=\"files[]\"; filename=\"";
const char* const kFileType =
    "\"\r\nContent-Type: application/octet-stream\r\nContent-Transfer-Encoding: binary";

}  // namespace

BatchReader::BatchReader(const std::string& contentType, Sink sink)
    : boundary_(boundaryOf(contentType)), sink_(std::move(sink)) {}

void BatchReader::feed(const char* data, size_t length) {
    pending_.append(data, length);
    while (step()) {
    }
    if (stage_ == Stage::End && !pending_.empty()) {
        throw Refusal("bytes after the closing delimiter of the multipart body");
    }
}

// False when more must come first.
bool BatchReader::step() {
    const std::string delimiter = "\r\n--" + boundary_;
    if (stage_ == Stage::End) {
        return false;
    }
    if (stage_ == Stage::Delimiter) {
        // The first delimiter stands at the beginning; behind the later ones the body may end.
        const std::string more = first_ ? delimiter.substr(2) + "\r\n" : "\r\n";
        const std::string last = first_ ? more : "--";
        if (pending_.size() < more.size()) {
            return false;
        }
        const bool ends = pending_.compare(0, more.size(), more) != 0;
        if (ends && pending_.compare(0, last.size(), last) != 0) {
            throw Refusal("multipart body has no part or end at " + excerpt(pending_));
        }
        if (ends && (files_ == 0 || files_ != folders_.size())) {
            throw Refusal("multipart body ends where " + due() + " is due");
        }
        pending_.erase(0, more.size());
        stage_ = ends ? Stage::End : Stage::Head;
        first_ = false;
        return true;
    }
    if (stage_ == Stage::Head) {
        const size_t end = pending_.find("\r\n\r\n");
        if (end == std::string::npos) {
            if (pending_.size() > kLongestHead) {
                throw Refusal("head of a multipart part doesn't end");
            }
            return false;
        }
        const std::string head = pending_.substr(0, end);
        pending_.erase(0, end + 4);
        readHead(head);
        return true;
    }
    bool found = false;
    const size_t sure = sureData(pending_, delimiter, found);
    if (stage_ == Stage::Field) {
        if (!found) {
            if (pending_.size() > kLongestHead) {
                throw Refusal("field \"" + key_ + "\" doesn't end");
            }
            return false;
        }
        takeField(pending_.substr(0, sure));
    } else if (sure > 0) {
        sink_.data(pending_.data(), sure);
    }
    if (stage_ == Stage::File && found) {
        sink_.end();
    }
    pending_.erase(0, found ? sure + delimiter.size() : sure);
    stage_ = found ? Stage::Delimiter : stage_;
    return found;
}

void BatchReader::readHead(const std::string& head) {
    const std::string fileHead = kFileHead;
    const std::string fileType = kFileType;
    if (head.compare(0, fileHead.size(), fileHead) == 0) {
        if (times_.empty() || times_.size() != folders_.size() || files_ == folders_.size()) {
            throw Refusal("a file where " + due() + " is due");
        }
        if (head.size() < fileHead.size() + fileType.size() ||
            head.compare(head.size() - fileType.size(), fileType.size(), fileType) != 0) {
            throw Refusal("head of a part \"files[]\" isn't the protocol's: " + excerpt(head));
        }
        const std::string name =
            head.substr(fileHead.size(), head.size() - fileHead.size() - fileType.size());
        requirePlain("files[]", name);
        ++files_;
        stage_ = Stage::File;
        sink_.begin(name);
        return;
    }
    for (const char* key : {"sid", "dest_path[]", "mtime[]"}) {
        if (head != kFieldHead + std::string(key) + "\"") {
            continue;
        }
        key_ = key;
        const bool inPlace = key_ == "sid"           ? sid_.empty() && folders_.empty()
                             : key_ == "dest_path[]" ? !sid_.empty() && times_.empty() && files_ == 0
                                                     : times_.size() < folders_.size() && files_ == 0;
        if (!inPlace) {
            throw Refusal("field \"" + key_ + "\" where " + due() + " is due");
        }
        stage_ = Stage::Field;
        return;
    }
    throw Refusal("no part of the protocol: " + excerpt(head));
}

void BatchReader::takeField(const std::string& value) {
    requirePlain(key_, value);
    if (value.empty()) {
        throw Refusal("field \"" + key_ + "\" is empty");
    }
    if (key_ == "sid") {
        sid_ = value;
    } else {
        (key_ == "mtime[]" ? times_ : folders_).push_back(value);
    }
}

std::string BatchReader::due() const {
    if (sid_.empty()) return "the field \"sid\"";
    if (folders_.empty()) return "a field \"dest_path[]\"";
    if (times_.size() < folders_.size()) return "a field \"mtime[]\"";
    return files_ < folders_.size() ? "a part \"files[]\"" : "the end";
}

void BatchReader::finish() const {
    if (stage_ != Stage::End) {
        throw Refusal("multipart body ends where " + due() + " is due or goes on");
    }
}

}  // namespace nas
