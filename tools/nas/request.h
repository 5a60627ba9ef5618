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
    SyncPrepare = 32,
    ManagerCgi = 64,
    ManagerLogin = 128,
    ManagerLogout = 256,
    ManagerBatch = 512,
    ManagerPrepare = 1024,
    AuthLogin = 2048,
    SharePage = 4096,
};

// One request on its way through the service.
struct Request {
    const httplib::Request& http;
    const httplib::ContentReader* body;  // null without a body
    Endpoint endpoint;
    std::string contentType;
    Fields query;
    // Known after the session was found: its user, and the computer that it was opened from, if it told.
    std::string userName;
    std::string device = {};
};

// What goes back: a JSON text, or something that the handler put into the response itself.
// NOLINTNEXTLINE(bugprone-exception-escape): moving a json only seems to throw.
struct Answer {
    nlohmann::json json;
    bool direct = false;
    std::string note = {};  // for the log
};

}  // namespace nas
