#include "service.h"

#include <strings.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>

#include "calls.h"
#include "control.h"
#include "nas/log.h"
#include "nas/status.h"
#include "registration.h"

namespace cloud {

namespace fs = std::filesystem;

namespace {

using nas::Refusal;

const std::string kBearer = "Bearer ";

std::string dumped(const nlohmann::json& json) {
    return json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

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

const Call& findCall(const HttpRequest& http, std::string& id) {
    const Call* other = nullptr;
    for (const Call& call : allCalls()) {
        if (const auto named = matchPath(call.path, http.path)) {
            if (call.method == http.method) {
                id = *named;
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

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) {
        text += (text.empty() ? "" : ", ") + name;
    }
    return text.empty() ? "none" : text;
}

// The protocol's own headers in their order.
std::vector<std::string> ownHeaders(const HttpRequest& http) {
    std::vector<std::string> names;
    for (const auto& [name, value] : http.headers) {
        const bool own =
            name == "Accept" || name == "Authorization" || strncasecmp(name.c_str(), "X-VEXA-", 7) == 0;
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
    if (proof == Proof::Bearer || (proof == Proof::Query && !http.header("Authorization").empty())) {
        wanted.push_back("Authorization");
    }
    const std::vector<std::string> names = ownHeaders(http);
    if (names != wanted) {
        throw Refusal("the protocol's headers are " + joined(names) + ", not " + joined(wanted));
    }
}

void requireHeader(const HttpRequest& http, const std::string& name, const std::string& value) {
    const std::string found = http.header(name);
    if (found != value) {
        throw Refusal("header " + name + " is \"" + found + "\", not \"" + value + "\"");
    }
}

void checkHeaders(const HttpRequest& http, const Call& call) {
    for (const char* name : {"Host", "User-Agent"}) {
        if (http.header(name).empty()) {
            throw Refusal(std::string("header ") + name + " is missing");
        }
    }
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
    if (!http.body.empty()) {
        throw Refusal("a body on a GET request");
    }
    if (http.hasQuery != !call.shapes.empty()) {
        throw Refusal(http.hasQuery ? "a query on a call that has none" : "the query is missing");
    }
    if (http.hasQuery) {
        // Clients put their texts into the URL as they are.
        request.query = nas::decodeLoosely(http.query, "query");
        nas::requireShape(request.query, call.shapes, "query");
    }
}

nlohmann::json errorJson(const std::string& error, const std::string& why) {
    return {{"error", error}, {"error_description", why}};
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

std::string bearerOf(const HttpRequest& http) {
    const std::string text = http.header("Authorization");
    if (text.rfind(kBearer, 0) != 0 || text.size() == kBearer.size()) {
        throw Refusal("header Authorization bears no token");
    }
    return text.substr(kBearer.size());
}

Service::Service(const Options& options, nas::Faults& faults)
    : options_(options), faults_(faults), accounts_(options.accounts) {
    if (!options_.stateFolder.empty()) {
        load();
    }
}

int64_t Service::now() const {
    const auto time = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(time).count() + options_.clockOffset * 1000;
}

void Service::load() {
    fs::create_directories(options_.stateFolder);
    std::ifstream in(stateFile());
    if (in) {
        const nlohmann::json state = nlohmann::json::parse(in);
        accounts_.load(state.at("accounts"));
        directory_.load(state.at("devices"));
    }
}

void Service::save() {
    if (options_.stateFolder.empty()) {
        return;
    }
    const std::string text = dumped({{"accounts", accounts_.toJson()}, {"devices", directory_.toJson()}});
    if (text == saved_) {
        return;
    }
    // Written aside and renamed, so that there is never half a file.
    const std::string aside = stateFile() + ".new";
    std::ofstream out(aside, std::ios::trunc);
    out << text;
    out.close();
    if (!out) {
        throw std::runtime_error("cannot write " + aside);
    }
    fs::rename(aside, stateFile());
    saved_ = text;
}

HttpReply Service::serve(const HttpRequest& http) {
    std::lock_guard<std::mutex> lock(mutex_);
    const std::string what = http.method + " " + http.path;
    const bool control = options_.control && http.path.rfind("/control/", 0) == 0;
    if (!control && what != "POST /standin/register") {
        return serveProtocol(http);
    }
    HttpReply reply;
    try {
        const nlohmann::json json =
            control ? runControl(*this, what, http.body, reply.status) : registerDevice(*this, http.body);
        save();
        reply.body = dumped(json);
    } catch (const std::exception& error) {
        reply = {400, dumped({{"error", error.what()}})};
    }
    nas::logLine(what + " http=" + std::to_string(reply.status) +
                 (reply.status == 200 ? "" : " " + reply.body));
    return reply;
}

HttpReply Service::serveProtocol(const HttpRequest& http) {
    nas::LedgerEntry entry;
    entry.method = http.method;
    entry.path = http.path;
    nlohmann::json json;
    try {
        Request request{http, {}, {}, {}};
        const Call& call = findCall(http, request.id);
        entry.func = call.name;
        entry.known = true;
        checkHeaders(http, call);
        readFields(request, call);
        const Answer answer = call.serve(*this, request);
        save();
        entry.status = answer.code;
        entry.user = answer.user;
        entry.reason = answer.note;
        json = answer.json;
    } catch (const OAuthError& error) {
        entry.http = error.http();
        entry.reason = error.what();
        json = errorJson(error.error(), error.what());
    } catch (const Refusal& refusal) {
        entry.http = refusal.http();
        entry.reason = refusal.what();
        json = errorJson("invalid_request", refusal.what());
    } catch (const std::exception& error) {
        entry.http = 500;
        entry.reason = error.what();
        json = errorJson("server_error", error.what());
    }
    ledger_.add(entry);
    std::string line = entry.method + " " + entry.path + " call=" + (entry.func.empty() ? "-" : entry.func) +
                       " app=" + (http.header("X-VEXA-APP-ID").empty() ? "-" : http.header("X-VEXA-APP-ID")) +
                       " user=" + (entry.user.empty() ? "-" : entry.user) +
                       " http=" + std::to_string(entry.http);
    if (entry.status != nas::LedgerEntry::kNoStatus) {
        line += " code=" + std::to_string(entry.status);
    }
    if (entry.http >= 400) {
        line += " refused: " + entry.reason;
    } else if (!entry.reason.empty()) {
        line += " (" + entry.reason + ")";
    }
    nas::logLine(line);
    return {entry.http, dumped(json)};
}

}  // namespace cloud
