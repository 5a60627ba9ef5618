#include "ledger.h"

namespace nas {

namespace {
constexpr size_t kKept = 2000;
}

void Ledger::add(const LedgerEntry& entry) {
    std::lock_guard<std::mutex> lock(mutex_);
    ++total_;
    // Names that nobody serves share one counter: a client can't make the table grow.
    ++byFunc_[entry.known ? entry.func : "refused"];
    newest_.push_back(entry);
    if (newest_.size() > kKept) {
        newest_.pop_front();
    }
}

void Ledger::clear() {
    std::lock_guard<std::mutex> lock(mutex_);
    newest_.clear();
    byFunc_.clear();
    total_ = 0;
}

nlohmann::json Ledger::toJson() {
    std::lock_guard<std::mutex> lock(mutex_);
    nlohmann::json requests = nlohmann::json::array();
    for (const LedgerEntry& entry : newest_) {
        requests.push_back({{"method", entry.method},
                            {"path", entry.path},
                            {"func", entry.func},
                            {"user", entry.user},
                            {"http", entry.http},
                            {"status", entry.status},
                            {"reason", entry.reason}});
    }
    return {{"total", total_}, {"by_func", byFunc_}, {"requests", requests}};
}

}  // namespace nas
