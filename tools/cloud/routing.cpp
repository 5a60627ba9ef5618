#include "routing.h"

#include <optional>

#include "nas/status.h"

namespace cloud {

namespace {

using nas::Refusal;

// What the path names by the "*" of a call's path; nothing if it is another path.
std::optional<std::string> matchPath(const std::string& pattern, const std::string& path) {
    const size_t star = pattern.find('*');
    if (star == std::string::npos) {
        return pattern == path ? std::optional<std::string>("") : std::nullopt;
    }
    const std::string tail = pattern.substr(star + 1);
    if (path.size() <= star + tail.size() || path.compare(0, star, pattern, 0, star) != 0 ||
        path.compare(path.size() - tail.size(), tail.size(), tail) != 0) {
        return std::nullopt;
    }
    const std::string id = path.substr(star, path.size() - star - tail.size());
    return id.find('/') == std::string::npos ? std::optional<std::string>(id) : std::nullopt;
}

}  // namespace

const std::vector<Call>& allCalls() {
    static const std::vector<Call> calls = [] {
        std::vector<Call> all;
        addTokenCalls(all);
        addDeviceCalls(all);
        addLinkCalls(all);
        return all;
    }();
    return calls;
}

const Call& findCall(const HttpRequest& http, std::string& id) {
    const Call* other = nullptr;
    for (const Call& call : allCalls()) {
        if (const auto named = matchPath(call.path, http.path)) {
            if (call.method == http.method) {
                // Clients put their texts into the URL as they are.
                id = nas::decodePath(*named, "path");
                return call;
            }
            other = &call;
        }
    }
    if (other) {
        throw Refusal("method is " + http.method + ", not " + other->method, 405);
    }
    throw Refusal("no call at this path", 404);
}

void readFields(Request& request, const Call& call) {
    const HttpRequest& http = request.http;
    if (call.method == "POST") {
        if (http.hasQuery) {
            throw Refusal("a query on a form's request");
        }
        request.form = nas::decodeFields(http.body, "form");
        nas::requireShape(request.form, call.shapes, "form");
        return;
    }
    if (http.hasQuery != !call.shapes.empty()) {
        throw Refusal(http.hasQuery ? "a query on a call that has none" : "the query is missing");
    }
    if (http.hasQuery) {
        // Clients put their texts into the URL as they are.
        request.query = nas::decodeTyped(http.query, "query", {"device_name", "access_token"});
        nas::requireShape(request.query, call.shapes, "query");
    }
}

}  // namespace cloud
