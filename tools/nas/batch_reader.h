#pragma once

#include <functional>
#include <string>
#include <vector>

namespace nas {

// Reads the multipart body of a batch, in pieces of any size: "sid", the folders, the times, then as many
// files, and nothing after them.
class BatchReader {
public:
    struct Sink {
        // The folders and times are complete by now.
        std::function<void(const std::string& name)> begin;
        std::function<void(const char* data, size_t length)> data;
        std::function<void()> end;
    };

    BatchReader(const std::string& contentType, Sink sink);

    void feed(const char* data, size_t length);
    // The body has ended: it must have been whole.
    void finish() const;

    const std::string& sid() const { return sid_; }
    const std::vector<std::string>& folders() const { return folders_; }
    const std::vector<std::string>& times() const { return times_; }

private:
    enum class Stage { Delimiter, Head, Field, File, End };

    bool step();
    void readHead(const std::string& head);
    void takeField(const std::string& value);
    std::string due() const;

    std::string boundary_;
    Sink sink_;
    Stage stage_ = Stage::Delimiter;
    bool first_ = true;
    std::string pending_;
    std::string key_;
    std::string sid_;
    std::vector<std::string> folders_;
    std::vector<std::string> times_;
    size_t files_ = 0;
};

}  // namespace nas
