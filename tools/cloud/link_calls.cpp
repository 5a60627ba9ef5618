#include <cstdlib>

#include "calls.h"
#include "checksum.h"
#include "nas/status.h"
#include "nas/time_text.h"

namespace cloud {

namespace {

Answer replied(int code, const std::string& message, nlohmann::json content) {
    Answer answer{{{"return", std::move(content)}}, code};
    answer.note = message;
    return answer;
}

// Who may not ask gets the code beside the message, without "StatusCode".
Answer refused(int code, const std::string& message) {
    return replied(code, message, {{"code", std::to_string(code)}, {"message", message}});
}

Answer told(Service& service, int code, const std::string& message, nlohmann::json content) {
    content["StatusCode"] = {{"code", std::to_string(code)}, {"message", message}};
    content["actTime"] = nas::utcStamp(service.now() / 1000);
    return replied(code, message, std::move(content));
}

Answer told(Service& service, nlohmann::json content) {
    return told(service, 200, "Access successfully.", std::move(content));
}

Answer notFound(Service& service, const std::string& message) {
    return told(service, 404, message, nlohmann::json::object());
}

// The time in the header lies so far from the cloud's.
int64_t timeDifference(const std::string& text, int64_t now) {
    if (text.empty() || text.size() > 15 || text.find_first_not_of("0123456789") != std::string::npos) {
        throw nas::Refusal("header X-VEXA-TIME is \"" + text + "\", no time in milliseconds");
    }
    return std::abs(std::stoll(text) - now);
}

using Serve = Answer (*)(Service&, const Request&);

template <Serve serve>
Answer checked(Service& service, const Request& request) {
    const std::string app = request.http.header("X-VEXA-APP-ID");
    const std::string* secret = service.accounts().findSecret(app);
    if (!secret) {
        return refused(404, "The app id is not found.");
    }
    const std::string time = request.http.header("X-VEXA-TIME");
    if (timeDifference(time, service.now()) > service.options().timeTolerance * 1000) {
        return refused(400, "X-VEXA-TIME is invalid.");
    }
    if (request.http.header("X-VEXA-CHECK") !=
        checksumText(*secret, app, time, request.http.header("X-VEXA-APP-VER"))) {
        return refused(403, "The checksum X-VEXA-CHECK is invalid.");
    }
    return serve(service, request);
}

Answer tellDeviceId(Service& service, const Request& request) {
    const auto state = service.book().read();
    const auto devices = state->directory.ofUser(request.id);
    if (devices.empty()) {
        return notFound(service, "The device is not found.");
    }
    return told(service, {{"deviceId", devices.front()->id}});
}

Answer tellLink(Service& service, const Request& request) {
    const auto state = service.book().read();
    const Device* device = state->directory.find(request.id);
    if (!device) {
        return notFound(service, "The device is not found.");
    }
    if (!device->remoteAccess) {
        return notFound(service, "The vlink configuration is not found.");
    }
    const std::string& publicIp = service.options().publicIp;
    return told(service, {{"vlinkId", device->linkId},
                          {"vlinkType", "1"},
                          {"vlinkVersion", "2.0"},
                          {"lanIp", device->address},
                          {"lanGW", gatewayOf(*device)},
                          {"wanIp", device->externalAddress.empty() ? publicIp : device->externalAddress}});
}

nlohmann::json mappingJson(const std::string& service, const std::string& subService,
                           const std::string& protocol, int internalPort, int externalPort) {
    return {{"serviceName", service},
            {"subServiceName", subService},
            {"proto", protocol},
            {"internalPort", internalPort},
            {"externalPort", externalPort}};
}

Answer tellPorts(Service& service, const Request& request) {
    const auto state = service.book().read();
    const Device* device = state->directory.find(request.id);
    if (!device) {
        return notFound(service, "The device is not found.");
    }
    nlohmann::json mappings = nlohmann::json::array();
    if (device->remoteAccess) {
        const int port = device->httpPort;
        const int external = device->externalHttpPort;
        // The search for devices and the sync service share the port of the administration.
        mappings.push_back(mappingJson("WebAdministration", "", "UDP", port + 1, 0));
        mappings.push_back(mappingJson("SyncService", "", "TCP", port, external));
        mappings.push_back(mappingJson("WebAdministration", "", "TCP", port, external));
        if (device->tlsPort != 0) {
            mappings.push_back(
                mappingJson("WebAdministration", "Secured", "TCP", device->tlsPort, device->externalTlsPort));
        }
    }
    return told(service, {{"portMapping", mappings}});
}

}  // namespace

void addLinkCalls(std::vector<Call>& calls) {
    const std::vector<nas::Shape> none;
    calls.push_back(
        {"device-id", "GET", "/v1/users/deviceId/*", Proof::Checksum, none, checked<tellDeviceId>});
    calls.push_back({"vlink", "GET", "/v1/services/vlink/*", Proof::Checksum, none, checked<tellLink>});
    calls.push_back({"port-mapping", "GET", "/v1/devices/services/portMapping/*", Proof::Checksum, none,
                     checked<tellPorts>});
}

}  // namespace cloud
