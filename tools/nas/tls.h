#pragma once

#include <openssl/ssl.h>

#include <memory>
#include <string>

namespace nas {

struct SslContextFree {
    void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
};
using SslContext = std::unique_ptr<SSL_CTX, SslContextFree>;

// From the files, or with a certificate made and signed here when both names are empty.
SslContext makeSslContext(const std::string& certificate, const std::string& key,
                          const std::string& serverName);

}  // namespace nas
