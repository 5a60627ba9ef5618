#include <fstream>
#include <regex>

#include "cli_support.h"
#include "support/programs.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using Json = nlohmann::json;

namespace {

class CliLogin : public CliTest {
protected:
    explicit CliLogin(std::vector<std::string> arguments) : CliTest(nasWith(std::move(arguments))) {}

    ProcessResult onTerminal(const std::string& prompt, const std::string& typed) {
        Process::Options options = cli.options();
        options.arguments = cli.connected({"login"});
        options.terminal = true;
        Process process(kTorvi, options);
        EXPECT_TRUE(process.waitFor([&](const std::string& out, const std::string&) {
            return out.find(prompt) != out.npos;
        })) << process.out();
        process.write(typed);
        ProcessResult result;
        result.exitCode = process.wait();
        result.out = process.out();
        return result;
    }
    /// Without a terminal to ask on.
    ProcessResult login(std::vector<std::string> arguments = {}) {
        arguments.insert(arguments.begin(), "login");
        arguments = cli.connected(std::move(arguments));
        arguments.insert(arguments.begin(), {"--wait", kTorvi});
        return runProcess(findProgram("setsid"), std::move(arguments), cli.options());
    }
};

class CliCode : public CliLogin {
protected:
    CliCode() : CliCode(std::vector<std::string>()) {}
    explicit CliCode(std::vector<std::string> more) : CliLogin(withCode(std::move(more))) {}
    static std::vector<std::string> withCode(std::vector<std::string> more) {
        more.insert(more.end(), {"--second-factor", "anna:code=654321", "--try-limit", "2"});
        return more;
    }
};
class CliCodeOldServer : public CliCode {
protected:
    CliCodeOldServer() : CliCode({"--no-sync-service"}) {}
};

class CliQuestion : public CliLogin {
protected:
    CliQuestion() : CliLogin({"--second-factor", "anna:question=1:Whom do you hunt?:Tom & Jerry/100%"}) {}
};

class CliMail : public CliTest {
protected:
    CliMail() : CliMail("anna:mail=anna@example.org") {}
    /// The login asks for the first of an account's factors.
    explicit CliMail(const std::string& first)
        : CliTest(nasWith({"--second-factor", first, "--second-factor", "anna:mail=anna@example.org",
                           "--mail-dir", mails().string()})) {}
    static TempDir& mails() {
        static TempDir folder;
        return folder;
    }
    void TearDown() override {
        for (const auto& file : std::filesystem::directory_iterator(mails().path()))
            std::filesystem::remove(file);
    }
    static std::string mailedCode() {
        std::string text;
        for (const auto& file : std::filesystem::directory_iterator(mails().path())) {
            std::ifstream in(file.path());
            text.assign(std::istreambuf_iterator<char>(in), {});
        }
        std::smatch found;
        return std::regex_search(text, found, std::regex("code: ([0-9]{6})")) ? found[1].str() : "";
    }
};

class CliCodeOrMail : public CliMail {
protected:
    CliCodeOrMail() : CliMail("anna:code=654321") {}
};

class CliOldServer : public CliLogin {
protected:
    CliOldServer() : CliLogin({"--no-sync-service"}) {}
};
class CliNoFcgi : public CliLogin {
protected:
    CliNoFcgi() : CliLogin({"--no-fcgi"}) {}
};
class CliTlsOnly : public CliLogin {
protected:
    CliTlsOnly() : CliLogin({"--redirect-tls"}) {}
};

}  // namespace

TEST_F(CliCode, WithoutTheCodeTheLoginSaysWhatIsWanted) {
    const ProcessResult result = login();
    EXPECT_EQ(result.exitCode, 4);
    EXPECT_THAT(result.err, AllOf(HasSubstr("a security code is wanted"), HasSubstr("--code")));
    EXPECT_FALSE(std::filesystem::exists(cli.profile()));
}

TEST_F(CliCode, TheCodeOpensASessionOfTheSyncServiceThatIsKept) {
    const ProcessResult result = login({"--code", "654321", "--json"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(Json::parse(result.out)["service"], "sync");
    EXPECT_EQ(Json::parse(result.out)["sessionKept"], true);
    const ProcessResult later = cli.runWithoutPassword({"ls", "/home"});
    EXPECT_EQ(later.exitCode, 0) << later.err;
}

TEST_F(CliCode, TheCodeMayComeFromTheEnvironment) {
    Process::Options options = cli.options();
    options.environment["TORVI_CODE"] = "654321";
    EXPECT_EQ(runProcess(kTorvi, cli.connected({"stat", "/home"}), options).exitCode, 0);
}

TEST_F(CliCode, AWrongCodeIsRefusedUntilTheTriesAreUsedUp) {
    EXPECT_THAT(login({"--code", "1"}).err, HasSubstr("the server refused the code"));
    EXPECT_EQ(login({"--code", "2"}).exitCode, 4);
    const ProcessResult locked = login({"--code", "654321"});
    EXPECT_EQ(locked.exitCode, 4);
    EXPECT_THAT(locked.err, HasSubstr("the tries are used up"));
}

TEST_F(CliCode, AWrongPasswordIsThatAndNoQuestionForACode) {
    cli.become("anna", "wrong");
    const ProcessResult result = login({"--code", "654321"});
    EXPECT_EQ(result.exitCode, 4);
    EXPECT_THAT(result.err, HasSubstr("refused user name or password"));
}

TEST_F(CliCode, WhoHasNoSecondFactorIsAskedForNone) {
    cli.become("ben", "hidden");
    EXPECT_EQ(login().exitCode, 0);
}

TEST_F(CliCode, TheCodeIsAskedForOnATerminal) {
    const ProcessResult result = onTerminal("Security code", "654321\n");
    EXPECT_EQ(result.exitCode, 0) << result.out;
    EXPECT_THAT(result.out, HasSubstr("Logged in"));
}

TEST_F(CliCodeOldServer, EachCommandTakesTheStepAndListingsSayWhyTheyCannot) {
    const ProcessResult result = login({"--code", "654321", "--json"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(Json::parse(result.out)["service"], "older");
    EXPECT_EQ(Json::parse(result.out)["sessionKept"], false);
    EXPECT_EQ(cli.run({"stat", "/home", "--code", "654321"}).exitCode, 0);
    const ProcessResult list = cli.run({"ls", "/home", "--code", "654321"});
    EXPECT_EQ(list.exitCode, 1);
    EXPECT_THAT(cli.run({"ls", "/", "--code", "654321"}).out, HasSubstr("home/"));
    EXPECT_THAT(list.err, HasSubstr("cannot list files"));
}

TEST_F(CliQuestion, TheAnswerTravelsWhateverIsInIt) {
    const ProcessResult refused = login();
    EXPECT_EQ(refused.exitCode, 4);
    EXPECT_THAT(refused.err, HasSubstr("Whom do you hunt?"));
    EXPECT_THAT(login({"--answer", "Jerry"}).err, HasSubstr("the server refused the answer"));
    const ProcessResult result = login({"--answer", "Tom & Jerry/100%"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
}

TEST_F(CliQuestion, TheQuestionIsAskedOnATerminalWithoutAnEcho) {
    const ProcessResult result = onTerminal("Whom do you hunt?", "Tom & Jerry/100%\n");
    EXPECT_EQ(result.exitCode, 0) << result.out;
    EXPECT_THAT(result.out, Not(HasSubstr("Tom & Jerry")));
}

TEST_F(CliMail, AnEmergencyCodeComesByMailAndOpensTheSession) {
    std::vector<std::string> arguments = cli.connected({"login", "--mail"});
    arguments.insert(arguments.begin(), {"--wait", kTorvi});
    const ProcessResult asked = runProcess(findProgram("setsid"), arguments, cli.options());
    EXPECT_EQ(asked.exitCode, 4);
    EXPECT_THAT(asked.err, HasSubstr("as --code"));
    const std::string code = mailedCode();
    ASSERT_NE(code, "");
    EXPECT_EQ(cli.run({"login", "--code", code}).exitCode, 0);
}

TEST_F(CliMail, OnATerminalTheMailGoesOutByItself) {
    Process::Options options = cli.options();
    options.arguments = cli.connected({"login"});
    options.terminal = true;
    Process process(kTorvi, options);
    ASSERT_TRUE(process.waitFor([](const std::string& out, const std::string&) {
        return out.find("Security code") != out.npos;
    })) << process.out();
    process.write(mailedCode() + "\n");
    EXPECT_EQ(process.wait(), 0) << process.out();
}

TEST_F(CliCodeOrMail, OnATerminalAMailIsAskedForByALetter) {
    Process::Options options = cli.options();
    options.arguments = cli.connected({"login"});
    options.terminal = true;
    Process process(kTorvi, options);
    const auto shows = [&](const char* text) {
        return process.waitFor(
            [&](const std::string& out, const std::string&) { return out.find(text) != out.npos; });
    };
    ASSERT_TRUE(shows("Security code")) << process.out();
    EXPECT_EQ(mailedCode(), "");
    process.write("m\n");
    ASSERT_TRUE(shows("on its way by mail")) << process.out();
    process.write(mailedCode() + "\n");
    EXPECT_EQ(process.wait(), 0) << process.out();
}

TEST_F(CliOldServer, TheOlderServiceIsFoundByItselfAndRemembered) {
    const ProcessResult result = login({"--json"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const Json json = Json::parse(result.out);
    EXPECT_EQ(json["service"], "older");
    EXPECT_EQ(json["sessionKept"], false);
    EXPECT_EQ(json["serverName"], "torvi-nas");
    nas.forgetRequests();
    EXPECT_EQ(cli.runBare({"ls", "/home"}).exitCode, 0);
    EXPECT_EQ(nas.requestCount("login"), 1) << nas.log();
    EXPECT_EQ(nas.requestCount("logout"), 1);
    EXPECT_EQ(nas.requestCount("refused"), 0) << "the sync service isn't asked again";
}

TEST_F(CliOldServer, ItIsFoundWithoutAProfileToo) {
    const ProcessResult result = cli.run({"stat", "/home"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
}

TEST_F(CliOldServer, AWrongPasswordIsItsOwnExitCode) {
    cli.become("anna", "wrong");
    const ProcessResult result = login();
    EXPECT_EQ(result.exitCode, 4);
    EXPECT_THAT(result.err, HasSubstr("refused user name or password"));
}

TEST_F(CliNoFcgi, AServerWithoutTheFastCgiEndIsAskedAtTheOther) {
    const ProcessResult result = login({"--fcgi", "--json"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(Json::parse(result.out)["service"], "sync");
}

TEST_F(CliTlsOnly, ItIsHintedAt) {
    const ProcessResult result = login();
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_THAT(result.err, AllOf(HasSubstr("insists on HTTPS"), HasSubstr("--tls-port")));
}

TEST_F(CliTlsOnly, OrGoneToWhenAPortIsGiven) {
    const ProcessResult result = login({"--tls-port", std::to_string(nas.tlsPort()), "--json"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const Json json = Json::parse(result.out);
    EXPECT_EQ(json["tls"], true);
    EXPECT_EQ(json["port"], nas.tlsPort());
    EXPECT_EQ(cli.runBare({"stat", "/home"}).exitCode, 0);
}
