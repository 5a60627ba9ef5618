#include "cli_support.h"
#include "support/programs.h"

using testing::HasSubstr;
using testing::Not;
using Json = nlohmann::json;

namespace {

class CliKept : public CliOnRoads {
protected:
    void SetUp() override { ASSERT_EQ(cli.run({"login"}).exitCode, 0); }

    /// Where the kept sessions lie, each in a file.
    std::filesystem::path folder() const { return cli.state().path() / "torvi" / "sessions"; }
    std::vector<std::filesystem::path> files() const {
        std::vector<std::filesystem::path> found;
        if (!std::filesystem::exists(folder())) return found;
        for (const auto& file : std::filesystem::directory_iterator(folder())) found.push_back(file.path());
        return found;
    }
    std::string content() const {
        return cli.state().read("torvi/sessions/" + files().at(0).filename().string());
    }
    ProcessResult stat() const { return cli.runBare({"stat", "/home"}); }
    ProcessResult statWithoutPassword() const { return cli.runWithoutPassword({"stat", "/home"}); }
    std::int64_t logins() { return nas.requestCount("login"); }
    /// Leaves a second session, and the profile speaks of its server.
    void loginElsewhere() {
        const ProcessResult result = cli.runBare(
            {"login", "--server", "localhost", "--port", std::to_string(nas.port()), "--user", "anna"});
        ASSERT_EQ(result.exitCode, 0) << result.err;
    }
};

class CliKeptEdges : public CliKept {};

}  // namespace

CLI_ON_ROADS(CliKept, syncRoads());
INSTANTIATE_TEST_SUITE_P(OneRoad, CliKeptEdges, testing::Values(CliRoad{}),
                         [](const auto& info) { return nameOf(info.param); });

TEST_P(CliKept, LaterCommandsGoOnWithIt) {
    for (int i = 0; i < 3; ++i) {
        const ProcessResult result = statWithoutPassword();
        EXPECT_EQ(result.exitCode, 0) << result.err;
    }
    EXPECT_EQ(logins(), 1);
    EXPECT_EQ(nas.requestCount("logout"), 0);
    EXPECT_EQ(nas.requestCount("activate"), 3);
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(CliKept, OneThatHasEndedIsReplacedByOneLogin) {
    nas.expireSessions();
    ProcessResult result = stat();
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(logins(), 2);
    result = statWithoutPassword();
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(logins(), 2);
}

TEST_P(CliKept, LogoutEndsItAtTheServerAndForgetsIt) {
    const std::string kept = content();
    const std::string name = files().at(0).filename();
    const ProcessResult result = cli.runBare({"logout", "--json"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(Json::parse(result.out)["sessionsEnded"], 1);
    EXPECT_EQ(nas.requestCount("logout"), 1);
    EXPECT_TRUE(files().empty());

    // Whoever kept the id has nothing in hand.
    cli.state().write("torvi/sessions/" + name, kept);
    const std::int64_t before = logins();
    EXPECT_EQ(cli.runWithoutPassword(cli.connected({"stat", "/home"})).exitCode, 4);
    EXPECT_EQ(logins(), before);
}

TEST_P(CliKeptEdges, ItIsForItsOwnerAloneAndHoldsNoPassword) {
    ASSERT_EQ(files().size(), 1u);
    struct stat status = {};
    ASSERT_EQ(::stat(files()[0].c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600u);
    EXPECT_THAT(content(), Not(HasSubstr("secret")));
}

TEST_P(CliKeptEdges, OneThatHasEndedNeedsAPasswordToBeReplaced) {
    nas.expireSessions();
    const ProcessResult result = statWithoutPassword();
    EXPECT_EQ(result.exitCode, 4);
    EXPECT_THAT(result.err, HasSubstr("has ended"));
    EXPECT_EQ(logins(), 1);
    EXPECT_EQ(stat().exitCode, 0) << "it is still begun";
    EXPECT_EQ(statWithoutPassword().exitCode, 0);
}

TEST_P(CliKeptEdges, ARefusedLoginIsNotTriedAgain) {
    nas.expireSessions();
    cli.become("anna", "wrong");
    EXPECT_EQ(stat().exitCode, 4);
    // The sync service and, for a second factor, the older one: each once.
    EXPECT_EQ(logins(), 3);
    EXPECT_EQ(nas.requestCount("activate"), 1);
}

TEST_P(CliKeptEdges, CommandsAtTheSameTimeLogInOnceBetweenThem) {
    nas.expireSessions();
    Process::Options options = cli.options();
    options.arguments = {"stat", "/home"};
    // The others come while the first one's login waits for its answer.
    const int fault = nas.arm("stall,match=login,ms=1500");
    std::vector<std::unique_ptr<Process>> all;
    all.push_back(std::make_unique<Process>(kTorvi, options));
    waitForHit(fault, *all.front());
    for (int i = 0; i < 3; ++i) all.push_back(std::make_unique<Process>(kTorvi, options));
    for (const auto& process : all) EXPECT_EQ(process->wait(), 0) << process->err();
    EXPECT_EQ(logins(), 2) << nas.log();
}

TEST_P(CliKeptEdges, ItServesItsOwnUserAndServerAlone) {
    EXPECT_EQ(cli.runWithoutPassword({"stat", "/home", "--user", "ben"}).exitCode, 2);
    EXPECT_EQ(
        cli.runWithoutPassword({"stat", "/home", "--tls", "--port", std::to_string(nas.tlsPort())}).exitCode,
        2);
    EXPECT_EQ(logins(), 1);
}

TEST_P(CliKeptEdges, WhoDidNotLogInLeavesNoSession) {
    cli.become("ben", "hidden");
    ASSERT_EQ(cli.run({"stat", "/home"}).exitCode, 0);
    EXPECT_EQ(logins(), 2);
    EXPECT_EQ(nas.requestCount("logout"), 1);
    EXPECT_EQ(files().size(), 1u);
}

TEST_P(CliKeptEdges, AnotherLoginEndsTheOneBefore) {
    ASSERT_EQ(cli.run({"login"}).exitCode, 0);
    EXPECT_EQ(logins(), 2);
    EXPECT_EQ(nas.requestCount("logout"), 1);
    EXPECT_EQ(statWithoutPassword().exitCode, 0);
}

TEST_P(CliKeptEdges, AServerThatIsGoneDoesNotCostTheSession) {
    nas.kill();
    EXPECT_EQ(statWithoutPassword().exitCode, 3);
    EXPECT_EQ(files().size(), 1u);
}

TEST_P(CliKeptEdges, LogoutForgetsItWhereTheServerIsGone) {
    nas.kill();
    const ProcessResult result = cli.runBare({"logout", "--json"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(Json::parse(result.out)["sessionsLost"], 1);
    EXPECT_TRUE(files().empty());
    EXPECT_FALSE(std::filesystem::exists(cli.profile()));
}

TEST_P(CliKeptEdges, LogoutEndsAllSessionsWhenAsked) {
    ASSERT_NO_FATAL_FAILURE(loginElsewhere());
    ASSERT_EQ(files().size(), 2u);
    const ProcessResult result = cli.runBare({"logout", "--all", "--json"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(Json::parse(result.out)["sessionsEnded"], 2);
    EXPECT_TRUE(files().empty());
}

TEST_P(CliKeptEdges, ALogoutThatIsNotUnderstoodEndsNothing) {
    const struct {
        std::string option, value, why;
    } wrong[] = {
        {"--server", "nas:abc", "is not HOST or HOST:PORT"},
        {"--server", "nas:0", "is not HOST or HOST:PORT"},
        {"--server", "::1", "is not HOST or HOST:PORT"},
        {"--server", "https://nas", "is not HOST or HOST:PORT"},
        {"--proxy", "nonsense", "is neither none nor system nor HOST:PORT"},
        {"--proxy", "proxy:0", "is neither none nor system nor HOST:PORT"},
        {"--team", "Plans", "is not CLIENTPATH=SERVERPATH[@NODE]"},
        {"--team", "/home/.Torvi/Plans=vtf://", "is not CLIENTPATH=SERVERPATH[@NODE]"},
    };
    for (const auto& [option, value, why] : wrong) {
        const ProcessResult result = cli.runBare({"logout", option, value});
        EXPECT_EQ(result.exitCode, 2) << value;
        EXPECT_THAT(result.err, HasSubstr(why)) << value;
    }
    EXPECT_TRUE(std::filesystem::exists(cli.profile()));
    EXPECT_EQ(files().size(), 1u);
    EXPECT_EQ(nas.requestCount("logout"), 0);
}

TEST_P(CliKeptEdges, ALogoutWithoutAWayToTheServerForgetsThisSessionAlone) {
    ASSERT_NO_FATAL_FAILURE(loginElsewhere());
    const ProcessResult result = cli.runBare({"logout", "--json", "--proxy", "127.0.0.1:1", "--proxy-user",
                                              "anna", "--proxy-password-file", cli.work().file("nowhere")});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_THAT(result.err, AllOf(HasSubstr("no session was ended at the server"),
                                  HasSubstr("cannot read the password"), HasSubstr("nowhere")));
    EXPECT_EQ(Json::parse(result.out)["sessionsLost"], 1);
    EXPECT_EQ(Json::parse(result.out)["removed"], true);
    EXPECT_EQ(nas.requestCount("logout"), 0);
    ASSERT_EQ(files().size(), 1u);
    EXPECT_THAT(content(), HasSubstr("127.0.0.1")) << "the other server's";
    EXPECT_FALSE(std::filesystem::exists(cli.profile()));
}

TEST_P(CliKeptEdges, ALogoutOfABrokenProfileForgetsWhateverItMayBeAbout) {
    cli.state().write("torvi/profile.json", "{\"port\": \"many\"");
    ASSERT_EQ(::chmod(cli.profile().c_str(), 0600), 0);
    const ProcessResult result = cli.runBare({"logout", "--json"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_THAT(result.err,
                AllOf(HasSubstr("no session was ended at the server"), HasSubstr("is not a profile")));
    EXPECT_EQ(Json::parse(result.out)["sessionsLost"], 1);
    EXPECT_EQ(nas.requestCount("logout"), 0);
    EXPECT_TRUE(files().empty());
    EXPECT_FALSE(std::filesystem::exists(cli.profile()));
}

TEST_P(CliKeptEdges, ALogoutOfABrokenProfileLeavesWhatTheCommandLineRulesOut) {
    ASSERT_EQ(::chmod(cli.profile().c_str(), 0644), 0);
    const std::vector<std::string> others[] = {{"--server", "localhost"},
                                               {"--server", "127.0.0.1:1"},
                                               {"--port", "1"},
                                               {"--user", "ben"},
                                               {"--tls"}};
    for (std::vector<std::string> arguments : others) {
        const std::string option = arguments.front();
        arguments.insert(arguments.begin(), {"logout", "--json"});
        const ProcessResult result = cli.runBare(arguments);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_EQ(Json::parse(result.out)["sessionsLost"], 0) << option;
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(files().size(), 1u) << option;
        cli.state().write("torvi/profile.json", "{}");
        ASSERT_EQ(::chmod(cli.profile().c_str(), 0644), 0);
    }
    EXPECT_EQ(cli.runBare({"logout", "--server", "127.0.0.1", "--user", "anna"}).exitCode, 0);
    EXPECT_TRUE(files().empty());
}

TEST_P(CliKeptEdges, CtrlCWhileALogoutAsksForThePasswordOfTheProxyLeavesAll) {
    Process::Options options = cli.withoutPassword();
    options.arguments = {"logout", "--proxy", "127.0.0.1:1", "--proxy-user", "anna"};
    options.terminal = true;
    Process process(kTorvi, options);
    ASSERT_TRUE(process.waitFor([](const std::string& out, const std::string&) {
        return out.find("Password of anna for the proxy") != out.npos;
    }));
    process.write("\x03");
    EXPECT_EQ(process.wait(), 7) << process.out();
    EXPECT_EQ(files().size(), 1u);
    EXPECT_TRUE(std::filesystem::exists(cli.profile()));
}

TEST_P(CliKeptEdges, HalfAFileIsNoSession) {
    const std::string name = "torvi/sessions/" + files().at(0).filename().string();
    cli.state().write(name, "{\"sid\": ");
    EXPECT_EQ(stat().exitCode, 0);
}
