#pragma once

#include <string>
#include <vector>

#include "support/programs.h"
#include "support/standin.h"

/// The built torvi-cloud on free ports, or on those that clients of the cloud expect.
class Cloud : public StandIn {
public:
    struct Options {
        /// "id:secret".
        std::vector<std::string> apps = {"desk-app:desk-secret"};
        /// "name:refresh token", as torvi-cloud's --user has it.
        std::vector<std::string> users = {"anna:anna-refresh:anna@example.org:Anna Berg", "ben:ben-refresh"};
        bool tls = true;
        std::string address = "127.0.0.1";
        /// Ports 80 and 443, with an address from support/cloudplace.h.
        bool clientPorts = false;
        /// More of the command line, such as {"--rotate"}.
        std::vector<std::string> arguments;
    };

    Cloud();
    explicit Cloud(Options options);
    ~Cloud();

    static bool built() { return std::string(kTorviCloud) != ""; }

    /// The options by which a torvi-nas registers at this cloud.
    std::vector<std::string> registration(const std::string& user, const std::string& deviceName,
                                          const std::string& deviceId) const;

    void expireTokens();
    /// Starts it again after stop() or kill(), on the same ports.
    void startAgain();
    /// The same with other options.
    void startAgain(Options options);

private:
    void start();

    Options m_options;
};
