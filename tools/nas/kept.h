#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>

#include "fd.h"

namespace nas {

// Where something of that name is kept: in a file of the root, or of the folder that the nodes of a cluster
// share, so that each of them knows what the others' users do.
std::string keptAt(const std::string& root, const std::string& sessionFolder, const std::string& nas,
                   const std::string& name);

// The file of a value. An empty path is a file that never was.
class KeptFile {
public:
    explicit KeptFile(std::string path) : path_(std::move(path)) {}

    // Keeps other processes from changing it.
    Fd lock() const;
    // What tells one content from another; empty without a file.
    std::string stamp() const;
    nlohmann::json read() const;
    // In one step.
    void replace(const std::string& text) const;

private:
    std::string path_;
};

// A value that outlives the server, and that several servers may have in common.
template <typename Value>
class Kept {
public:
    // Empty, kept nowhere and not to be changed.
    Kept() : Kept("") {}
    explicit Kept(std::string path) : file_(std::move(path)) {}

    // As it is now; it stays so for whoever holds it.
    std::shared_ptr<const Value> read() const {
        std::lock_guard<std::mutex> lock(mutex_);
        return load();
    }

    // One change at a time, on all nodes. Nothing changes if it throws.
    void change(const std::function<void(Value&)>& act) {
        std::lock_guard<std::mutex> lock(mutex_);
        const Fd others = file_.lock();
        // Read anew: two values may look alike from outside, and what another node wrote must not be lost.
        stamp_ = "unread";
        Value value = *load();
        act(value);
        file_.replace(nlohmann::json(value).dump());
        value_ = std::make_shared<Value>(std::move(value));
        stamp_ = file_.stamp();
    }

private:
    std::shared_ptr<const Value> load() const {
        // Taken before the file is read: what is put in its place meanwhile is read the next time.
        const std::string now = file_.stamp();
        if (now != stamp_) {
            value_ = now.empty() ? std::make_shared<Value>()
                                 : std::make_shared<Value>(file_.read().template get<Value>());
            stamp_ = now;
        }
        return value_;
    }

    KeptFile file_;
    mutable std::mutex mutex_;
    mutable std::shared_ptr<const Value> value_ = std::make_shared<Value>();
    mutable std::string stamp_;
};

}  // namespace nas
