#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>

namespace nas {

struct LedgerEntry {
    std::string method;
    std::string path;
    std::string func;
    bool known = false;  // there is such a call
    std::string user;
    int http = 200;
    static constexpr int kNoStatus = -1;
    int status = kNoStatus;  // the reply's "status"
    std::string reason;
};

// What was asked of the server so far: counts for ever, the newest entries in full.
class Ledger {
public:
    void add(const LedgerEntry& entry);
    void clear();
    nlohmann::json toJson();

private:
    std::mutex mutex_;
    std::deque<LedgerEntry> newest_;
    std::map<std::string, int64_t> byFunc_;
    int64_t total_ = 0;
};

}  // namespace nas
