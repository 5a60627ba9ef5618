#include "headers.h"

#include <strings.h>

#include <algorithm>
#include <cctype>

#include "nas/require_header.h"
#include "nas/status.h"

namespace cloud {

namespace {

using nas::Refusal;

const std::string kBearer = "Bearer ";

// In whatever order.
const std::vector<std::string> kTransport = {
    "Host",          "User-Agent",      "Connection",      "Cache-Control",
    "Pragma",        "Accept-Encoding", "Accept-Language", "Content-Type",
    "Content-Length"};
const std::vector<std::string> kOwn = {"Accept",         "Authorization", "X-VEXA-APP-ID", "X-VEXA-SUBAPP-ID",
                                       "X-VEXA-APP-VER", "X-VEXA-CHECK",  "X-VEXA-TIME"};

bool contains(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) {
        text.append(text.empty() ? "" : ", ").append(name);
    }
    return text.empty() ? "none" : text;
}

// The name that the protocol spells in another case.
const std::string* otherCase(const std::string& name) {
    for (const auto* names : {&kTransport, &kOwn}) {
        for (const std::string& known : *names) {
            if (strcasecmp(known.c_str(), name.c_str()) == 0) {
                return &known;
            }
        }
    }
    return nullptr;
}

void requireKnown(const std::string& name) {
    if (contains(kTransport, name) || contains(kOwn, name)) {
        return;
    }
    const std::string* known = otherCase(name);
    throw Refusal("header " + name + (known ? " is spelled " + *known : " is not in the protocol"));
}

void requireEachOnce(const HttpRequest& http) {
    std::vector<std::string> seen;
    for (const auto& [name, value] : http.headers) {
        requireKnown(name);
        if (contains(seen, name)) {
            throw Refusal("header " + name + " came twice");
        }
        seen.push_back(name);
    }
}

// The protocol's own headers in their order.
std::vector<std::string> ownHeaders(const HttpRequest& http) {
    std::vector<std::string> names;
    for (const auto& [name, value] : http.headers) {
        const bool own = contains(kOwn, name);
        // A digest may begin with a zero byte.
        if (own && value.empty() && name != "X-VEXA-CHECK") {
            throw Refusal("header " + name + " is empty");
        }
        if (own) {
            names.push_back(name);
        }
    }
    return names;
}

void requireOwnHeaders(const HttpRequest& http, Proof proof) {
    std::vector<std::string> wanted = {"Accept", "X-VEXA-APP-ID", "X-VEXA-SUBAPP-ID", "X-VEXA-APP-VER"};
    if (proof == Proof::Checksum) {
        wanted = {"X-VEXA-APP-VER", "X-VEXA-CHECK", "X-VEXA-TIME", "X-VEXA-APP-ID"};
    }
    if (proof == Proof::Bearer) {
        wanted.push_back("Authorization");
    }
    const std::vector<std::string> names = ownHeaders(http);
    if (names != wanted) {
        throw Refusal("the protocol's headers are " + joined(names) + ", not " + joined(wanted));
    }
}

void requireHeader(const HttpRequest& http, const std::string& name, const std::string& value) {
    nas::requireHeader(name, http.header(name), value);
}

// A name or an address, perhaps with a port.
void requireHost(const std::string& host) {
    const size_t colon = std::min(host.find(':'), host.size());
    const std::string port = colon < host.size() ? host.substr(colon + 1) : "80";
    const auto inName = [](unsigned char c) { return std::isalnum(c) || c == '-' || c == '.'; };
    if (colon == 0 || !std::all_of(host.begin(), host.begin() + static_cast<long>(colon), inName) ||
        port.empty() || port.find_first_not_of("0123456789") != std::string::npos) {
        throw Refusal("header Host is \"" + host + "\"");
    }
}

}  // namespace

void checkHeaders(const HttpRequest& http, const Call& call) {
    requireEachOnce(http);
    for (const char* name : {"Host", "User-Agent"}) {
        if (http.header(name).empty()) {
            throw Refusal(std::string("header ") + name + " is missing");
        }
    }
    requireHost(http.header("Host"));
    requireHeader(http, "Cache-Control", "no-cache");
    requireHeader(http, "Pragma", "no-cache");
    requireOwnHeaders(http, call.proof);
    if (call.proof != Proof::Checksum) {
        requireHeader(http, "Accept", "application/json");
        requireHeader(http, "X-VEXA-SUBAPP-ID", http.header("X-VEXA-APP-ID"));
    }
    const bool form = call.method == "POST";
    requireHeader(http, "Content-Type", form ? "application/x-www-form-urlencoded;charset=UTF-8" : "");
    if (form && http.header("Content-Length").empty()) {
        throw Refusal("header Content-Length is missing", 411);
    }
    if (!form && !http.header("Content-Length").empty()) {
        throw Refusal("a body on a GET request");
    }
}

std::string bearerOf(const HttpRequest& http) {
    const std::string text = http.header("Authorization");
    if (text.rfind(kBearer, 0) != 0 || text.size() == kBearer.size()) {
        throw Refusal("header Authorization bears no token");
    }
    return text.substr(kBearer.size());
}

}  // namespace cloud
