#pragma once

#include <httplib.h>

#include <string>

namespace nas {

class Service;

// The path by which tests arm faults and read what happened.
void serveControl(Service& service, const std::string& path, const httplib::Request& http,
                  httplib::Response& response, const httplib::ContentReader* body);

}  // namespace nas
