#pragma once

#include <string>

#include "http_request.h"

namespace cloud {

// One connection's bytes, request by request. It keeps headers in their order, which is part of the protocol,
// and a checksum whatever bytes it holds.
class RequestReader {
public:
    explicit RequestReader(int socket) : socket_(socket) {}

    // False at the end of the connection; Refusal for what HTTP doesn't know.
    bool next(HttpRequest& request);

private:
    bool more();
    size_t headEnd() const;
    void readBody(HttpRequest& request);

    const int socket_;
    std::string buffer_;
    bool ended_ = false;
};

}  // namespace cloud
