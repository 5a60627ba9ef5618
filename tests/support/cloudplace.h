#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "support/rawserver.h"

/// Where a test's cloud stands. The calls on the cloud know the ports 80 and 443 only, so each test process
/// takes a loopback address for itself, and tests run in parallel.
namespace wire {

/// The address of this process's cloud, the same each time. None where the ports can't be bound: they want
/// root, or a network namespace of the process's own, which it then moves into.
const std::optional<std::string>& cloudAddress();

/// A fixture, or the base of one, whose tests are skipped where there can't be a cloud.
template <class Base = ::testing::Test>
class CloudTest : public Base {
protected:
    void SetUp() override {
        if (!cloudAddress()) GTEST_SKIP() << "the ports 80 and 443 can't be bound here: run it as root";
        Base::SetUp();
    }
    /// The address as the calls want it.
    static const wchar_t* cloudHost() {
        static const std::wstring host(cloudAddress()->begin(), cloudAddress()->end());
        return host.c_str();
    }
};

/// A scripted server in that place, at port 80, or at port 443 with TLS.
class CloudServer : public RawServer {
public:
    explicit CloudServer(std::vector<Reply> script, bool secure = false)
        : RawServer(std::move(script), place(secure)) {}
    explicit CloudServer(Handler handler, bool secure = false)
        : RawServer(std::move(handler), place(secure)) {}

private:
    static Options place(bool secure);
};

}  // namespace wire

using wire::CloudServer;
using wire::CloudTest;
