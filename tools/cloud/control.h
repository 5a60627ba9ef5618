#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace cloud {

class Service;

// The path by which tests arm faults, change the state and read what happened. Sets the HTTP status if there
// is no such request.
nlohmann::json runControl(Service& service, const std::string& what, const std::string& body, int& http);

}  // namespace cloud
