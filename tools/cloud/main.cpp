#include <iostream>
#include <thread>

#include "http_server.h"
#include "nas/end_signals.h"
#include "nas/relay.h"
#include "nas/tls.h"
#include "options.h"
#include "service.h"

namespace {

int serve(const cloud::Options& options, const nas::EndSignals& signals) {
    nas::Faults faults;
    for (const nas::Fault& fault : options.faults) {
        faults.arm(fault);
    }
    nas::SslContext tls;
    if (options.tlsPort >= 0) {
        tls = nas::makeSslContext(options.certificate, options.key, "torvi-cloud");
    }
    cloud::Service service(options, faults);
    cloud::HttpServer http({[&](const cloud::HttpRequest& request) { return service.serve(request); },
                            [&](const cloud::HttpRequest& request, const nas::Refusal& refusal) {
                                return service.refuse(request, refusal);
                            }},
                           options.patience);
    nas::Relay relay(faults, http.port());
    const int port = relay.listen(options.address, options.port, nullptr);
    const int tlsPort = tls ? relay.listen(options.address, options.tlsPort, tls.get()) : 0;
    http.start();
    std::thread loop([&] { relay.run(); });

    // One line that programs can read.
    const std::string ready = "torvi-cloud ready http=" + options.address + ":" + std::to_string(port) +
                              " tls=" + (tls ? options.address + ":" + std::to_string(tlsPort) : "-");
    std::cout << ready << std::endl;

    signals.wait();
    relay.stop();
    loop.join();
    http.stop();
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    cloud::Options options;
    const int early = cloud::readOptions(argc, argv, options);
    if (early != -1) {
        return early;
    }
    const nas::EndSignals signals;
    return nas::serveOrTell("torvi-cloud", [&] { return serve(options, signals); });
}
