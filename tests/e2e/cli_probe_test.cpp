#include "cli_support.h"
#include "support/rawserver.h"

using testing::AllOf;
using testing::HasSubstr;
using Json = nlohmann::json;

namespace {

const char* const kUid = "11112222-3333-4444-5555-666677778888";

class CliProbe : public CliTest {
protected:
    CliProbe() : CliProbe(std::vector<std::string>()) {}
    explicit CliProbe(std::vector<std::string> arguments) : CliTest(nasWith(std::move(arguments))) {}
    /// With nothing that a login would need.
    ProcessResult ask(std::vector<std::string> arguments) const {
        arguments.insert(arguments.end(), {"--server", "127.0.0.1", "--port", std::to_string(nas.port())});
        return cli.runWithoutPassword(std::move(arguments));
    }
    Json identity(const std::vector<std::string>& more = {}) const {
        std::vector<std::string> arguments = {"probe", "--json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const ProcessResult result = ask(arguments);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        return Json::parse(result.out, nullptr, false);
    }
};

class CliProbeOld : public CliProbe {
protected:
    CliProbeOld() : CliProbe({"--no-sync-service"}) {}
};
class CliProbeBooting : public CliProbe {
protected:
    CliProbeBooting() : CliProbe({"--booting"}) {}
};
class CliProbeTls : public CliProbe {
protected:
    CliProbeTls() : CliProbe({"--redirect-tls"}) {}
};

class CliPing : public CliProbe {
protected:
    CliPing() : CliProbe({"--uid", kUid}) {}
    Nas other{nasWith({"--uid", "99990000-0000-0000-0000-000000000000"})};
    std::string at(const Nas& server) const { return "127.0.0.1:" + std::to_string(server.port()); }
};

}  // namespace

TEST_F(CliProbe, TellsWhoTheServerIsWithoutALogin) {
    const Json json = identity();
    EXPECT_EQ(json["uid"], "5E1F0C3A-9B74-4D26-8A11-2F6C7D90B3E4");
    EXPECT_EQ(json["suid"], "5E1F0C3A");
    EXPECT_EQ(json["mac"], "02:00:5E:10:00:01");
    EXPECT_EQ(json["syncService"], true);
    EXPECT_EQ(json["syncVersion"], "4.3.0");
    EXPECT_EQ(json["version"], "5.1.0");
    EXPECT_EQ(json["build"], "20260105");
    EXPECT_EQ(json["state"], "ready");
    EXPECT_EQ(json["tls"], false);
    EXPECT_EQ(nas.requestCount("login"), 0);
}

TEST_F(CliProbe, TellsItInOneScreen) {
    const ProcessResult result = ask({"probe"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_THAT(result.out, AllOf(HasSubstr("Firmware:      5.1.0 build 20260105\n"),
                                  HasSubstr("Sync service:  4.3.0\n"), HasSubstr("State:         ready\n")));
    EXPECT_LT(std::count(result.out.begin(), result.out.end(), '\n'), 24);
}

TEST_F(CliProbe, TheUserTypeIsThatOfTheUserWhoIsNamed) {
    EXPECT_EQ(identity({"--user", "anna"})["userType"], 1);
    EXPECT_EQ(identity({"--user", "ben"})["userType"], 0);
}

TEST_F(CliProbe, NoServerIsItsOwnExitCode) {
    nas.stop();
    EXPECT_EQ(ask({"probe"}).exitCode, 3);
}

TEST_F(CliProbeOld, AServerWithoutTheSyncServiceIsNamedAsSuch) {
    const Json json = identity();
    EXPECT_EQ(json["syncService"], false);
    EXPECT_EQ(json["syncVersion"], "");
    EXPECT_THAT(ask({"probe"}).out, HasSubstr("only the older service"));
}

TEST_F(CliProbeBooting, ABootingServerIsNamedAsSuch) {
    EXPECT_EQ(identity()["state"], "booting");
}

TEST_F(CliProbeTls, AServerThatInsistsOnHttpsIsHintedAtOrFollowed) {
    const ProcessResult refused = ask({"probe"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_THAT(refused.err, HasSubstr("--tls-port"));
    const Json json = identity({"--tls-port", std::to_string(nas.tlsPort())});
    EXPECT_EQ(json["tls"], true);
    EXPECT_EQ(json["port"], nas.tlsPort());
}

TEST_F(CliPing, AnyServerAnswersWhereNoneIsLookedFor) {
    const ProcessResult result = ask({"ping", "--json"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const Json json = Json::parse(result.out);
    EXPECT_TRUE(json["network"].is_boolean());
    EXPECT_EQ(json["uid"], "");
    EXPECT_EQ(json["addresses"][0]["valid"], true);
}

TEST_F(CliPing, CandidatesAreComparedWithTheServerItself) {
    const ProcessResult result = ask({"ping", at(nas), at(other), "--json"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.err, HasSubstr("another server answers there"));
    const Json json = Json::parse(result.out);
    EXPECT_EQ(json["uid"], kUid);
    EXPECT_EQ(json["addresses"][0]["valid"], true);
    EXPECT_EQ(json["addresses"][1]["valid"], false);
    EXPECT_EQ(json["addresses"][1]["dwStatus"], 14);
}

TEST_F(CliPing, AUidMayBeGivenInWhateverCase) {
    EXPECT_EQ(ask({"ping", "--uid", kUid}).exitCode, 0);
    EXPECT_EQ(ask({"ping", "--uid", "99990000-0000-0000-0000-000000000000"}).exitCode, 1);
}

TEST_F(CliPing, TheLoginKeepsTheUidForLaterCandidates) {
    ASSERT_EQ(cli.run({"login"}).exitCode, 0);
    const std::string place = at(nas);
    nas.stop();
    const ProcessResult result = cli.runBare({"ping", place, at(other), "--json"});
    const Json json = Json::parse(result.out);
    EXPECT_EQ(json["uid"], kUid);
    EXPECT_EQ(json["addresses"][0]["dwStatus"], 2);
    EXPECT_EQ(json["addresses"][1]["dwStatus"], 14);
    EXPECT_EQ(result.exitCode, 3) << "that of the first failure";
}

TEST_F(CliPing, WhatIsNoAddressIsWrongUsage) {
    EXPECT_EQ(ask({"ping", "somewhere:99999", "--uid", kUid}).exitCode, 2);
    EXPECT_EQ(ask({"ping", ":80", "--uid", kUid}).exitCode, 2);
}
