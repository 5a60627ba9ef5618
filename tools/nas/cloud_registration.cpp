#include "cloud_registration.h"

#include <httplib.h>

#include <stdexcept>

#include "device_entry.h"
#include "json_text.h"
#include "log.h"
#include "options.h"

namespace nas {

namespace {

const std::string& firstGiven(const std::string& text, const std::string& otherwise) {
    return text.empty() ? otherwise : text;
}

DeviceEntry entryOf(const Options& options, int httpPort, int tlsPort) {
    const CloudEntry& cloud = options.cloud;
    const Identity& identity = options.identity;
    DeviceEntry entry;
    entry.id = firstGiven(cloud.deviceId, identity.uid);
    entry.user = cloud.user;
    entry.name = firstGiven(cloud.deviceName, options.serverName);
    entry.description = cloud.description;
    entry.model = identity.model;
    entry.firmware = identity.firmware;
    entry.macAddress = identity.mac;
    entry.hostName = options.serverName;
    entry.address = firstGiven(cloud.address, options.address);
    entry.httpPort = httpPort;
    entry.tlsPort = tlsPort;
    entry.externalAddress = identity.externalAddress;
    entry.externalHttpPort = identity.externalPort;
    entry.externalTlsPort = identity.externalTlsPort;
    entry.ddnsName = identity.ddnsName;
    entry.remoteAccess = cloud.remoteAccess;
    for (const auto& [name, user] : options.users.all()) {
        entry.localUsers.push_back(name);
    }
    return entry;
}

}  // namespace

void registerAtCloud(const Options& options, int httpPort, int tlsPort) {
    if (options.cloud.url.empty()) {
        return;
    }
    httplib::Client client(options.cloud.url);
    const std::string entry = dumped(entryOf(options, httpPort, tlsPort));
    const httplib::Result result = client.Post("/standin/register", entry, "application/json");
    if (!result || result->status != 200) {
        throw std::runtime_error("cannot register at " + options.cloud.url + ": " +
                                 (result ? result->body : httplib::to_string(result.error())));
    }
    logLine("registered at " + options.cloud.url + " for " + options.cloud.user);
}

}  // namespace nas
