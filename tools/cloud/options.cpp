#include "options.h"

#include <CLI/CLI.hpp>
#include <stdexcept>

namespace cloud {

int readOptions(int argc, char** argv, Options& options) {
    CLI::App app{
        "A stand-in for the cloud: tokens, the devices of a user and how to reach them, for tests and "
        "trials.",
        "torvi-cloud"};
    std::vector<std::string> apps;
    std::vector<std::string> users;
    std::vector<std::string> faults;
    const CLI::Range port(0, 65535);
    const long long tenYears = 315360000;
    const CLI::Range seconds(1LL, tenYears);

    app.add_option("--address", options.address, "Address to listen on")->capture_default_str();
    app.add_option("--port", options.port, "HTTP port, 0 for any free one; clients expect 80")
        ->capture_default_str()
        ->check(port);
    app.add_option("--tls-port", options.tlsPort,
                   "HTTPS port, 0 for any free one; no HTTPS without it; clients expect 443")
        ->check(port);
    auto* certificate =
        app.add_option("--cert", options.certificate, "Certificate chain (PEM); default self-signed")
            ->check(CLI::ExistingFile);
    auto* key = app.add_option("--key", options.key, "Private key of --cert (PEM)")
                    ->check(CLI::ExistingFile)
                    ->needs(certificate);
    certificate->needs(key);
    app.add_option("--app", apps, "id:secret of an application, repeatable")->required();
    app.add_option("--user", users,
                   "name:refresh-token[:mail[:display name]], with the refresh token of the user's first "
                   "sign-in; repeatable");
    app.add_option("--token-ttl", options.lifetimes.access, "Seconds that an access token lives")
        ->capture_default_str()
        ->check(seconds);
    app.add_option("--refresh-ttl", options.lifetimes.refresh,
                   "Seconds that a refresh token lives; the users' first ones live for ever")
        ->capture_default_str()
        ->check(seconds);
    app.add_flag("--rotate", options.lifetimes.rotate, "A refresh token serves once and brings the next one");
    app.add_option("--time-tolerance", options.timeTolerance, "Seconds that X-VEXA-TIME may be off")
        ->capture_default_str()
        ->check(seconds);
    app.add_option("--clock-offset", options.clockOffset, "Seconds that this server's clock is ahead")
        ->capture_default_str()
        ->check(CLI::Range(-tenYears, tenYears));
    app.add_option("--patience", options.patience, "Seconds after which a client that sends nothing is left")
        ->capture_default_str()
        ->check(seconds);
    app.add_option("--public-ip", options.publicIp, "The address that every client is told to come from")
        ->capture_default_str();
    app.add_option("--state-dir", options.stateFolder, "Keep tokens and devices here over a restart");
    app.add_option("--fail", faults,
                   "Arm a fault: name[,match=TEXT][,count=N][,skip=N][,bytes=K][,ms=M]..., repeatable");
    app.add_flag("--control", options.control, "Offer /control/ to arm faults and read what happened");

    try {
        app.parse(argc, argv);
        for (const std::string& rule : apps) options.accounts.addApp(rule);
        for (const std::string& rule : users) options.accounts.addUser(rule);
        for (const std::string& rule : faults) options.faults.push_back(nas::parseFaultRule(rule));
    } catch (const CLI::ParseError& error) {
        return app.exit(error);
    } catch (const std::exception& error) {
        std::cerr << "torvi-cloud: " << error.what() << "\n";
        return 2;
    }
    return -1;
}

}  // namespace cloud
