#pragma once

#include <optional>
#include <string>
#include <vector>

namespace torvi {

/// What every command takes. A value that wasn't given stays empty: profile and defaults fill it later.
struct GlobalOptions {
    std::optional<std::string> server;
    std::optional<int> port;
    std::optional<bool> tls;
    std::optional<int> tlsPort;
    std::optional<std::string> user;
    std::optional<std::string> passwordFile;
    std::optional<std::string> proxy;
    std::optional<std::string> proxyUser;
    std::optional<std::string> proxyPasswordFile;
    std::optional<std::string> node;
    std::optional<bool> fcgi;
    std::vector<std::string> teams;
    std::optional<std::string> code;
    std::optional<std::string> answer;
    bool mail = false;
    double timeoutSeconds = 0;
    bool json = false;
    bool quiet = false;
    bool verbose = false;
};

}  // namespace torvi
