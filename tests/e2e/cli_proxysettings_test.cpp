#include "cli_support.h"
#include "support/programs.h"
#include "support/proxy.h"
#include "support/rawserver.h"

using testing::HasSubstr;
using testing::Not;
using Json = nlohmann::json;

namespace {

class CliProxySettings : public CliTest {
protected:
    std::string address() const { return "127.0.0.1:" + std::to_string(proxy.port()); }
    ProcessResult run(std::vector<std::string> arguments, const std::string& password = "letmein") const {
        Process::Options options = cli.options();
        options.environment["TORVI_PROXY_PASSWORD"] = password;
        return runProcess(kTorvi, std::move(arguments), options);
    }
    std::string profile() const { return cli.state().read("torvi/profile.json"); }

    TinyProxy proxy{"jo", "letmein"};
};

}  // namespace

TEST_F(CliProxySettings, WithoutAProfileThereIsNowhereToKeepOne) {
    const ProcessResult result = run({"proxy"});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_THAT(result.err, HasSubstr("torvi login"));
}

TEST_F(CliProxySettings, OneThatIsSetServesLaterCommandsUntilItIsCleared) {
    ASSERT_EQ(cli.run({"login"}).exitCode, 0);
    EXPECT_EQ(run({"proxy"}).out, "Proxy: none\n");
    ProcessResult result = run({"proxy", "set", address(), "--proxy-user", "jo"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out, "Proxy: " + address() + ", as jo\n");
    EXPECT_THAT(profile(), Not(HasSubstr("letmein")));

    result = run({"stat", "/home"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_TRUE(proxy.waitForLog("http://127.0.0.1:" + std::to_string(nas.port()))) << proxy.log();
    EXPECT_EQ(run({"stat", "/home"}, "wrong").exitCode, 3);

    ASSERT_EQ(run({"proxy", "clear"}).exitCode, 0);
    EXPECT_EQ(run({"stat", "/home"}, "wrong").exitCode, 0);
    EXPECT_EQ(Json::parse(run({"proxy", "show", "--json"}).out)["proxy"], "none");
}

TEST_F(CliProxySettings, ThePasswordIsKeptOnRequest) {
    ASSERT_EQ(cli.run({"login"}).exitCode, 0);
    const ProcessResult result =
        run({"proxy", "set", address(), "--proxy-user", "jo", "--save-password", "--json"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(Json::parse(result.out)["passwordSaved"], true);
    EXPECT_EQ(run({"stat", "/home"}, "").exitCode, 0);
}

TEST_F(CliProxySettings, WhatIsNoProxyIsRefusedAndChangesNothing) {
    ASSERT_EQ(cli.run({"login"}).exitCode, 0);
    const std::string before = profile();
    EXPECT_EQ(run({"proxy", "set", "nonsense"}).exitCode, 2);
    EXPECT_EQ(run({"proxy", "set"}).exitCode, 2);
    EXPECT_EQ(run({"proxy", "turn"}).exitCode, 2);
    EXPECT_EQ(profile(), before);
}

TEST_F(CliProxySettings, TheTestTellsWhetherItLeadsToTheServer) {
    const std::vector<std::string> server = {"--server", "127.0.0.1", "--port", std::to_string(nas.port())};
    const auto test = [&](std::vector<std::string> arguments, const std::string& password) {
        arguments.insert(arguments.begin(), {"proxy", "test"});
        arguments.insert(arguments.end(), server.begin(), server.end());
        return run(arguments, password);
    };
    const ProcessResult good = test({address(), "--proxy-user", "jo"}, "letmein");
    EXPECT_EQ(good.exitCode, 0) << good.err;
    EXPECT_THAT(good.out, HasSubstr("answers, through " + address()));

    const ProcessResult refused = test({address(), "--proxy-user", "jo"}, "wrong");
    EXPECT_EQ(refused.exitCode, 3);
    EXPECT_THAT(refused.err, HasSubstr("WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ"));

    EXPECT_EQ(test({"127.0.0.1:" + std::to_string(wire::freePort())}, "").exitCode, 3);
    EXPECT_THAT(test({"none"}, "").out, HasSubstr("without a proxy"));
    EXPECT_EQ(nas.requestCount("login"), 0);
}
