#pragma once

#include <mutex>

#include "accounts.h"
#include "directory.h"
#include "http_server.h"
#include "nas/ledger.h"
#include "options.h"

namespace cloud {

// The protocol: finds the call that a request is, checks that it is exactly that call, runs it and answers.
class Service {
public:
    Service(const Options& options, nas::Faults& faults);

    HttpReply serve(const HttpRequest& http);

    // One request at a time: what follows is for the call or the control request that runs.
    const Options& options() const { return options_; }
    Accounts& accounts() { return accounts_; }
    Directory& directory() { return directory_; }
    nas::Faults& faults() { return faults_; }
    nas::Ledger& ledger() { return ledger_; }
    // Milliseconds since the epoch by the cloud's clock.
    int64_t now() const;

private:
    HttpReply serveProtocol(const HttpRequest& http);
    std::string stateFile() const { return options_.stateFolder + "/cloud.json"; }
    void load();
    void save();

    const Options& options_;
    nas::Faults& faults_;
    nas::Ledger ledger_;
    std::mutex mutex_;
    Accounts accounts_;
    Directory directory_;
    std::string saved_;
};

}  // namespace cloud
