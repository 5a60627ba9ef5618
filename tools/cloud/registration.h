#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace cloud {

class Service;

// The stand-ins' own call: a torvi-nas puts itself on its owner's list.
nlohmann::json registerDevice(Service& service, const std::string& body);

}  // namespace cloud
