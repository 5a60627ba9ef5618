#pragma once

#include <functional>
#include <string>

namespace nas {

// Reads the one multipart body that the protocol knows, in pieces of any size, and refuses every other:
// "Filename", then "Filedata" with the bytes, then the closing field with "Submit Query", and nothing after
// it.
class MultipartReader {
public:
    struct Sink {
        std::function<void(const std::string& name, bool hasFile)> begin;
        std::function<void(const char* data, size_t length)> data;
    };

    // contentType is the request's header; closing is the name of the last field.
    MultipartReader(const std::string& contentType, std::string closing, Sink sink);

    void feed(const char* data, size_t length);
    // The body has ended: it must have been whole.
    void finish();

private:
    enum class Stage { Head, File, Tail };

    void readHead();
    void readFile();
    void checkTail(bool whole) const;

    std::string boundary_;
    std::string closing_;
    Sink sink_;
    Stage stage_ = Stage::Head;
    std::string pending_;
    std::string expectedTail_;
};

}  // namespace nas
