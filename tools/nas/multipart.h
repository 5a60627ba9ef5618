#pragma once

#include <functional>
#include <string>

namespace nas {

// The boundary that a Content-Type names, or a refusal.
std::string boundaryOf(const std::string& contentType);
// How much of what is pending is data for sure: not the delimiter, nor what may be its beginning. `found`
// tells whether the delimiter follows.
size_t sureData(const std::string& pending, const std::string& delimiter, bool& found);
// The beginning of a text, for a message.
std::string excerpt(const std::string& text);
// Refuses a name that isn't plain UTF-8.
void requirePlain(const std::string& what, const std::string& name);

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
