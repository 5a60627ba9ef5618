#include "cloud_registration.h"

#include <httplib.h>

#include <nlohmann/json.hpp>
#include <stdexcept>

#include "json_text.h"
#include "log.h"
#include "options.h"

namespace nas {

namespace {

const std::string& firstGiven(const std::string& text, const std::string& otherwise) {
    return text.empty() ? otherwise : text;
}

nlohmann::json entryOf(const Options& options, int httpPort, int tlsPort) {
    const CloudEntry& cloud = options.cloud;
    nlohmann::json accounts = nlohmann::json::array();
    for (const auto& [name, user] : options.users.all()) {
        accounts.push_back(name);
    }
    return {{"user", cloud.user},
            {"device_id", firstGiven(cloud.deviceId, options.identity.uid)},
            {"device_name", firstGiven(cloud.deviceName, options.serverName)},
            {"description", cloud.description},
            {"model", options.identity.model},
            {"firmware", options.identity.firmware},
            {"mac_address", options.identity.mac},
            {"host_name", options.serverName},
            {"address", firstGiven(cloud.address, options.address)},
            {"http_port", httpPort},
            {"tls_port", tlsPort},
            {"external_address", options.identity.externalAddress},
            {"external_http_port", options.identity.externalPort},
            {"external_tls_port", options.identity.externalTlsPort},
            {"ddns_name", options.identity.ddnsName},
            {"remote_access", cloud.remoteAccess},
            {"local_users", accounts}};
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
