#include "calls.h"
#include "headers.h"

namespace cloud {

namespace {

// What a reply's "code" tells.
constexpr int kOk = 0;
constexpr int kNoUser = 1013001;
constexpr int kSuspended = 1013002;
constexpr int kNoDevice = 1070001;

Answer coded(int code, const std::string& message, const std::string& user = {}) {
    Answer answer{{{"code", code}, {"message", message}}, code, user};
    answer.note = message;
    return answer;
}

Answer found(const std::string& user, nlohmann::json result) {
    return {{{"code", kOk}, {"message", "OK"}, {"result", std::move(result)}}, kOk, user};
}

Grant grantOf(Service& service, const HttpRequest& http) {
    return service.book().read()->tokens.require(bearerOf(http), http.header("X-VEXA-APP-ID"), service.now());
}

using ServeUser = Answer (*)(Service&, const Request&, const std::string& user);

// Only a user has devices, and a suspended one doesn't see them.
template <ServeUser serve>
Answer forUser(Service& service, const Request& request) {
    const std::string name = grantOf(service, request.http).user;
    if (name.empty()) {
        return coded(kNoUser, "No user is signed in.", name);
    }
    if (service.book().read()->suspended.count(name) > 0) {
        return coded(kSuspended, "The account is suspended.", name);
    }
    return serve(service, request, name);
}

nlohmann::json addressJson(const std::string& name, const std::string& ipv4) {
    return {{"name", name}, {"ipv4", ipv4}, {"ipv6", ""}};
}

nlohmann::json infoJson(const Device& device, const std::string& publicIp) {
    // "5.1.0.20260105": the build is the part behind the last point.
    const size_t point = device.firmware.rfind('.');
    const std::string build = point == std::string::npos ? "" : device.firmware.substr(point + 1);
    nlohmann::json wan = nlohmann::json::array();
    if (device.remoteAccess) {
        wan.push_back(
            addressJson("wan0", device.externalAddress.empty() ? publicIp : device.externalAddress));
    }
    return {{"device_type", "NAS"},
            {"model_name", device.model},
            {"fw_model_name", device.model},
            {"hw_serial_number", "H-" + device.macAddress},
            {"fw_serial_number", "F-" + device.macAddress},
            {"mac_address", device.macAddress},
            {"host_name", device.hostName},
            {"firmware_version", device.firmware.substr(0, point)},
            {"firmware_build_number", build},
            {"firmware_patch_version", "0"},
            {"agent_version", "1.0"},
            {"firmware_number", build},
            {"lan_gateway", addressJson("lan0", gatewayOf(device))},
            {"lan_ips", nlohmann::json::array({addressJson("lan0", device.address)})},
            {"wan_ips", wan}};
}

nlohmann::json serviceJson(const std::string& protocol, int internalPort, int externalPort) {
    return {{"service_name", "WebAdministration"},
            {"protocol", protocol},
            {"uri", "/"},
            {"external_port", externalPort},
            {"internal_port", internalPort},
            {"published", externalPort != 0},
            {"private", externalPort == 0}};
}

nlohmann::json servicesJson(const Device& device) {
    nlohmann::json services = nlohmann::json::array();
    services.push_back(serviceJson("http", device.httpPort, device.externalHttpPort));
    if (device.tlsPort != 0) {
        services.push_back(serviceJson("https", device.tlsPort, device.externalTlsPort));
    }
    return services;
}

nlohmann::json deviceJson(const Device& device, const std::string& publicIp) {
    nlohmann::json users = nlohmann::json::array();
    for (const std::string& name : device.localUsers) {
        users.push_back({{"user_name", name}});
    }
    const nlohmann::json info = infoJson(device, publicIp);
    return {{"device_id", device.id},
            {"token", device.token},
            {"device_name", device.name},
            {"access_code", device.accessCode},
            {"access_control_mode", device.remoteAccess ? "private" : "closed"},
            {"user_id", device.user},
            {"description", device.description},
            {"domain_name", device.ddnsName},
            {"info", info},
            {"local_services", servicesJson(device)},
            {"local_users", users},
            {"model_info",
             {{"name", device.model},
              {"latest_fw_version", info["firmware_version"]},
              {"latest_fw_build_number", info["firmware_build_number"]},
              {"latest_fw_patch_version", "0"},
              {"img_url", "https://cloud.example/models/" + device.id + ".png"}}},
            {"permissions",
             {{"basic_info", "owner"},
              {"remote_access", device.remoteAccess ? "owner" : "none"},
              {"public_local_service", "all"},
              {"private_local_service", "owner"},
              {"public_package_services", "all"},
              {"protected_package_services", "owner"},
              {"private_package_services", "none"}}}};
}

nlohmann::json listJson(Service& service, const std::string& user, const std::string* name = nullptr) {
    const auto state = service.book().read();
    nlohmann::json list = nlohmann::json::array();
    for (const Device* device : state->directory.ofUser(user)) {
        if (!name || device->name == *name) {
            list.push_back(deviceJson(*device, service.options().publicIp));
        }
    }
    return list;
}

Answer listDevices(Service& service, const Request&, const std::string& user) {
    return found(user, listJson(service, user));
}

Answer countDevices(Service& service, const Request&, const std::string& user) {
    return found(user, service.book().read()->directory.ofUser(user).size());
}

Answer searchDevices(Service& service, const Request& request, const std::string& user) {
    return found(user, listJson(service, user, &nas::field(request.query, "device_name")));
}

// An address as it is reached by each protocol; without any port it stands alone.
void addResources(nlohmann::json& list, const std::string& type, const std::string& ipv4,
                  const std::string& host, int httpPort, int tlsPort) {
    nlohmann::json resource = {{"type", type}, {"ipv4", ipv4}, {"ipv6", ""}, {"host", host}};
    if (httpPort == 0 && tlsPort == 0) {
        list.push_back(resource);
    }
    for (const auto& [protocol, port] : {std::pair("http", httpPort), std::pair("https", tlsPort)}) {
        if (port != 0) {
            resource["protocol"] = protocol;
            resource["port"] = port;
            list.push_back(resource);
        }
    }
}

Answer tellNetwork(Service& service, const Request& request, const std::string& user) {
    const auto state = service.book().read();
    const Device* device = state->directory.find(request.id);
    if (!device || device->user != user) {
        return coded(kNoDevice, "There is no such device.", user);
    }
    nlohmann::json resources = nlohmann::json::array();
    addResources(resources, "lan_ip", device->address, "", device->httpPort, device->tlsPort);
    if (device->remoteAccess) {
        if (!device->externalAddress.empty()) {
            addResources(resources, "wan_ip", device->externalAddress, "", device->externalHttpPort,
                         device->externalTlsPort);
        }
        if (!device->ddnsName.empty()) {
            addResources(resources, "ddns", "", device->ddnsName, device->externalHttpPort,
                         device->externalTlsPort);
        }
        resources.push_back({{"type", "cloud_link"}, {"cloud_link_id", device->linkId}});
    }
    return found(user, {{"resources", resources}});
}

// For any token, also an application's own.
Answer tellPublicIp(Service& service, const Request& request) {
    return found(grantOf(service, request.http).user, {{"public_ip", service.options().publicIp}});
}

}  // namespace

void addDeviceCalls(std::vector<Call>& calls) {
    const std::vector<nas::Shape> none;
    calls.push_back({"devices", "GET", "/v1.1/device", Proof::Bearer, none, forUser<listDevices>});
    calls.push_back({"count", "GET", "/v1.1/device/count", Proof::Bearer, none, forUser<countDevices>});
    calls.push_back(
        {"search", "GET", "/v1.1/device/search", Proof::Bearer, {{"device_name"}}, forUser<searchDevices>});
    calls.push_back({"network", "GET", "/v1.1/device/*/network", Proof::Bearer, none, forUser<tellNetwork>});
    calls.push_back({"public-ip", "GET", "/v1.1/utility/geo/search", Proof::Bearer, none, tellPublicIp});
}

}  // namespace cloud
