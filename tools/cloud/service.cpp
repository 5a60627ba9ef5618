#include "service.h"

#include <chrono>
#include <stdexcept>

#include "calls.h"
#include "control.h"
#include "headers.h"
#include "nas/json_text.h"
#include "nas/log.h"
#include "nas/outcome_text.h"
#include "oauth_error.h"
#include "registration.h"
#include "routing.h"

namespace cloud {

namespace {

using nas::Refusal;

nlohmann::json errorJson(const std::string& error, const std::string& why) {
    return {{"error", error}, {"error_description", why}};
}

nas::LedgerEntry entryOf(const HttpRequest& http) {
    nas::LedgerEntry entry;
    entry.method = http.method;
    entry.path = http.path;
    return entry;
}

}  // namespace

Service::Service(const Options& options, nas::Faults& faults)
    : options_(options), faults_(faults), book_(options.stateFolder) {
    book_.change([&](State& state) { state.tokens.keepOnly(accounts()); });
}

int64_t Service::now() const {
    const auto time = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(time).count() + options_.clockOffset * 1000;
}

HttpReply Service::serve(const HttpRequest& http) {
    std::lock_guard<std::mutex> lock(mutex_);
    const std::string what = http.method + " " + http.path;
    const bool control = options_.control && http.path.rfind("/control/", 0) == 0;
    return control || what == "POST /standin/register" ? serveAside(http, what, control)
                                                       : serveProtocol(http);
}

// What is no part of the protocol.
HttpReply Service::serveAside(const HttpRequest& http, const std::string& what, bool control) {
    HttpReply reply;
    try {
        reply.body = nas::dumped(control ? runControl(*this, what, http.body, reply.status)
                                         : registerDevice(*this, http.body));
    } catch (const std::exception& error) {
        reply = {400, nas::dumped({{"error", error.what()}})};
    }
    nas::logLine(what + " http=" + std::to_string(reply.status) +
                 (reply.status == 200 ? "" : " " + reply.body));
    return reply;
}

HttpReply Service::serveProtocol(const HttpRequest& http) {
    nas::LedgerEntry entry = entryOf(http);
    nlohmann::json json;
    try {
        Request request{http, {}, {}, {}};
        const Call& call = findCall(http, request.id);
        entry.func = call.name;
        entry.known = true;
        checkHeaders(http, call);
        readFields(request, call);
        const Answer answer = call.serve(*this, request);
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
    return told(http, entry, json);
}

HttpReply Service::refuse(const HttpRequest& http, const Refusal& refusal) {
    std::lock_guard<std::mutex> lock(mutex_);
    nas::LedgerEntry entry = entryOf(http);
    entry.http = refusal.http();
    entry.reason = refusal.what();
    return told(http, entry, errorJson("invalid_request", refusal.what()));
}

HttpReply Service::told(const HttpRequest& http, const nas::LedgerEntry& entry, const nlohmann::json& json) {
    ledger_.add(entry);
    nas::logLine(nas::orDash(entry.method) + " " + nas::orDash(entry.path) +
                 " call=" + nas::orDash(entry.func) + " app=" + nas::orDash(http.header("X-VEXA-APP-ID")) +
                 nas::outcomeText(entry, "code"));
    return {entry.http, nas::dumped(json)};
}

}  // namespace cloud
