#include <gmock/gmock.h>

#include <csignal>
#include <string>

#include "support/nginx.h"
#include "support/process.h"
#include "support/proxy.h"
#include "support/rawserver.h"

using testing::HasSubstr;

TEST(SupportProcess, CollectsOutputErrorAndExitCode) {
    Process::Options options;
    options.environment = {{"TORVI_WORD", "sesame"}};
    options.input = "from outside\n";
    const ProcessResult result =
        runProcess("/bin/sh", {"-c", "cat; echo $TORVI_WORD; echo oops >&2; exit 7"}, options);
    EXPECT_EQ(result.exitCode, 7);
    EXPECT_EQ(result.out, "from outside\nsesame\n");
    EXPECT_EQ(result.err, "oops\n");
}

TEST(SupportProcess, KillsWhatTakesTooLong) {
    EXPECT_EQ(
        runProcess("/bin/sh", {"-c", "sleep 1000 & sleep 1000"}, {}, std::chrono::milliseconds(50)).exitCode,
        -1);
}

TEST(SupportProcess, TellsTheSignalThatEndedIt) {
    Process::Options options;
    options.arguments = {"-c", "echo up; exec sleep 1000"};
    Process process("/bin/sh", options);
    EXPECT_EQ(process.waitForLine("u"), "up");
    process.sendSignal(SIGTERM);
    EXPECT_EQ(process.wait(), 128 + SIGTERM);
}

TEST(SupportProcess, SaysWhenAProgramIsMissing) {
    EXPECT_EQ(runProcess("/no/such/program", {}).exitCode, 127);
}

TEST(SupportProcess, GivesATerminalIfWanted) {
    Process::Options options;
    options.terminal = true;
    const ProcessResult with =
        runProcess("/bin/sh", {"-c", "test -t 0 -a -t 1 -a -t 2 && echo tty"}, options);
    EXPECT_EQ(with.exitCode, 0);
    EXPECT_EQ(with.out, "tty\r\n");
    EXPECT_EQ(runProcess("/bin/sh", {"-c", "test -t 1"}).exitCode, 1);
}

TEST(SupportProxy, CarriesRequestsAndWantsItsCredentials) {
    RawServer server({Reply::text("behind")});
    const auto ask = [&](const TinyProxy& proxy, const std::string& headers) {
        Process::Options options;
        options.arguments = {"-c", "exec 3<>/dev/tcp/127.0.0.1/" + std::to_string(proxy.port()) +
                                       "; printf 'GET http://" + server.authority() + "/x HTTP/1.0\\r\\n" +
                                       headers + "\\r\\n' >&3; cat <&3"};
        return runProcess("/bin/bash", options.arguments).out;
    };
    const TinyProxy open;
    EXPECT_THAT(ask(open, ""), HasSubstr("behind"));
    const TinyProxy closed("me", "secret");
    EXPECT_THAT(ask(closed, ""), HasSubstr("407"));
    EXPECT_EQ(server.requestCount(), 1u);
    EXPECT_THAT(ask(closed, "Proxy-Authorization: Basic bWU6c2VjcmV0\\r\\n"), HasSubstr("behind"));
    EXPECT_TRUE(closed.waitForLog("/x"));
}

TEST(SupportNginx, ServesItsConfiguration) {
    const Nginx nginx(Nginx::configuration("server { listen 127.0.0.1:@PORT@; return 200 \"@WORD@\"; }"),
                      {{"WORD", "sesame"}});
    const std::string target = std::to_string(nginx.port());
    EXPECT_THAT(runProcess("/bin/bash", {"-c", "exec 3<>/dev/tcp/127.0.0.1/" + target +
                                                   "; printf 'GET / HTTP/1.0\\r\\n\\r\\n' >&3; cat <&3"})
                    .out,
                HasSubstr("sesame"));
}
