#include "registration.h"

#include <stdexcept>

#include "service.h"

namespace cloud {

namespace {
constexpr size_t kLongest = size_t{64} * 1024;
}

nlohmann::json registerDevice(Service& service, const std::string& body) {
    if (body.size() > kLongest) {
        throw std::invalid_argument("a registration has " + std::to_string(kLongest) + " bytes at most");
    }
    const auto entry = nlohmann::json::parse(body).get<nas::DeviceEntry>();
    if (!service.accounts().findUser(entry.user)) {
        throw std::invalid_argument("no user \"" + entry.user + "\"");
    }
    nlohmann::json reply;
    service.book().change([&](State& state) {
        const Device& device = state.directory.add(entry);
        reply = {{"device_id", device.id}, {"link_id", device.linkId}};
    });
    return reply;
}

}  // namespace cloud
