#pragma once

#include <string>

#include "nas/wire_text.h"

namespace cloud {

struct HttpRequest {
    std::string method;
    std::string path;
    std::string query;
    bool hasQuery = false;
    nas::Fields headers;  // in the order in which they came
    std::string body;

    // The first header of that name, in whatever case; empty without one.
    std::string header(const std::string& name) const;
};

struct HttpReply {
    int status = 200;
    std::string body;  // JSON
};

}  // namespace cloud
