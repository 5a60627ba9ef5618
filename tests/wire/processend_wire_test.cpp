#include <gtest/gtest.h>

#include "support/process.h"
#include "support/rawserver.h"

namespace wire {

// Threads that still end beside the exit handlers free what OpenSSL frees there as well.
TEST(ProcessEndWire, ThreadsOfRequestsAreOverBefore) {
    RawServer::Options options;
    options.certificate = Certificate::SelfSigned;
    // An answer that isn't logged: the end of the logger's thread is waited for.
    const RawServer server({Reply::json(R"({"version":"4.1.0","build":"20260101"})")}, options);
    const ProcessResult child = runProcess(EXIT_CHILD_PATH, {std::to_string(server.port())});
    EXPECT_EQ(child.exitCode, 0) << child.err;
    EXPECT_EQ(child.out, "dwStatus 0 threads 0\n");
}

}  // namespace wire
