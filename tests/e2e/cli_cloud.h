#pragma once

#include <fstream>
#include <optional>

#include "cli_support.h"
#include "support/cloud.h"
#include "support/cloudplace.h"
#include "support/programs.h"

/// A cloud at the ports that its clients know, a NAS that is listed there as anna's, and the command line.
class CliCloudBase : public CloudTest<testing::TestWithParam<bool>> {
protected:
    explicit CliCloudBase(std::vector<std::string> more = {}) : m_more(std::move(more)) {}

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
        return runProcess(kTorvi, whole(std::move(arguments)), options(secret));
    }
    nlohmann::json json(std::vector<std::string> arguments) const {
        arguments.push_back("--json");
        const ProcessResult result = run(arguments, "");
        EXPECT_EQ(result.exitCode, 0) << arguments[0] << ": " << result.err << cloud->log();
        return nlohmann::json::parse(result.out, nullptr, false);
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
    std::vector<std::string> signinWith(const std::string& token) const {
        return signin({"--refresh-token-file", cli->work().write("token", token + "\n")});
    }
    ProcessResult signinAs(const std::string& token) const { return run(signinWith(token)); }
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

    nlohmann::json session() const { return nlohmann::json::parse(std::ifstream(kept())); }

private:
    std::vector<std::string> m_more;
};

/// Over HTTPS and over HTTP.
inline std::string cloudWayName(const testing::TestParamInfo<bool>& info) {
    return info.param ? "Tls" : "Http";
}
#define CLI_CLOUD_ON_ALL_WAYS(suite) INSTANTIATE_TEST_SUITE_P(Ways, suite, testing::Bool(), cloudWayName)
