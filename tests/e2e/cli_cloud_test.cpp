#include "cli_cloud.h"
#include "support/proxy.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using Json = nlohmann::json;

namespace {

class CliCloud : public CliCloudBase {};

class CliCloudTimes : public CliCloudBase {
protected:
    CliCloudTimes() : CliCloudBase({"--clock-offset", "3600"}) {}
};

}  // namespace

CLI_CLOUD_ON_ALL_WAYS(CliCloud);
INSTANTIATE_TEST_SUITE_P(Ways, CliCloudTimes, testing::Values(true), cloudWayName);

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

TEST_P(CliCloud, WhatIsReachedInItsOwnNetworkAloneHasNoLink) {
    beAnna();
    Nas::Options served;
    served.arguments = cloud->registration("anna", "Attic", "nas-2");
    served.arguments.push_back("--no-remote-access");
    const Nas attic(served);
    cloud->forgetRequests();
    const Json reach = json({"reach", "nas-2"});
    EXPECT_EQ(reach["lan"], Json::array({attic.address() + ":" + std::to_string(attic.port())}));
    EXPECT_EQ(reach["wan"], Json::array());
    EXPECT_EQ(reach["link"]["code"], 6);
    EXPECT_EQ(reach["ports"], nullptr);
    EXPECT_EQ(cloud->requestCount("port-mapping"), 0) << cloud->log();
    EXPECT_THAT(run({"reach", "nas-2"}).out, HasSubstr("The vlink configuration is not found."));
}

TEST_P(CliCloud, PortsThatAreNotThereAreLookedForTwice) {
    beAnna();
    const Json none = {{"name", "reply"},
                       {"match", "/portMapping/"},
                       {"count", -1},
                       {"content", R"({"return":{"StatusCode":{"code":"200"},"portMapping":[]}})"}};
    const int fault = Json::parse(cloud->control("POST", "faults", none.dump()))["id"];
    EXPECT_EQ(json({"reach", "nas-1"})["ports"]["http"], 0);
    EXPECT_EQ(cloud->hits(fault), 2);
}

TEST_P(CliCloud, LinkAndPortsMayBeToldByAnotherHost) {
    // Nobody listens there: it lies below the addresses that the tests' clouds take.
    const std::string nowhere = "127.0.255.254";
    std::vector<std::string> elsewhere = signinWith("anna-refresh");
    elsewhere.insert(elsewhere.end(), {"--remote-access", nowhere});
    ASSERT_EQ(run(elsewhere).exitCode, 0) << cloud->log();
    const ProcessResult result = run({"reach", "nas-1"}, "");
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_THAT(result.err, HasSubstr("link: cannot connect"));
    EXPECT_EQ(cloud->requestCount("network"), 1);
    EXPECT_EQ(cloud->requestCount("vlink"), 0);
    EXPECT_EQ(json({"reach", "nas-1", "--remote-access", cloud->address()})["link"]["code"], 0);
    EXPECT_EQ(session()["remoteAccess"], nowhere);
}

TEST_P(CliCloud, AHostIsNamedWithoutAPort) {
    for (const char* wrong : {"cloud.example:8443", "https://cloud.example", "::1"}) {
        EXPECT_EQ(run({"signin", "--cloud", wrong, "--client-id", "desk-app"}).exitCode, 2) << wrong;
        EXPECT_EQ(run(signin({"--remote-access", wrong})).exitCode, 2) << wrong;
    }
    EXPECT_EQ(cloud->requestCount(), 0) << cloud->log();
}

TEST_P(CliCloud, AllOfItGoesThroughAProxy) {
    auto proxy = std::make_unique<TinyProxy>();
    std::vector<std::string> through = signinWith("anna-refresh");
    through.insert(through.end(), {"--proxy", "127.0.0.1:" + std::to_string(proxy->port())});
    const ProcessResult signedIn = run(through);
    ASSERT_EQ(signedIn.exitCode, 0) << signedIn.err << proxy->log();
    EXPECT_TRUE(proxy->waitForLog((GetParam() ? "CONNECT " : "POST http://") + cloud->address() + ":"))
        << proxy->log();
    EXPECT_EQ(json({"reach", "nas-1"})["link"]["code"], 0) << proxy->log();
    proxy.reset();
    // It is kept, and not gone around.
    EXPECT_EQ(run({"devices"}).exitCode, 3);
    EXPECT_EQ(run({"devices", "--proxy", "none"}).exitCode, 0);
    EXPECT_EQ(run({"devices"}).exitCode, 3);
}

TEST_P(CliCloud, ACloudThatIsNotThereIsItsOwnExitCode) {
    beAnna();
    cloud->stop();
    EXPECT_EQ(run({"devices"}).exitCode, 3);
    EXPECT_THAT(run({"signout"}).out, HasSubstr("not ended: cloud signout: cannot connect"));
    EXPECT_EQ(kept(), "");
}

TEST_P(CliCloudTimes, AClockThatIsWrongIsAHint) {
    beAnna();
    const ProcessResult result = run({"reach", "nas-1"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.err, AllOf(HasSubstr("X-VEXA-TIME is invalid."), HasSubstr("clock")));
}
