#include "change_log.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "disk.h"
#include "json_text.h"

namespace nas {

namespace {

const char* const kFile = ".torvi-nas.changes";
const char* const kNewFile = ".torvi-nas.changes.new";

// Not in the tree that users see.
bool aside(const std::string& place) {
    // homes/<user>/<own folder>
    const size_t user = place.rfind("homes/", 0) == 0 ? place.find('/', 6) : std::string::npos;
    if (user == std::string::npos) {
        return false;
    }
    const std::string below = place.substr(user + 1);
    return liesBelow(below, kRecycle) || liesBelow(below, kVersions);
}

std::string lineOf(const Change& change) {
    const nlohmann::json json = {{"id", change.id},
                                 {"action", static_cast<int>(change.action)},
                                 {"folder", change.isFolder},
                                 {"place", change.place},
                                 {"former", change.former},
                                 {"user", change.author.user},
                                 {"device", change.author.device}};
    return dumped(json) + "\n";
}

Change changeOf(const nlohmann::json& json) {
    Change change;
    change.id = json.at("id").get<int64_t>();
    change.action = static_cast<Action>(json.at("action").get<int>());
    change.isFolder = json.at("folder").get<bool>();
    change.place = json.at("place").get<std::string>();
    change.former = json.at("former").get<std::string>();
    change.author = {json.at("user").get<std::string>(), json.at("device").get<std::string>()};
    return change;
}

std::string readAll(int fd) {
    std::string text;
    std::vector<char> piece(64 * 1024);
    for (ssize_t n = 0; (n = ::read(fd, piece.data(), piece.size())) > 0;) {
        text.append(piece.data(), static_cast<size_t>(n));
    }
    return text;
}

}  // namespace

Author authorOf(const Request& request) {
    return {request.userName, request.device};
}

std::string placeOf(const Folder& folder, const std::string& name) {
    std::string place = folder.share;
    const auto add = [&](const std::string& step) {
        if (!step.empty()) {
            place += (place.empty() ? "" : "/") + step;
        }
    };
    add(folder.home);
    for (const std::string& step : folder.below) {
        add(step);
    }
    add(name);
    return place;
}

bool liesBelow(const std::string& place, const std::string& folder) {
    return place.rfind(folder, 0) == 0 &&
           (folder.empty() || place.size() == folder.size() || place[folder.size()] == '/');
}

ChangeLog::ChangeLog(const std::string& root, size_t kept) : kept_(kept) {
    folder_.reset(::open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    load();
}

void ChangeLog::load() {
    Fd old(::openat(folder_.get(), kFile, O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    const std::string text = old ? readAll(old.get()) : std::string();
    for (size_t from = 0; from < text.size();) {
        const size_t to = std::min(text.find('\n', from), text.size());
        try {
            changes_.push_back(changeOf(nlohmann::json::parse(text.substr(from, to - from))));
            last_ = changes_.back().id;
        } catch (const nlohmann::json::exception&) {
            // The last line of a server that was killed.
        }
        from = to + 1;
    }
    while (changes_.size() > kept_) {
        changes_.pop_front();
    }
    rewrite();
}

void ChangeLog::rewrite() {
    file_.reset(::openat(folder_.get(), kNewFile,
                         O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file_) {
        throw std::runtime_error(std::string("cannot keep the log of changes: ") + std::strerror(errno));
    }
    lines_ = 0;
    for (const Change& change : changes_) {
        append(change);
    }
    if (::renameat(folder_.get(), kNewFile, folder_.get(), kFile) != 0) {
        throw std::runtime_error(std::string("cannot keep the log of changes: ") + std::strerror(errno));
    }
}

void ChangeLog::append(const Change& change) {
    const std::string line = lineOf(change);
    writeAll(file_.get(), line.data(), line.size());
    ++lines_;
}

void ChangeLog::add(Change change) {
    if (!change.former.empty() && aside(change.former)) {
        change.former.clear();
        change.action = Action::Made;
    }
    if (aside(change.place)) {
        if (change.former.empty()) {
            return;
        }
        change.place = std::move(change.former);
        change.former.clear();
        change.action = Action::Deleted;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    change.id = ++last_;
    append(change);
    changes_.push_back(std::move(change));
    if (changes_.size() > kept_) {
        changes_.pop_front();
    }
    if (lines_ > 2 * kept_) {
        rewrite();
    }
}

void ChangeLog::eachDown(const std::function<bool(const Change&)>& visit) const {
    std::lock_guard<std::mutex> lock(mutex_);
    for (auto it = changes_.rbegin(); it != changes_.rend() && visit(*it); ++it) {
    }
}

void ChangeLog::eachFrom(int64_t lowest, const std::function<bool(const Change&)>& visit) const {
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = std::lower_bound(changes_.begin(), changes_.end(), lowest,
                               [](const Change& change, int64_t id) { return change.id < id; });
    for (; it != changes_.end() && visit(*it); ++it) {
    }
}

int64_t ChangeLog::newest() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return last_;
}

size_t ChangeLog::count() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return changes_.size();
}

}  // namespace nas
