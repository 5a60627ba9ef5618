#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <iostream>
#include <thread>

#include "end_signals.h"
#include "http_server.h"
#include "log.h"
#include "options.h"
#include "relay.h"
#include "service.h"
#include "tls.h"

namespace {

int serve(const nas::Options& options, const nas::EndSignals& signals) {
    nas::Faults faults;
    for (const nas::Fault& fault : options.faults) {
        faults.arm(fault);
    }
    nas::SslContext tls;
    if (options.tlsPort >= 0) {
        tls = nas::makeSslContext(options.certificate, options.key, options.serverName);
    }
    nas::Service service(options, faults);
    nas::HttpServer http(service);
    nas::Relay relay(faults, http.port());
    int port = relay.listen(options.address, options.port, nullptr);
    int tlsPort = tls ? relay.listen(options.address, options.tlsPort, tls.get()) : 0;
    service.setPorts(port, tlsPort);
    nas::registerAtCloud(options, port, tlsPort);
    http.start();
    std::thread loop([&] { relay.run(); });

    const auto book = service.shares().read();
    for (const nas::Share& share : book->shares) {
        if (share.nas == service.shares().nas()) {
            nas::logLine("team folder vtf://" + share.team + "/ is " + share.path + " of " + share.owner);
        }
    }
    // One line that programs can read.
    std::string ready = "torvi-nas ready http=" + options.address + ":" + std::to_string(port) +
                        " tls=" + (tls ? options.address + ":" + std::to_string(tlsPort) : "-") +
                        " root=" + std::filesystem::absolute(options.root).lexically_normal().string();
    std::cout << ready << std::endl;

    signals.wait();
    // The relay first: it closes every connection, so no handler is left waiting.
    relay.stop();
    loop.join();
    http.stop();
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    nas::Options options;
    int early = nas::readOptions(argc, argv, options);
    if (early != -1) {
        return early;
    }
    const nas::EndSignals signals;
    return nas::serveOrTell("torvi-nas", [&] { return serve(options, signals); });
}
