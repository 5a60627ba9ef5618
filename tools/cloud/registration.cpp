#include "registration.h"

#include <stdexcept>

#include "service.h"

namespace cloud {

nlohmann::json registerDevice(Service& service, const std::string& body) {
    const nlohmann::json registration = nlohmann::json::parse(body);
    const std::string user = registration.at("user");
    if (!service.accounts().findUser(user)) {
        throw std::invalid_argument("no user \"" + user + "\"");
    }
    const Device& device = service.directory().add(registration);
    return {{"device_id", device.id}, {"link_id", device.linkId}};
}

}  // namespace cloud
