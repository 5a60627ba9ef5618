#include "support/cloud.h"

#include "support/programs.h"

Cloud::Cloud() : Cloud(Options()) {}

Cloud::Cloud(Options options) : m_options(std::move(options)) {
    if (m_options.clientPorts) {
        m_port = 80;
        m_tlsPort = 443;
    }
    start();
}

Cloud::~Cloud() = default;

void Cloud::start() {
    std::vector<std::string> arguments;
    for (const std::string& app : m_options.apps) arguments.insert(arguments.end(), {"--app", app});
    for (const std::string& user : m_options.users) arguments.insert(arguments.end(), {"--user", user});
    arguments.insert(arguments.end(), m_options.arguments.begin(), m_options.arguments.end());
    run("torvi-cloud", kTorviCloud, m_options.address, m_options.tls, std::move(arguments));
}

std::vector<std::string> Cloud::registration(const std::string& user, const std::string& deviceName,
                                             const std::string& deviceId) const {
    return {"--cloud",       "http://" + address() + ":" + std::to_string(port()),
            "--cloud-user",  user,
            "--device-name", deviceName,
            "--device-id",   deviceId};
}

void Cloud::expireTokens() {
    control("POST", "tokens/expire");
}

void Cloud::startAgain() {
    start();
}

void Cloud::startAgain(Options options) {
    m_options = std::move(options);
    start();
}
