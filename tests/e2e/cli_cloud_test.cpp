#include <sys/stat.h>

#include <fstream>
#include <optional>

#include "cli_support.h"
#include "support/cloud.h"
#include "support/cloudplace.h"

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using Json = nlohmann::json;

namespace {

/// A cloud at the ports that its clients know, a NAS that is listed there as anna's, and the command line.
class CliCloud : public CloudTest<testing::TestWithParam<bool>> {
protected:
    explicit CliCloud(std::vector<std::string> more = {}) : m_more(std::move(more)) {}

    void SetUp() override {
        CloudTest::SetUp();
        if (IsSkipped()) return;
        Cloud::Options options;
        options.address = *wire::cloudAddress();
        options.clientPorts = true;
        options.arguments = m_more;
        cloud.emplace(options);
        Nas::Options served;
        served.arguments = cloud->registration("anna", "My cellar", "nas-1");
        served.arguments.insert(served.arguments.end(),
                                {"--external-address", "198.51.100.4", "--external-port", "8081",
                                 "--ddns-name", "cellar.example"});
        nas.emplace(served);
        cli.emplace(*nas);
    }

    ProcessResult run(std::vector<std::string> arguments, const std::string& secret = "desk-secret") const {
        return runProcess(TORVI_PATH, whole(std::move(arguments)), options(secret));
    }
    Json json(std::vector<std::string> arguments) const {
        arguments.push_back("--json");
        const ProcessResult result = run(arguments, "");
        EXPECT_EQ(result.exitCode, 0) << arguments[0] << ": " << result.err << cloud->log();
        return Json::parse(result.out, nullptr, false);
    }
    static std::vector<std::string> whole(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "cloud");
        return arguments;
    }
    Process::Options options(const std::string& secret) const {
        Process::Options options = cli->options();
        options.environment["TORVI_CLOUD"] = "";
        options.environment["TORVI_CLIENT_ID"] = "";
        options.environment["TORVI_CLIENT_SECRET"] = secret;
        return options;
    }

    std::vector<std::string> signin(std::vector<std::string> more = {}) const {
        more.insert(more.begin(), {"signin", "--cloud", cloud->address(), "--client-id", "desk-app"});
        if (!GetParam()) more.push_back("--no-tls");
        return more;
    }
    /// As the user of that refresh token.
    ProcessResult signinAs(const std::string& token) const {
        return run(signin({"--refresh-token-file", cli->work().write("token", token + "\n")}));
    }
    void beAnna() const {
        const ProcessResult result = signinAs("anna-refresh");
        ASSERT_EQ(result.exitCode, 0) << result.err << cloud->log();
    }
    /// The file of the session.
    std::string kept() const {
        const auto folder = cli->state().path() / "torvi/cloud";
        if (!std::filesystem::exists(folder)) return {};
        for (const auto& file : std::filesystem::directory_iterator(folder)) return file.path().string();
        return {};
    }

    std::optional<Cloud> cloud;
    std::optional<Nas> nas;
    std::optional<Cli> cli;

    Json session() const { return Json::parse(std::ifstream(kept())); }

private:
    std::vector<std::string> m_more;
};

class CliCloudRotating : public CliCloud {
protected:
    CliCloudRotating() : CliCloud({"--rotate"}) {}
};

class CliCloudTimes : public CliCloud {
protected:
    CliCloudTimes() : CliCloud({"--clock-offset", "3600"}) {}
};

std::string wayName(const testing::TestParamInfo<bool>& info) {
    return info.param ? "Tls" : "Http";
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Ways, CliCloud, testing::Bool(), wayName);
INSTANTIATE_TEST_SUITE_P(Ways, CliCloudRotating, testing::Bool(), wayName);
INSTANTIATE_TEST_SUITE_P(Ways, CliCloudTimes, testing::Values(true), wayName);

TEST_P(CliCloud, AUserSignsInAndTheSessionIsKeptForItsOwnerAlone) {
    const ProcessResult result = signinAs("anna-refresh");
    ASSERT_EQ(result.exitCode, 0) << result.err << cloud->log();
    EXPECT_EQ(result.out, "Signed in to " + cloud->address() + " as Anna Berg <anna@example.org>\n");
    struct stat status = {};
    ASSERT_EQ(::stat(kept().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600u);
    const Json who = json({"whoami"});
    EXPECT_EQ(who["userId"], "anna");
    EXPECT_EQ(who["email"], "anna@example.org");
    EXPECT_EQ(who["refreshable"], true);
    EXPECT_GT(who["expiresIn"], 0);
    EXPECT_EQ(cloud->requestCount("refused"), 0) << cloud->log();
}

TEST_P(CliCloud, AnApplicationSignsInForItself) {
    const ProcessResult result = run(signin());
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("the application itself"));
    EXPECT_EQ(json({"whoami"})["userId"], nullptr);
    EXPECT_EQ(json({"public-ip"})["address"], "203.0.113.7");
    const ProcessResult devices = run({"devices"});
    EXPECT_EQ(devices.exitCode, 1);
    EXPECT_THAT(devices.err, HasSubstr("result 3"));
}

TEST_P(CliCloud, WhatTheCloudSaysOfARefusalIsTold) {
    const ProcessResult secret = run(signin(), "guess");
    EXPECT_EQ(secret.exitCode, 4);
    EXPECT_THAT(secret.err, AllOf(HasSubstr("The client secret is wrong."), HasSubstr("invalid_client")));
    const ProcessResult token = signinAs("guess");
    EXPECT_EQ(token.exitCode, 4);
    EXPECT_THAT(token.err, HasSubstr("The refresh token is unknown or expired."));
    EXPECT_EQ(kept(), "");
}

TEST_P(CliCloud, WithoutASessionNothingIsAsked) {
    const ProcessResult nothing = run({"devices"});
    EXPECT_EQ(nothing.exitCode, 2);
    EXPECT_THAT(nothing.err, HasSubstr("torvi cloud signin"));
    const ProcessResult noToken = run({"devices", "--cloud", cloud->address(), "--client-id", "desk-app"});
    EXPECT_EQ(noToken.exitCode, 4);
    EXPECT_EQ(run({"signout"}).exitCode, 0);
    std::vector<std::string> alone = whole(signin());
    alone.insert(alone.begin(), {"--wait", TORVI_PATH});
    EXPECT_EQ(runProcess(findProgram("setsid"), alone, options("")).exitCode, 2);
    EXPECT_EQ(cloud->requestCount(), 0) << cloud->log();
}

TEST_P(CliCloud, TheSecretIsAskedForWithoutAnEcho) {
    Process::Options asked = options("");
    asked.arguments = whole(signin());
    asked.terminal = true;
    Process process(TORVI_PATH, asked);
    ASSERT_TRUE(process.waitFor([](const std::string& out, const std::string&) {
        return out.find("Secret of the application desk-app") != out.npos;
    }));
    process.write("desk-secret\n");
    EXPECT_EQ(process.wait(), 0) << process.out();
    EXPECT_THAT(process.out(), Not(HasSubstr("desk-secret")));
}

TEST_P(CliCloud, DevicesAreListedAndFoundByTheirName) {
    beAnna();
    const ProcessResult table = run({"devices"});
    EXPECT_EQ(table.exitCode, 0) << table.err;
    EXPECT_THAT(table.out, AllOf(HasSubstr("My cellar"), HasSubstr("nas-1"), HasSubstr(nas->address())));
    EXPECT_EQ(run({"devices", "--count"}).out, "1\n");
    const Json listed = json({"devices"});
    ASSERT_EQ(listed["count"], 1);
    const Json found = json({"device", "My cellar"});
    EXPECT_EQ(found["devices"], listed["devices"]);
    const Json& device = found["devices"][0];
    EXPECT_EQ(device["id"], "nas-1");
    EXPECT_EQ(device["lan"], Json::array({nas->address()}));
    EXPECT_EQ(device["services"][0]["internalPort"], nas->port());
    EXPECT_EQ(device["token"], nullptr);
    EXPECT_TRUE(json({"device", "My cellar", "--secrets"})["devices"][0]["token"].is_string());
    EXPECT_THAT(run({"device", "My cellar"}).out, HasSubstr("WebAdministration"));
    EXPECT_EQ(run({"device", "Attic"}).exitCode, 5);
    EXPECT_EQ(cloud->requestCount("refused"), 0) << cloud->log();
}

TEST_P(CliCloud, AnAddressFromTheCloudLeadsToALogin) {
    beAnna();
    const Json reach = json({"reach", "nas-1"});
    ASSERT_EQ(reach["lan"], Json::array({nas->address() + ":" + std::to_string(nas->port())})) << reach;
    EXPECT_EQ(reach["wan"], Json::array({"198.51.100.4:8081"}));
    EXPECT_EQ(reach["ddns"], Json::array({"cellar.example:8081"}));
    EXPECT_EQ(reach["link"]["code"], 0);
    EXPECT_EQ(reach["link"]["lan"], nas->address());
    EXPECT_EQ(reach["ports"]["http"], nas->port());
    EXPECT_EQ(reach["ports"]["externalHttp"], 8081);
    // The user's own NAS, without being named.
    EXPECT_EQ(json({"reach"})["device"], "nas-1");
    const std::string address = reach["lan"][0];
    EXPECT_THAT(run({"reach", "nas-1"}).out,
                AllOf(HasSubstr(address), HasSubstr("HTTP " + std::to_string(nas->port())),
                      HasSubstr("198.51.100.4:8081")));

    const ProcessResult login = cli->runBare({"login", "-s", address, "--user", "anna"});
    ASSERT_EQ(login.exitCode, 0) << login.err;
    EXPECT_EQ(cli->runBare({"stat", "/home"}).exitCode, 0);
    EXPECT_EQ(cli->runBare({"stat", "/home", "-s", address}).exitCode, 0);
    EXPECT_EQ(nas->requestCount("login"), 1);
}

TEST_P(CliCloud, WithoutTheSecretLinkAndPortsAreLeftOut) {
    beAnna();
    const std::string token = session()["accessToken"];
    std::filesystem::remove(kept());
    std::vector<std::string> arguments = {"reach",
                                          "nas-1",
                                          "--cloud",
                                          cloud->address(),
                                          "--client-id",
                                          "desk-app",
                                          "--access-token-file",
                                          cli->work().write("access", token)};
    if (!GetParam()) arguments.push_back("--no-tls");
    const ProcessResult result = run(arguments, "");
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_THAT(result.out, AllOf(HasSubstr("198.51.100.4:8081"), HasSubstr("only to who has"),
                                  Not(HasSubstr("remote access"))));
    EXPECT_EQ(kept(), "");
}

TEST_P(CliCloud, WhatTheCloudDoesNotKnowIsRefused) {
    beAnna();
    const ProcessResult result = run({"reach", "nas-2"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.err, HasSubstr("result 5"));
    cloud->control("POST", "users/suspend", R"({"user":"anna"})");
    const ProcessResult suspended = run({"devices"});
    EXPECT_EQ(suspended.exitCode, 1);
    EXPECT_THAT(suspended.err, HasSubstr("result 4"));
}

TEST_P(CliCloudRotating, AnExpiredTokenIsRefreshedOnceAndKept) {
    beAnna();
    const Json before = session();
    cloud->expireTokens();
    cloud->forgetRequests();
    EXPECT_EQ(json({"devices"})["count"], 1);
    EXPECT_EQ(cloud->requestCount("token"), 1) << cloud->log();
    const Json after = session();
    EXPECT_NE(after["accessToken"], before["accessToken"]);
    EXPECT_NE(after["refreshToken"], before["refreshToken"]);
    EXPECT_EQ(json({"devices"})["count"], 1);
    EXPECT_EQ(cloud->requestCount("token"), 1) << cloud->log();
    cloud->expireTokens();
    EXPECT_EQ(json({"whoami"})["userId"], "anna");
    EXPECT_EQ(json({"refresh"})["userId"], "anna");
}

TEST_P(CliCloudRotating, WhereTheRefreshTokenIsOverTooOneMustSignInAgain) {
    beAnna();
    Json changed = session();
    changed["refreshToken"] = "anna-refresh";
    std::ofstream(kept()) << changed;
    cloud->expireTokens();
    const ProcessResult over = run({"devices"});
    EXPECT_EQ(over.exitCode, 4);
    EXPECT_THAT(over.err, HasSubstr("The refresh token is unknown or expired."));
    changed["refreshToken"] = "";
    std::ofstream(kept()) << changed;
    const ProcessResult none = run({"devices"});
    EXPECT_EQ(none.exitCode, 4);
    EXPECT_THAT(none.err, AllOf(HasSubstr("The access token is unknown or expired."), HasSubstr("signin")));
    EXPECT_EQ(run({"refresh"}).exitCode, 4);
}

TEST_P(CliCloud, ASignOutEndsTheTokenAndForgetsIt) {
    beAnna();
    const Json out = json({"signout"});
    EXPECT_EQ(out["signedIn"], true);
    EXPECT_EQ(out["ended"], true);
    EXPECT_EQ(kept(), "");
    EXPECT_EQ(signinAs("anna-refresh").exitCode, 4);
    EXPECT_EQ(json({"signout"})["signedIn"], false);
}

TEST_P(CliCloud, ACloudThatIsNotThereIsItsOwnExitCode) {
    beAnna();
    cloud->stop();
    EXPECT_EQ(run({"devices"}).exitCode, 3);
    const Json out = json({"signout"});
    EXPECT_EQ(out["ended"], false);
    EXPECT_EQ(kept(), "");
}

TEST_P(CliCloudTimes, AClockThatIsWrongIsAHint) {
    beAnna();
    const ProcessResult result = run({"reach", "nas-1"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.err, AllOf(HasSubstr("X-VEXA-TIME is invalid."), HasSubstr("clock")));
}
