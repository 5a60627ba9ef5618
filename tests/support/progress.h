#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <ostream>
#include <vector>

/// Every call of a progress callback, and what it answers.
struct Progress {
    struct Call {
        int64_t total, transferred, streamSize, streamTransferred;
        uint32_t streamNumber, reason;
        bool operator==(const Call& o) const {
            return total == o.total && transferred == o.transferred && streamSize == o.streamSize &&
                   streamTransferred == o.streamTransferred && streamNumber == o.streamNumber &&
                   reason == o.reason;
        }
    };
    std::vector<Call> calls;
    /// The verdict on a call, by its number.
    std::function<uint32_t(size_t number, const Call& call)> verdict = [](size_t, const Call&) { return 0u; };

    static uint32_t callback(int64_t total, int64_t transferred, int64_t streamSize,
                             int64_t streamTransferred, uint32_t streamNumber, uint32_t reason, void* source,
                             void* destination, void* data) {
        EXPECT_EQ(source, nullptr);
        EXPECT_EQ(destination, nullptr);
        auto& self = *static_cast<Progress*>(data);
        self.calls.push_back({total, transferred, streamSize, streamTransferred, streamNumber, reason});
        return self.verdict(self.calls.size() - 1, self.calls.back());
    }
};

inline std::ostream& operator<<(std::ostream& out, const Progress::Call& call) {
    return out << "(" << call.total << ", " << call.transferred << ", " << call.streamSize << ", "
               << call.streamTransferred << ", " << call.streamNumber << ", " << call.reason << ")";
}
