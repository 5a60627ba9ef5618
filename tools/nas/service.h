#pragma once

#include <httplib.h>

#include <atomic>

#include "change_log.h"
#include "device_book.h"
#include "disk_space.h"
#include "faults.h"
#include "jobs.h"
#include "ledger.h"
#include "locks.h"
#include "mailbox.h"
#include "nodes.h"
#include "options.h"
#include "partials.h"
#include "request.h"
#include "second_factor.h"
#include "sessions.h"
#include "shares.h"
#include "sync_runs.h"
#include "tree.h"

namespace nas {

struct Call;

// The protocol: finds the call that a request is, checks that it is exactly that call, runs it and answers.
class Service {
public:
    Service(const Options& options, Faults& faults);

    // The ports that clients see.
    void setPorts(int http, int tls);
    void serve(const httplib::Request& http, httplib::Response& response, const httplib::ContentReader* body);

    const Options& options() const { return options_; }
    Shares& shares() { return shares_; }
    Kept<DeviceBook>& devices() { return devices_; }
    const Tree& tree() const { return tree_; }
    Sessions& sessions() { return sessions_; }
    SecondSteps& secondSteps() { return secondSteps_; }
    Mailbox& mailbox() { return mailbox_; }
    Locks& locks() { return locks_; }
    ChangeLog& changeLog() { return changeLog_; }
    SyncRuns& syncRuns() { return syncRuns_; }
    FolderSizes& folderSizes() { return folderSizes_; }
    const Nodes& nodes() const { return nodes_; }
    Partials& partials() { return partials_; }
    Jobs& jobs() { return jobs_; }
    Faults& faults() { return faults_; }
    Ledger& ledger() { return ledger_; }
    int httpPort() const { return httpPort_; }
    int tlsPort() const { return tlsPort_; }

    // As the user comes by way of this endpoint; null for an unknown name.
    const User* findUser(Endpoint endpoint, const std::string& name) const;

    // While it boots, the sync service isn't there yet.
    bool booting() const { return booting_; }
    void endBoot() { booting_ = false; }

    // The user whose session this is; StatusError(NotAuthenticated) if there is none.
    const User& authenticate(Request& request, const std::string& sid);
    // A fault of this kind that is armed for the request; it takes effect now.
    std::optional<Fault> fault(FaultKind kind, const Request& request);

private:
    void serveCall(Request& request, httplib::Response& response, LedgerEntry& entry);
    Endpoint findEndpoint(const std::string& path) const;
    bool sendToTls(const Request& request, const Call& call, httplib::Response& response) const;

    const Options& options_;
    const Users managerUsers_;
    Faults& faults_;
    Shares shares_;
    Kept<DeviceBook> devices_;
    Tree tree_;
    Sessions sessions_;
    SecondSteps secondSteps_;
    Mailbox mailbox_;
    std::atomic<bool> booting_;
    Partials partials_;
    ChangeLog changeLog_;
    SyncRuns syncRuns_;
    FolderSizes folderSizes_;
    Nodes nodes_;
    Locks locks_;
    Ledger ledger_;
    int httpPort_ = 0;
    int tlsPort_ = 0;
    Jobs jobs_;  // the last: its threads use the rest
};

// Reads the rest of a body and drops it, so that the reply isn't lost in a reset.
void drain(const httplib::ContentReader* body);

// Reads a form body and decodes it. One key may come more than once, if it is named here.
Fields readForm(Request& request, const std::string& repeating = {});

}  // namespace nas
