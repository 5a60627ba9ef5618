#pragma once

#include <mutex>

#include "http_request.h"
#include "nas/ledger.h"
#include "nas/status.h"
#include "options.h"
#include "state.h"

namespace cloud {

// The protocol: finds the call that a request is, checks that it is exactly that call, runs it and answers.
class Service {
public:
    Service(const Options& options, nas::Faults& faults);

    HttpReply serve(const HttpRequest& http);
    // Answers a request that isn't HTTP, as far as it was read.
    HttpReply refuse(const HttpRequest& http, const nas::Refusal& refusal);

    // One request at a time: what follows is for the call or the control request that runs.
    const Options& options() const { return options_; }
    const Accounts& accounts() const { return options_.accounts; }
    StateBook& book() { return book_; }
    nas::Faults& faults() { return faults_; }
    nas::Ledger& ledger() { return ledger_; }
    // Milliseconds since the epoch by the cloud's clock.
    int64_t now() const;

private:
    HttpReply serveProtocol(const HttpRequest& http);
    HttpReply serveAside(const HttpRequest& http, const std::string& what, bool control);
    HttpReply told(const HttpRequest& http, const nas::LedgerEntry& entry, const nlohmann::json& json);

    const Options& options_;
    nas::Faults& faults_;
    nas::Ledger ledger_;
    std::mutex mutex_;
    StateBook book_;
};

}  // namespace cloud
