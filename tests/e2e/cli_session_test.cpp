#include "cli_support.h"
#include "support/programs.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Json = nlohmann::json;

namespace {

class CliSession : public CliTest {};

mode_t modeOf(const std::string& path) {
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

}  // namespace

TEST_F(CliSession, LoginStoresAProfileForItsOwnerAloneAndWithoutThePassword) {
    const ProcessResult result = cli.run({"login"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("Logged in"));
    EXPECT_EQ(modeOf(cli.profile()), 0600u);
    EXPECT_EQ(modeOf(cli.state().file("torvi")), 0700u);
    const std::string profile = cli.state().read("torvi/profile.json");
    EXPECT_THAT(profile, AllOf(HasSubstr("anna"), Not(HasSubstr("secret"))));
}

TEST_F(CliSession, ACommandWithoutALoginBeforeLeavesNoSessionBehind) {
    ASSERT_EQ(cli.run({"stat", "/home"}).exitCode, 0);
    EXPECT_EQ(nas.requestCount("login"), nas.requestCount("logout"));
    EXPECT_GE(nas.requestCount("logout"), 1);
}

TEST_F(CliSession, AWrongPasswordIsItsOwnExitCodeAndStoresNothing) {
    Process::Options options = cli.options();
    options.environment["TORVI_PASSWORD"] = "wrong";
    const ProcessResult result = runProcess(kTorvi, cli.connected({"login"}), options);
    EXPECT_EQ(result.exitCode, 4);
    EXPECT_THAT(result.err, HasSubstr("refused user name or password"));
    EXPECT_FALSE(std::filesystem::exists(cli.profile()));
}

TEST_F(CliSession, AServerThatIsNotThereIsItsOwnExitCode) {
    const std::uint16_t port = nas.port();
    nas.stop();
    const ProcessResult result =
        cli.runBare({"ls", "--server", "127.0.0.1", "--user", "anna", "--port", std::to_string(port)});
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_THAT(result.err, HasSubstr("WFM_PARSE_XML_HTTPTRAN_CONNECT_FAIL"));
}

TEST_F(CliSession, APortMayStandBehindTheServersName) {
    const auto stat = [this](const std::string& address) {
        return cli.runBare({"stat", "/home", "-s", address, "--port", "1", "--user", "anna"});
    };
    EXPECT_EQ(stat("127.0.0.1:" + std::to_string(nas.port())).exitCode, 0);
    EXPECT_EQ(stat("127.0.0.1").exitCode, 3);
    for (const char* wrong : {"127.0.0.1:0", "127.0.0.1:65536", "127.0.0.1:http", "::1"}) {
        const ProcessResult result = stat(wrong);
        EXPECT_EQ(result.exitCode, 2) << wrong;
        EXPECT_THAT(result.err, HasSubstr("is not HOST or HOST:PORT")) << wrong;
    }
}

TEST_F(CliSession, TheProfileServesLaterCommands) {
    ASSERT_EQ(cli.run({"login"}).exitCode, 0);
    const ProcessResult result = cli.runBare({"stat", "/home"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
}

TEST_F(CliSession, AKeptPasswordServesItsOwnServerAndNoOther) {
    ASSERT_EQ(cli.run({"login", "--save-password"}).exitCode, 0);
    EXPECT_EQ(modeOf(cli.profile()), 0600u);
    EXPECT_EQ(runProcess(kTorvi, {"stat", "/home"}, cli.withoutPassword()).exitCode, 0);

    // Another port of the same machine is another server.
    const ProcessResult other =
        cli.runWithoutPassword({"stat", "/home", "--port", std::to_string(nas.tlsPort()), "--tls"});
    EXPECT_EQ(other.exitCode, 2);
    EXPECT_THAT(other.err, HasSubstr("no password"));
}

TEST_F(CliSession, AProfileThatOthersCanReadIsRefused) {
    ASSERT_EQ(cli.run({"login"}).exitCode, 0);
    ASSERT_EQ(::chmod(cli.profile().c_str(), 0644), 0);
    const ProcessResult result = cli.runBare({"stat", "/home"});
    EXPECT_EQ(result.exitCode, 9);
    EXPECT_THAT(result.err, HasSubstr("chmod 600"));
}

TEST_F(CliSession, AProfileThatIsNoneIsRefusedAndLogoutRemovesIt) {
    cli.state().write("torvi/profile.json", "{\"port\": \"many\"");
    ASSERT_EQ(::chmod(cli.profile().c_str(), 0600), 0);
    EXPECT_EQ(cli.runBare({"stat", "/home"}).exitCode, 9);
    EXPECT_EQ(cli.runBare({"logout"}).exitCode, 0);
    EXPECT_FALSE(std::filesystem::exists(cli.profile()));
}

TEST_F(CliSession, LogoutRemovesTheProfile) {
    ASSERT_EQ(cli.run({"login"}).exitCode, 0);
    const ProcessResult first = cli.runBare({"logout", "--json"});
    EXPECT_EQ(first.exitCode, 0);
    EXPECT_EQ(Json::parse(first.out)["removed"], true);
    EXPECT_FALSE(std::filesystem::exists(cli.profile()));
    EXPECT_EQ(Json::parse(cli.runBare({"logout", "--json"}).out)["removed"], false);
}

TEST_F(CliSession, ThePasswordIsAskedForWithoutAnEcho) {
    Process::Options options = cli.withoutPassword();
    options.arguments = cli.connected({"login"});
    options.terminal = true;
    Process process(kTorvi, options);
    ASSERT_TRUE(process.waitFor(
        [](const std::string& out, const std::string&) { return out.find("Password of anna") != out.npos; }));
    process.write("secret\n");
    EXPECT_EQ(process.wait(), 0) << process.out();
    EXPECT_THAT(process.out(), AllOf(HasSubstr("Logged in"), Not(HasSubstr("secret"))));
}

TEST_F(CliSession, CtrlCAtThePasswordPromptCancels) {
    Process::Options options = cli.withoutPassword();
    options.arguments = cli.connected({"login"});
    options.terminal = true;
    Process process(kTorvi, options);
    ASSERT_TRUE(process.waitFor(
        [](const std::string& out, const std::string&) { return out.find("Password of anna") != out.npos; }));
    process.write("\x03");
    EXPECT_EQ(process.wait(), 7) << process.out();
}

TEST_F(CliSession, ThePasswordComesFromAFileOrStandardInput) {
    const std::string file = cli.work().write("password", "secret\nsecond line\n");
    EXPECT_EQ(
        runProcess(kTorvi, cli.connected({"stat", "/home", "--password-file", file}), cli.withoutPassword())
            .exitCode,
        0);
    Process::Options piped = cli.withoutPassword();
    piped.input = "secret\n";
    EXPECT_EQ(runProcess(kTorvi, cli.connected({"stat", "/home", "--password-file", "-"}), piped).exitCode,
              0);
    EXPECT_EQ(runProcess(kTorvi, cli.connected({"stat", "/home", "--password-file", "/nowhere"}),
                         cli.withoutPassword())
                  .exitCode,
              9);
}

TEST_F(CliSession, VersionNeedsNoLogin) {
    const ProcessResult result = runProcess(
        kTorvi, {"version", "--server", "127.0.0.1", "--json", "--port", std::to_string(nas.port())},
        cli.withoutPassword());
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_FALSE(Json::parse(result.out)["version"].get<std::string>().empty());
    EXPECT_EQ(nas.requestCount("login"), 0);
}

TEST_F(CliSession, VersionAndLoginGoOverTls) {
    EXPECT_EQ(cli.run({"version"}, true).exitCode, 0);
    const ProcessResult login = cli.run({"login", "--json"}, true);
    ASSERT_EQ(login.exitCode, 0) << login.err;
    EXPECT_EQ(Json::parse(login.out)["tls"], true);
    EXPECT_EQ(cli.runBare({"stat", "/home"}).exitCode, 0);
}

TEST_F(CliSession, ASilentServerEndsALoginAfterTheTimeOutThatWasGiven) {
    nas.arm("stall,match=login");
    EXPECT_EQ(cli.run({"login", "--timeout", "0.2"}).exitCode, 3);
}

TEST_F(CliSession, CtrlCEndsACallThatWaits) {
    const int fault = nas.arm("stall,match=login");
    const auto process = cli.start({"ls", "/home", "--timeout", "3600"});
    waitForHit(fault, *process);
    process->sendSignal(SIGINT);
    EXPECT_EQ(process->wait(), 7) << process->err();
    EXPECT_THAT(process->err(), HasSubstr("cancelled"));
}

TEST_F(CliSession, TheLogGoesToStandardErrorWhenAskedFor) {
    const ProcessResult result = cli.run({"stat", "/home", "-v"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.err,
                AllOf(HasSubstr("[WFM] WFMInitialization"), HasSubstr("[WFM] WFMUnInitialization")));
    EXPECT_THAT(cli.run({"stat", "/home"}).err, IsEmpty());
}

TEST_F(CliSession, FailuresAreOneLineAndAnObjectWithJson) {
    const ProcessResult result = cli.run({"stat", "/home/nothing", "--json"});
    EXPECT_EQ(result.exitCode, 5);
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1);
    EXPECT_THAT(result.err, HasSubstr("torvi: stat /home/nothing: no such file or folder"));
    const Json error = Json::parse(result.out)["error"];
    EXPECT_EQ(error["exit"], 5);
    EXPECT_EQ(error["result"], 3);
    EXPECT_EQ(error["resultName"], "ERROR_PATH_NOT_FOUND");
}

TEST_F(CliSession, WrongUsageIsItsOwnExitCode) {
    EXPECT_EQ(cli.runBare({}).exitCode, 2);
    EXPECT_EQ(cli.runBare({"bogus"}).exitCode, 2);
    EXPECT_EQ(cli.runBare({"get"}).exitCode, 2);
    EXPECT_EQ(cli.runBare({"stat", "/home"}).exitCode, 2) << "no server";
    EXPECT_EQ(cli.run({"ls", "--sort", "colour"}).exitCode, 2);
    EXPECT_EQ(cli.run({"stat", "/home", "--proxy", "nonsense"}).exitCode, 2);
    EXPECT_EQ(cli.run({"put", "a", "b", "--plain", "--rename", "c"}).exitCode, 2);
}

TEST_F(CliSession, EveryCommandHasHelp) {
    const std::string all = cli.runBare({"--help"}).out;
    EXPECT_THAT(all, AllOf(HasSubstr("Exit codes"), HasSubstr("Examples"), HasSubstr("TORVI_PASSWORD")));
    for (const char* command : {"login",
                                "logout",
                                "version",
                                "probe",
                                "ping",
                                "proxy",
                                "status",
                                "folders",
                                "quota",
                                "home",
                                "veto",
                                "log",
                                "ls",
                                "stat",
                                "du",
                                "put",
                                "get",
                                "mkdir",
                                "touch",
                                "rm",
                                "mv",
                                "trash",
                                "restore",
                                "jobs",
                                "can-upload",
                                "version-probe",
                                "version-lock",
                                "version-unlock",
                                "version-clean",
                                "version-sig",
                                "version-delta",
                                "version-stat",
                                "version-commit"}) {
        const ProcessResult help = cli.runBare({command, "--help"});
        EXPECT_EQ(help.exitCode, 0) << command;
        EXPECT_THAT(help.out, HasSubstr(std::string("torvi ") + command)) << command;
        EXPECT_THAT(all, HasSubstr(std::string("  ") + command + " ")) << command;
    }
}
