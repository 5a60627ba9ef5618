#pragma once

#include <string>

namespace nas {

struct Options;

// Where the server is listed for its owner, and as what. Nothing without a URL.
struct CloudEntry {
    std::string url;
    std::string user;
    std::string deviceId;  // the server's uid if empty
    std::string deviceName;
    std::string description;
    std::string address;  // the address to listen on if empty
    bool remoteAccess = true;
};

// Puts the server on the list of its cloud. Throws when the cloud can't be reached or doesn't take it.
void registerAtCloud(const Options& options, int httpPort, int tlsPort);

}  // namespace nas
