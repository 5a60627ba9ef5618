#include <gtest/gtest.h>

#include "support/process.h"
#include "support/rawserver.h"

namespace wire {

// Threads that still end beside the exit handlers free what OpenSSL frees there as well.
TEST(ProcessEndWire, ThreadsOfRequestsAreOverBefore) {
    RawServer::Options options;
    options.certificate = Certificate::SelfSigned;
    const RawServer server({Reply::json("{}")}, options);
    const ProcessResult child = runProcess(EXIT_CHILD_PATH, {std::to_string(server.port())});
    EXPECT_EQ(child.exitCode, 0) << child.err;
    EXPECT_EQ(server.requestCount(), 1u);
    EXPECT_EQ(child.out.substr(child.out.find(" threads")), " threads 0\n") << child.out;
}

}  // namespace wire
