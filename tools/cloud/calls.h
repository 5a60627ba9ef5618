#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "http_request.h"
#include "nas/ledger.h"
#include "service.h"

namespace cloud {

// How a call proves that it may be made, and which headers it bears for that.
enum class Proof {
    Form,      // the application's secret or a refresh token in the form
    Bearer,    // the access token in Authorization
    Checksum,  // that the client knows the application's secret
};

struct Request {
    const HttpRequest& http;
    nas::Fields query;
    nas::Fields form;
    std::string id;  // what the path names
};

// NOLINTNEXTLINE(bugprone-exception-escape): moving a json only seems to throw.
struct Answer {
    nlohmann::json json;
    int code = nas::LedgerEntry::kNoStatus;  // the reply's "code"
    std::string user = {};
    std::string note = {};  // for the log
};

struct Call {
    std::string name;
    std::string method;
    // The path, with "*" in place of what it names.
    std::string path;
    Proof proof;
    // The query of a GET, the form of a POST.
    std::vector<nas::Shape> shapes;
    Answer (*serve)(Service&, const Request&);
};

const std::vector<Call>& allCalls();

// One file per family adds its own.
void addTokenCalls(std::vector<Call>& calls);
void addDeviceCalls(std::vector<Call>& calls);
void addLinkCalls(std::vector<Call>& calls);

}  // namespace cloud
