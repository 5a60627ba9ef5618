#pragma once

#include <httplib.h>

#include <nlohmann/json.hpp>
#include <string>

#include "users.h"
#include "wire_text.h"

namespace nas {

enum class Endpoint : unsigned {
    SyncCgi = 1,
    SyncFcgi = 2,
    SyncLogin = 4,
    SyncLogout = 8,
    SyncBatch = 16,
    ManagerCgi = 32,
    ManagerLogin = 64,
    ManagerLogout = 128,
    ManagerBatch = 256,
};

// One request on its way through the service.
struct Request {
    const httplib::Request& http;
    const httplib::ContentReader* body;  // null without a body
    Endpoint endpoint;
    std::string contentType;
    Fields query;
    std::string userName;  // for the log; known after the session was found
};

// What goes back: a JSON text, or something that the handler put into the response itself.
struct Answer {
    nlohmann::json json;
    bool direct = false;
    std::string note = {};  // for the log
};

}  // namespace nas
