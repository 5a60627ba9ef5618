#include "lib_identity.h"
#include "support/nginx.h"
#include "support/rawserver.h"

using namespace e2e;

namespace {

struct Certified {
    Service service;
    wire::Certificate certificate;
};

std::string certifiedName(const testing::TestParamInfo<Certified>& info) {
    return name({info.param.service, true}) +
           (info.param.certificate == wire::Certificate::Expired ? "Expired" : "SelfSigned");
}

/// A server behind a front end that brings the TLS and a certificate that nobody vouches for.
class LibCertificate : public testing::TestWithParam<Certified> {
protected:
    std::map<std::string, std::string> values() const {
        const wire::CertificatePem& pem = wire::certificatePem(GetParam().certificate);
        return {{"NAS", "127.0.0.1:" + std::to_string(nas.port())},
                {"FRONT_CERT", files.write("front.pem", pem.certificate)},
                {"FRONT_KEY", files.write("front.key", pem.key)}};
    }
    static std::string configuration() {
        return Nginx::configuration(
            "server { listen 127.0.0.1:@PORT@; listen 127.0.0.1:@TLS_PORT@ ssl;\n"
            "  ssl_certificate @FRONT_CERT@; ssl_certificate_key @FRONT_KEY@;\n"
            "  client_max_body_size 0; proxy_request_buffering off; proxy_http_version 1.1;\n"
            "  location / { proxy_pass http://@NAS@; proxy_set_header Host $http_host;\n"
            "    proxy_set_header Connection ''; } }");
    }

    TempDir files;
    Nas nas;
    Nginx front{configuration(), values()};
};

}  // namespace

TEST_P(LibCertificate, EveryWayInAndEveryTransferPasses) {
    Probe probe;
    probe.port = front.tlsPort();
    probe.tls = true;
    Identity identity;
    EXPECT_EQ(probe.identity(identity), 0u);
    EXPECT_EQ(probe.isServer(wide(identity.uid).c_str()), 0u);
    Login login;
    login.road = {GetParam().service, true};
    login.port = front.tlsPort();
    const Client client(std::move(login));
    const std::string bytes = randomBytes(3 << 20);
    EXPECT_EQ(client.upload({bytes, L"/home/a"}), kDone);
    EXPECT_TRUE(nas.folder().read("homes/anna/a") == bytes);
    std::string back;
    EXPECT_EQ(client.download(L"/home/a", back), kDone);
    EXPECT_TRUE(back == bytes);
    std::vector<Entry> entries;
    EXPECT_EQ(client.list({}, entries), kDone);
    EXPECT_THAT(names(entries), testing::ElementsAre("a"));
    EXPECT_EQ(client.logout(), 0u);
    EXPECT_THAT(front.read("access.log"), testing::HasSubstr("POST /cgi-bin/"));
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

INSTANTIATE_TEST_SUITE_P(Certificates, LibCertificate,
                         testing::Values(Certified{Service::Sync, wire::Certificate::SelfSigned},
                                         Certified{Service::Sync, wire::Certificate::Expired},
                                         Certified{Service::FileManager, wire::Certificate::SelfSigned},
                                         Certified{Service::FileManager, wire::Certificate::Expired}),
                         certifiedName);
