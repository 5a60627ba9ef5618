#include "cli_support.h"
#include "support/programs.h"
#include "support/proxy.h"
#include "support/rawserver.h"

using testing::HasSubstr;
using testing::Not;

namespace {

class CliProxy : public CliTest, public testing::WithParamInterface<bool> {
protected:
    bool tls() const { return GetParam(); }
    std::string proxyAddress() const { return "127.0.0.1:" + std::to_string(proxy.port()); }

    ProcessResult run(std::vector<std::string> arguments, const std::string& password = "letmein") {
        Process::Options options = cli.options();
        options.environment["TORVI_PROXY_PASSWORD"] = password;
        arguments.insert(arguments.end(), {"--proxy", proxyAddress(), "--proxy-user", "jo"});
        return runProcess(kTorvi, cli.connected(std::move(arguments), tls()), options);
    }
    /// What the proxy notes of a request that goes through it.
    std::string passage(const std::string& method) const {
        return tls() ? "CONNECT 127.0.0.1:" + std::to_string(nas.tlsPort())
                     : method + " http://127.0.0.1:" + std::to_string(nas.port());
    }

    TinyProxy proxy{"jo", "letmein"};
};

}  // namespace

TEST_P(CliProxy, EveryCommandGoesThroughIt) {
    const std::string bytes = randomBytes(200000);
    cli.work().write("a.bin", bytes);
    ProcessResult result = run({"put", "a.bin", "/home/"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_TRUE(nas.folder().read(home + "a.bin") == bytes);
    EXPECT_TRUE(proxy.waitForLog(passage("POST"))) << proxy.log();
    result = run({"ls", "/home"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("a.bin"));
    EXPECT_TRUE(proxy.waitForLog(passage("GET"))) << proxy.log();
    result = run({"get", "/home/a.bin", "back"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_TRUE(cli.work().read("back") == bytes);
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(CliProxy, AProxyThatIsGoneIsNotGoneAround) {
    const std::string address = "127.0.0.1:" + std::to_string(wire::freePort());
    const ProcessResult result = cli.run({"stat", "/home", "--proxy", address}, tls());
    EXPECT_EQ(result.exitCode, 3) << result.err;
    EXPECT_EQ(nas.requestCount(), 0);
}

TEST_P(CliProxy, WrongCredentialsAreTheProxysRefusal) {
    const ProcessResult result = run({"stat", "/home"}, "wrong");
    EXPECT_EQ(result.exitCode, 3) << result.err;
    EXPECT_THAT(result.err, HasSubstr("WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ"));
    EXPECT_EQ(nas.requestCount(), 0);
}

TEST_P(CliProxy, TheProfileKeepsTheProxyButNotItsPassword) {
    ASSERT_EQ(run({"login"}).exitCode, 0);
    EXPECT_THAT(cli.state().read("torvi/profile.json"), Not(HasSubstr("letmein")));
    Process::Options options = cli.options();
    options.environment["TORVI_PROXY_PASSWORD"] = "letmein";
    const ProcessResult result = runProcess(kTorvi, {"stat", "/home"}, options);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    options.environment["TORVI_PROXY_PASSWORD"] = "wrong";
    EXPECT_EQ(runProcess(kTorvi, {"stat", "/home"}, options).exitCode, 3);
    options.environment["TORVI_PROXY_PASSWORD"] = "";
    EXPECT_EQ(runProcess(kTorvi, {"stat", "/home", "--proxy", "none"}, options).exitCode, 0);
}

INSTANTIATE_TEST_SUITE_P(Schemes, CliProxy, testing::Bool(),
                         [](const auto& info) { return info.param ? "Tls" : "Http"; });
