#include <sys/stat.h>

#include <atomic>
#include <csignal>

#include "cli_cloud.h"
#include "support/programs.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using Json = nlohmann::json;

namespace {

class CliCloudTokens : public CliCloudBase {
protected:
    std::string empty() const { return cli->work().write("empty", "\n"); }
};

class CliCloudRotating : public CliCloudBase {
protected:
    CliCloudRotating() : CliCloudBase({"--rotate"}) {}

    /// The kept session without its tokens.
    Json terms() const {
        Json json = session();
        json.erase("accessToken");
        json.erase("refreshToken");
        return json;
    }
};

/// A cloud that numbers the tokens that it gives, and holds those beyond the first ones until it is told.
class CliCloudHeld : public CloudTest<testing::Test> {
protected:
    static constexpr int kNone = 1000;

    void SetUp() override {
        CloudTest::SetUp();
        if (IsSkipped()) return;
        server.emplace([this](const wire::Request& request) { return answer(request); });
    }

    /// Starts the command and interrupts it while the tokens are on their way.
    int interrupt(std::vector<std::string> arguments) {
        Process::Options options = base();
        options.arguments = std::move(arguments);
        const std::size_t before = server->requestCount();
        Process process(kTorvi, options);
        EXPECT_TRUE(server->waitForRequests(before + 1)) << process.err();
        process.sendSignal(SIGINT);
        server->release();
        return process.wait();
    }
    std::vector<std::string> signin() const {
        return {"cloud",
                "signin",
                "--cloud",
                *wire::cloudAddress(),
                "--no-tls",
                "--client-id",
                "desk-app",
                "--refresh-token-file",
                m_work.write("token", "token-0\n")};
    }
    Process::Options base() const {
        Process::Options options;
        options.environment = {{"XDG_STATE_HOME", m_work.string()},
                               {"TORVI_CLOUD", ""},
                               {"TORVI_CLIENT_ID", ""},
                               {"TORVI_CLIENT_SECRET", "desk-secret"},
                               {"LC_ALL", "C"}};
        return options;
    }
    std::string refreshToken() const {
        for (const auto& file : std::filesystem::directory_iterator(m_work.path() / "torvi/cloud"))
            return Json::parse(std::ifstream(file.path()))["refreshToken"];
        return {};
    }

    std::atomic<int> heldFrom{kNone};
    std::optional<CloudServer> server;

private:
    Reply answer(const wire::Request& request) {
        if (request.path() != "/oauth/token") return Reply::json(R"({"expires_in":60,"user_id":"anna"})");
        const std::string number = std::to_string(++m_given);
        Reply reply = Reply::json(R"({"access_token":"access-)" + number + R"(","refresh_token":"token-)" +
                                  number + R"("})");
        return m_given >= heldFrom ? reply.held() : reply;
    }

    TempDir m_work;
    int m_given = 0;
};

}  // namespace

CLI_CLOUD_ON_ALL_WAYS(CliCloudTokens);
CLI_CLOUD_ON_ALL_WAYS(CliCloudRotating);

TEST_P(CliCloudTokens, AUserSignsInAndTheSessionIsKeptForItsOwnerAlone) {
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

TEST_P(CliCloudTokens, AnApplicationSignsInForItself) {
    const ProcessResult result = run(signin());
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("the application itself"));
    EXPECT_EQ(json({"whoami"})["userId"], nullptr);
    EXPECT_EQ(json({"public-ip"})["address"], "203.0.113.7");
    const ProcessResult devices = run({"devices"});
    EXPECT_EQ(devices.exitCode, 1);
    EXPECT_THAT(devices.err, HasSubstr("result 3"));
}

TEST_P(CliCloudTokens, WhatTheCloudSaysOfARefusalIsTold) {
    const ProcessResult secret = run(signin(), "guess");
    EXPECT_EQ(secret.exitCode, 4);
    EXPECT_THAT(secret.err, AllOf(HasSubstr("The client secret is wrong."), HasSubstr("invalid_client")));
    const ProcessResult token = signinAs("guess");
    EXPECT_EQ(token.exitCode, 4);
    EXPECT_THAT(token.err, HasSubstr("The refresh token is unknown or expired."));
    EXPECT_EQ(kept(), "");
}

TEST_P(CliCloudTokens, WithoutASessionNothingIsAsked) {
    const ProcessResult nothing = run({"devices"});
    EXPECT_EQ(nothing.exitCode, 2);
    EXPECT_THAT(nothing.err, HasSubstr("torvi cloud signin"));
    const ProcessResult noToken = run({"devices", "--cloud", cloud->address(), "--client-id", "desk-app"});
    EXPECT_EQ(noToken.exitCode, 4);
    EXPECT_EQ(run({"signout"}).exitCode, 0);
    std::vector<std::string> alone = whole(signin());
    alone.insert(alone.begin(), {"--wait", kTorvi});
    EXPECT_EQ(runProcess(findProgram("setsid"), alone, options("")).exitCode, 2);
    EXPECT_EQ(cloud->requestCount(), 0) << cloud->log();
}

TEST_P(CliCloudTokens, TheSecretIsAskedForWithoutAnEcho) {
    Process::Options asked = options("");
    asked.arguments = whole(signin());
    asked.terminal = true;
    Process process(kTorvi, asked);
    ASSERT_TRUE(process.waitFor([](const std::string& out, const std::string&) {
        return out.find("Secret of the application desk-app") != out.npos;
    }));
    process.write("desk-secret\n");
    EXPECT_EQ(process.wait(), 0) << process.out();
    EXPECT_THAT(process.out(), Not(HasSubstr("desk-secret")));
}

TEST_P(CliCloudTokens, ASignOutEndsTheTokenAndForgetsIt) {
    beAnna();
    const Json out = json({"signout"});
    EXPECT_EQ(out["signedIn"], true);
    EXPECT_EQ(out["ended"], true);
    EXPECT_EQ(kept(), "");
    EXPECT_EQ(signinAs("anna-refresh").exitCode, 4);
    EXPECT_EQ(json({"signout"})["signedIn"], false);
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
    EXPECT_THAT(over.err, AllOf(HasSubstr("The refresh token is unknown or expired."), HasSubstr("signin")));
    changed["refreshToken"] = "";
    std::ofstream(kept()) << changed;
    const ProcessResult none = run({"devices"});
    EXPECT_EQ(none.exitCode, 4);
    EXPECT_THAT(none.err, AllOf(HasSubstr("The access token is unknown or expired."), HasSubstr("signin")));
    EXPECT_EQ(run({"refresh"}).exitCode, 4);
}

TEST_P(CliCloudTokens, TheSurroundingsNameCloudAndApplication) {
    Process::Options named = options("desk-secret");
    named.environment["TORVI_CLOUD"] = cloud->address();
    named.environment["TORVI_CLIENT_ID"] = "desk-app";
    std::vector<std::string> arguments = {"cloud", "signin"};
    if (!GetParam()) arguments.push_back("--no-tls");
    const ProcessResult result = runProcess(kTorvi, arguments, named);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(session()["clientId"], "desk-app");
}

TEST_P(CliCloudTokens, AnEmptyFileIsNoTokenAndChangesNothing) {
    beAnna();
    const Json before = session();
    cloud->forgetRequests();
    for (const char* option : {"--refresh-token-file", "--access-token-file", "--client-secret-file"}) {
        const ProcessResult result = run(signin({option, empty()}));
        EXPECT_EQ(result.exitCode, 9) << option;
        EXPECT_THAT(result.err, HasSubstr("the first line is empty")) << option;
    }
    EXPECT_EQ(session(), before);
    EXPECT_EQ(cloud->requestCount(), 0) << cloud->log();
}

TEST_P(CliCloudTokens, ARefreshTokenIsTakenAtTheSignInAlone) {
    beAnna();
    cloud->forgetRequests();
    const std::string file = cli->work().write("token", "ben-refresh\n");
    for (const char* command : {"devices", "refresh", "whoami", "signout"})
        EXPECT_EQ(run({command, "--refresh-token-file", file}).exitCode, 2) << command;
    EXPECT_EQ(run(signin({"--refresh-token-file", file, "--access-token-file", file})).exitCode, 2);
    EXPECT_EQ(cloud->requestCount(), 0) << cloud->log();
    EXPECT_EQ(json({"whoami"})["userId"], "anna");
}

TEST_P(CliCloudTokens, WhatWasKeptForTlsDoesNotGoInClear) {
    beAnna();
    cloud->forgetRequests();
    EXPECT_EQ(run({"devices", "--no-tls"}, "").exitCode, GetParam() ? 4 : 0);
    EXPECT_EQ(cloud->requestCount(), GetParam() ? 0 : 1) << cloud->log();
    EXPECT_EQ(run({"devices", "--tls"}, "").exitCode, 0);
}

TEST_P(CliCloudTokens, AnotherCloudOrApplicationHasNothingOfWhatIsKept) {
    beAnna();
    const Json before = session();
    cloud->forgetRequests();
    EXPECT_EQ(run({"devices", "--client-id", "other-app"}).exitCode, 2);
    EXPECT_EQ(run({"devices", "--cloud", "127.0.0.1"}).exitCode, 2);
    EXPECT_EQ(run({"devices", "--cloud", cloud->address(), "--client-id", "other-app"}).exitCode, 4);
    EXPECT_EQ(json({"signout", "--cloud", "127.0.0.1", "--client-id", "desk-app"})["signedIn"], false);
    EXPECT_EQ(cloud->requestCount(), 0) << cloud->log();
    EXPECT_EQ(session(), before);
    EXPECT_EQ(run({"devices", "--cloud", cloud->address()}, "").exitCode, 0);
    EXPECT_EQ(run({"devices", "--client-id", "desk-app"}, "").exitCode, 0);
}

TEST_P(CliCloudTokens, NoTokenIsInTheLog) {
    std::vector<std::string> loudly = signinWith("anna-refresh");
    loudly.push_back("-v");
    const ProcessResult signedIn = run(loudly);
    ASSERT_EQ(signedIn.exitCode, 0) << signedIn.err;
    const std::string first = session()["accessToken"];
    const ProcessResult refreshed = run({"refresh", "-v"});
    ASSERT_EQ(refreshed.exitCode, 0) << refreshed.err;
    const std::string second = session()["accessToken"];
    EXPECT_THAT(signedIn.err + refreshed.err, AllOf(Not(HasSubstr(first)), Not(HasSubstr(second))));
    cloud->stop();
    EXPECT_THAT(run({"devices", "-v"}).err, HasSubstr("[WFM] ZenoAPIGetAllDeviceInfo: failed dwStatus("));
}

TEST_P(CliCloudTokens, ASignOutGoesTheWayThatTheSessionCame) {
    beAnna();
    const Json out = json({"signout", GetParam() ? "--no-tls" : "--tls"});
    EXPECT_EQ(out["ended"], true);
    EXPECT_EQ(kept(), "");
    EXPECT_EQ(signinAs("anna-refresh").exitCode, 4);
}

TEST_P(CliCloudTokens, WhereNewTokensCanNotBeWrittenTheOldOnesStay) {
    beAnna();
    const Json before = session();
    // No file may grow, which is an error and not the end of the program.
    const ProcessResult result = runProcess(
        findProgram("sh"), {"-c", "trap '' XFSZ; ulimit -f 0; exec \"$@\"", "sh", kTorvi, "cloud", "refresh"},
        options(""));
    EXPECT_EQ(result.exitCode, 9) << result.err;
    EXPECT_EQ(session(), before);
    const std::filesystem::directory_iterator files(std::filesystem::path(kept()).parent_path());
    EXPECT_EQ(std::distance(files, std::filesystem::directory_iterator()), 1);
}

TEST_P(CliCloudRotating, ASignOutEndsTheRefreshTokenBehindAnAccessTokenThatIsOver) {
    beAnna();
    const Json before = session();
    cloud->expireTokens();
    EXPECT_EQ(json({"signout"})["ended"], true);
    EXPECT_EQ(kept(), "");
    EXPECT_EQ(signinAs(before["refreshToken"]).exitCode, 4);
    EXPECT_EQ(Json::parse(cloud->control("GET", "requests"))["by_func"]["signout"], 2) << cloud->log();
}

TEST_P(CliCloudRotating, TokensThatHaveComeAreKeptWhateverFailsBehindThem) {
    cloud->arm("http-status,match=/oauth/tokeninfo,count=1");
    EXPECT_NE(signinAs("anna-refresh").exitCode, 0);
    EXPECT_EQ(json({"whoami"})["userId"], "anna");
}

TEST_P(CliCloudRotating, OnlyTheTokensAreNewBehindARefresh) {
    beAnna();
    Json changed = session();
    changed["clientSecret"] = "";
    std::ofstream(kept()) << changed;
    const Json before = terms();
    cloud->expireTokens();
    cloud->forgetRequests();
    const ProcessResult result =
        run({"devices", "--tls", "--proxy", "none", "--remote-access", "other.example"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(cloud->requestCount("token"), 1) << cloud->log();
    EXPECT_NE(session()["accessToken"], changed["accessToken"]);
    EXPECT_EQ(terms(), before);
}

TEST_P(CliCloudRotating, CommandsAtTheSameTimeRefreshOnceBetweenThem) {
    beAnna();
    cloud->expireTokens();
    cloud->forgetRequests();
    Process::Options asking = options("");
    asking.arguments = whole({"devices", "--count"});
    // The others come while the first one's new tokens are on their way, behind a look at the old one.
    const int fault = cloud->arm("stall,match=/oauth/token,skip=1,ms=1500");
    std::vector<std::unique_ptr<Process>> all;
    all.push_back(std::make_unique<Process>(kTorvi, asking));
    while (cloud->hits(fault) == 0 && all.front()->running())
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    for (int i = 0; i < 2; ++i) all.push_back(std::make_unique<Process>(kTorvi, asking));
    for (const auto& process : all) {
        EXPECT_EQ(process->wait(), 0) << process->err();
        EXPECT_EQ(process->out(), "1\n");
    }
    EXPECT_EQ(cloud->requestCount("token"), 1) << cloud->log();
}

TEST_F(CliCloudHeld, ACtrlCDoesNotCostTheTokensOfARefresh) {
    ASSERT_EQ(runProcess(kTorvi, signin(), base()).exitCode, 0);
    EXPECT_EQ(refreshToken(), "token-1");
    heldFrom = 2;
    EXPECT_EQ(interrupt({"cloud", "refresh"}), 7);
    EXPECT_EQ(refreshToken(), "token-2");
}

TEST_F(CliCloudHeld, ACtrlCDoesNotCostTheTokensOfASignIn) {
    heldFrom = 1;
    EXPECT_EQ(interrupt(signin()), 7);
    EXPECT_EQ(refreshToken(), "token-1");
    EXPECT_EQ(server->requestCount(), 1u);
}
