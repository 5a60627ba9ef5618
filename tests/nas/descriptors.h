#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <filesystem>
#include <set>
#include <string>

/// Leaves a running process only so many more descriptors than it has, for as long as this lives.
class FewDescriptors {
public:
    FewDescriptors(int pid, int more) : m_pid(pid) {
        EXPECT_EQ(0, ::prlimit(m_pid, RLIMIT_NOFILE, nullptr, &m_before));
        set({limitFor(more), m_before.rlim_max});
    }
    ~FewDescriptors() { set(m_before); }
    FewDescriptors(const FewDescriptors&) = delete;
    FewDescriptors& operator=(const FewDescriptors&) = delete;

private:
    rlim_t limitFor(int more) const {
        std::set<int> used;
        for (const auto& entry :
             std::filesystem::directory_iterator("/proc/" + std::to_string(m_pid) + "/fd")) {
            used.insert(std::stoi(entry.path().filename().string()));
        }
        int limit = 0;
        for (int left = more; left > 0; ++limit) left -= used.count(limit) == 0 ? 1 : 0;
        return static_cast<rlim_t>(limit);
    }
    void set(const rlimit& limits) const { EXPECT_EQ(0, ::prlimit(m_pid, RLIMIT_NOFILE, &limits, nullptr)); }

    const int m_pid;
    rlimit m_before = {};
};
