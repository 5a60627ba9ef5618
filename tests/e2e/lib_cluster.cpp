#include "lib_cluster.h"

#include "clustertemplate.h"

namespace e2e {

Nas::Options nodeOptions(const TempDir& sessions, const std::string& id, std::vector<std::string> more) {
    more.insert(more.end(),
                {"--slave-id", id, "--server-name", "host of " + id, "--session-dir", sessions.file("sids")});
    return withArguments(std::move(more));
}

Nginx frontEnd(const Node& own, const Node& other) {
    const std::string listen = "listen 127.0.0.1:@PORT@;";
    std::string configuration = clusterTemplate();
    configuration.replace(configuration.find(listen), listen.size(),
                          listen +
                              " listen 127.0.0.1:@TLS_PORT@ ssl; ssl_certificate @CERT@; "
                              "ssl_certificate_key @KEY@;");
    return Nginx(configuration, {{"MASTER", "127.0.0.1:" + std::to_string(own.nas.port())},
                                 {"MASTER_ID", own.id},
                                 {"NODE", "127.0.0.1:" + std::to_string(other.nas.port())},
                                 {"NODE_ID", other.id}});
}

std::uint16_t portOf(const Nginx& front, const Road& road) {
    return road.tls ? front.tlsPort() : front.port();
}

}  // namespace e2e
