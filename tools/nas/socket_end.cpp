#include "socket_end.h"

#include <openssl/err.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <climits>

namespace nas {

SocketEnd::SocketEnd(Fd fd, SSL_CTX* tls) : fd_(std::move(fd)) {
    if (tls) {
        ssl_.reset(SSL_new(tls));
        SSL_set_fd(ssl_.get(), fd_.get());
        SSL_set_accept_state(ssl_.get());
    }
}

SocketEnd::~SocketEnd() = default;

ssize_t SocketEnd::outcome(int result) {
    switch (SSL_get_error(ssl_.get(), result)) {
        case SSL_ERROR_WANT_READ:
            return kAgain;
        case SSL_ERROR_WANT_WRITE:
            wantsWrite_ = true;
            return kAgain;
        case SSL_ERROR_ZERO_RETURN:
            return 0;
        default:
            return kFailed;
    }
}

ssize_t SocketEnd::read(char* data, size_t length) {
    if (ssl_) {
        ERR_clear_error();
        wantsWrite_ = false;
        int n = SSL_read(ssl_.get(), data, static_cast<int>(std::min<size_t>(length, INT_MAX)));
        return n > 0 ? n : outcome(n);
    }
    ssize_t n = ::recv(fd_.get(), data, length, 0);
    if (n >= 0) {
        return n;
    }
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR ? kAgain : kFailed;
}

ssize_t SocketEnd::write(const char* data, size_t length) {
    if (ssl_) {
        ERR_clear_error();
        int n = SSL_write(ssl_.get(), data, static_cast<int>(std::min<size_t>(length, INT_MAX)));
        if (n > 0) {
            return n;
        }
        ssize_t result = outcome(n);
        return result == 0 ? kFailed : result;
    }
    ssize_t n = ::send(fd_.get(), data, length, MSG_NOSIGNAL);
    if (n >= 0) {
        return n;
    }
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR || errno == ENOTCONN ? kAgain : kFailed;
}

void SocketEnd::finish() {
    if (ssl_) {
        ERR_clear_error();
        SSL_shutdown(ssl_.get());
    }
    ::shutdown(fd_.get(), SHUT_WR);
}

void SocketEnd::resetOnClose() {
    linger option{1, 0};
    ::setsockopt(fd_.get(), SOL_SOCKET, SO_LINGER, &option, sizeof option);
}

}  // namespace nas
