#pragma once

#include <openssl/ssl.h>
#include <sys/types.h>

#include <cstddef>
#include <memory>

#include "fd.h"

namespace nas {

// One non-blocking socket, with or without TLS.
class SocketEnd {
public:
    static constexpr ssize_t kAgain = -1;
    static constexpr ssize_t kFailed = -2;

    SocketEnd(Fd fd, SSL_CTX* tls);
    SocketEnd(SocketEnd&&) = default;
    ~SocketEnd();

    int fd() const { return fd_.get(); }
    // Bytes moved; 0 is the end of the stream.
    ssize_t read(char* data, size_t length);
    ssize_t write(const char* data, size_t length);
    // TLS may have to write before it can read.
    bool wantsWrite() const { return wantsWrite_; }
    // No more bytes will be sent.
    void finish();
    // The peer sees a reset in place of an end.
    void resetOnClose();

private:
    ssize_t outcome(int result);

    Fd fd_;
    struct SslFree {
        void operator()(SSL* ssl) const { SSL_free(ssl); }
    };
    std::unique_ptr<SSL, SslFree> ssl_;
    bool wantsWrite_ = false;
};

}  // namespace nas
