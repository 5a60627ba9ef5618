#include "tls.h"

#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <stdexcept>

namespace nas {

namespace {

template <typename T, void (*Free)(T*)>
struct Freer {
    void operator()(T* object) const { Free(object); }
};
using Key = std::unique_ptr<EVP_PKEY, Freer<EVP_PKEY, EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Freer<X509, X509_free>>;
using Extension = std::unique_ptr<X509_EXTENSION, Freer<X509_EXTENSION, X509_EXTENSION_free>>;

[[noreturn]] void fail(const std::string& what) {
    char text[256] = "";
    ERR_error_string_n(ERR_get_error(), text, sizeof text);
    throw std::runtime_error("TLS: " + what + ": " + text);
}

void require(bool fine, const char* what) {
    if (!fine) {
        fail(what);
    }
}

Certificate selfSigned(EVP_PKEY* key, const std::string& serverName) {
    Certificate certificate(X509_new());
    require(certificate != nullptr, "certificate");
    unsigned char serial[8];
    require(RAND_bytes(serial, sizeof serial) == 1, "serial number");
    serial[0] &= 0x7f;
    std::unique_ptr<BIGNUM, Freer<BIGNUM, BN_free>> number(BN_bin2bn(serial, sizeof serial, nullptr));
    require(number && BN_to_ASN1_INTEGER(number.get(), X509_get_serialNumber(certificate.get())),
            "serial number");
    X509_set_version(certificate.get(), 2);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -3600);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), 365L * 24 * 3600);
    X509_NAME* name = X509_get_subject_name(certificate.get());
    std::string common = serverName.substr(0, 64);
    require(
        X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_UTF8,
                                   reinterpret_cast<const unsigned char*>(common.c_str()), -1, -1, 0) == 1,
        "name");
    X509_set_issuer_name(certificate.get(), name);
    X509_set_pubkey(certificate.get(), key);
    X509V3_CTX context;
    X509V3_set_ctx(&context, certificate.get(), certificate.get(), nullptr, nullptr, 0);
    Extension names(X509V3_EXT_conf_nid(nullptr, &context, NID_subject_alt_name,
                                        "DNS:localhost,IP:127.0.0.1,IP:0:0:0:0:0:0:0:1"));
    require(names && X509_add_ext(certificate.get(), names.get(), -1) == 1, "alternative names");
    require(X509_sign(certificate.get(), key, EVP_sha256()) > 0, "signature");
    return certificate;
}

}  // namespace

SslContext makeSslContext(const std::string& certificate, const std::string& key,
                          const std::string& serverName) {
    SslContext context(SSL_CTX_new(TLS_server_method()));
    require(context != nullptr, "context");
    SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION);
    SSL_CTX_set_mode(context.get(), SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER |
                                        SSL_MODE_RELEASE_BUFFERS);
    if (!certificate.empty()) {
        require(SSL_CTX_use_certificate_chain_file(context.get(), certificate.c_str()) == 1, "--cert");
        require(SSL_CTX_use_PrivateKey_file(context.get(), key.c_str(), SSL_FILETYPE_PEM) == 1, "--key");
    } else {
        Key made(EVP_EC_gen("P-256"));
        require(made != nullptr, "key");
        Certificate own = selfSigned(made.get(), serverName);
        require(SSL_CTX_use_certificate(context.get(), own.get()) == 1, "certificate");
        require(SSL_CTX_use_PrivateKey(context.get(), made.get()) == 1, "key");
    }
    require(SSL_CTX_check_private_key(context.get()) == 1, "key and certificate don't match");
    return context;
}

}  // namespace nas
