#include "cli_support.h"
#include "support/programs.h"

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Json = nlohmann::json;

namespace {

/// anna is an administrator, ben isn't.
class CliDevice : public CliOnRoads {
protected:
    explicit CliDevice(std::vector<std::string> more = {}) : CliOnRoads(nasWith(std::move(more))) {
        ben.become("ben", "hidden");
    }
    /// `torvi device config` of that user.
    static ProcessResult run(const Cli& who, std::vector<std::string> arguments) {
        return who.run(whole(std::move(arguments)));
    }
    static Json json(const Cli& who, std::vector<std::string> arguments) {
        return jsonOf(who, whole(std::move(arguments)));
    }
    static std::vector<std::string> whole(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"device", "config"});
        return arguments;
    }
    /// With these in the environment and on standard input.
    ProcessResult runWith(const Cli& who, std::vector<std::string> arguments,
                          const std::map<std::string, std::string>& environment) {
        Process::Options options = who.options();
        for (const auto& [name, value] : environment) options.environment[name] = value;
        return runProcess(kTorvi, who.connected(whole(std::move(arguments))), options);
    }

    Cli ben{nas, GetParam()};
};

class CliDeviceRules : public CliDevice {
protected:
    CliDeviceRules()
        : CliDevice({"--config-acl", "Policy:conflict Policy:0", "--config-acl",
                     "Admin:use manager password:1", "--config-password", "k€y"}) {}
};

/// With a user whose name not every request can carry.
class CliDeviceNames : public CliDevice {
protected:
    CliDeviceNames() : CliDevice({"--user", "jo+kim:open"}) {}
};

}  // namespace

CLI_ON_ROADS(CliDeviceNames, (std::vector<CliRoad>{{}}));
CLI_ON_ALL_ROADS(CliDevice);
CLI_ON_ROADS(CliDeviceRules, (std::vector<CliRoad>{{}, {false, false, true}}));

TEST_P(CliDevice, WhatIsSetForThisMachineIsShown) {
    EXPECT_THAT(run(cli, {"get"}).out, HasSubstr("Nothing is set"));
    const ProcessResult set =
        run(cli, {"set", "conflict-policy=2", "mail-port=25", "file-filter=*.tmp", "file-filter=~*"});
    ASSERT_EQ(set.exitCode, 0) << set.err;
    EXPECT_THAT(set.out, AllOf(HasSubstr("mail-port"), HasSubstr("25"), HasSubstr("*.tmp, ~*")));
    const Json got = json(cli, {"get"});
    EXPECT_EQ(got["count"], 3);
    EXPECT_EQ(got["items"]["conflict-policy"], "2");
    EXPECT_EQ(got["items"]["file-filter"], Json::array({"*.tmp", "~*"}));
    EXPECT_EQ(json(cli, {"get", "mail-port"})["items"], Json::object({{"mail-port", "25"}}));
    // The device that has logged in is the one that is meant.
    const Json devices = json(cli, {"list"});
    ASSERT_EQ(devices["total"], 1);
    EXPECT_EQ(devices["devices"][0]["uid"], got["device"]);
    EXPECT_TRUE(devices["devices"][0]["modified"].is_string());
    // At an older server a login is tried elsewhere first.
    if (!GetParam().older) {
        EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
    }
}

TEST_P(CliDevice, TheTemplateIsToldFromWhatIsTheDevicesOwn) {
    json(cli, {"set", "--device", "desk", "--template", "mail-server=mail.example"});
    json(cli, {"set", "--device", "lap", "smart-sync=1"});
    EXPECT_EQ(json(cli, {"get", "--device", "lap"})["count"], 2);
    EXPECT_EQ(json(cli, {"get", "--device", "lap", "--own"})["items"], Json::object({{"smart-sync", "1"}}));
    EXPECT_EQ(json(cli, {"get", "--device", "lap", "--template"})["items"],
              Json::object({{"mail-server", "mail.example"}}));
    EXPECT_EQ(run(cli, {"get", "--own", "--template"}).exitCode, 2);
}

TEST_P(CliDevice, WhatNothingWasSavedForIsItsOwnExitCodeOnRequest) {
    EXPECT_EQ(run(cli, {"get", "--device", "desk"}).exitCode, 0);
    const ProcessResult result = run(cli, {"get", "--device", "desk", "--check"});
    EXPECT_EQ(result.exitCode, 5);
    EXPECT_THAT(result.err, HasSubstr("nothing is saved for desk"));
}

TEST_P(CliDevice, TheMailPasswordIsNoArgumentAndNotShownUnasked) {
    EXPECT_THAT(run(cli, {"set", "mail-password=hush"}).err,
                HasSubstr("mail-password stands without a value"));
    EXPECT_EQ(run(cli, {"set", "mail-password=hush"}).exitCode, 2);
    EXPECT_EQ(run(cli, {"set", "mail-port"}).exitCode, 2);
    const ProcessResult nowhere = cli.runWithoutPassword(cli.connected(whole({"set", "mail-password"})));
    EXPECT_EQ(nowhere.exitCode, 2);
    EXPECT_THAT(nowhere.err, HasSubstr("no mail password"));
    const std::string file = cli.work().write("secret", "hush €\n");
    ProcessResult result = run(cli, {"set", "mail-password", "--mail-password-file", file});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_THAT(result.out, AllOf(HasSubstr("(set)"), Not(HasSubstr("hush"))));
    EXPECT_THAT(run(cli, {"get"}).out, AllOf(HasSubstr("(set)"), Not(HasSubstr("hush"))));
    EXPECT_EQ(json(cli, {"get"})["items"]["mail-password"], nullptr);
    EXPECT_EQ(json(cli, {"get", "--secrets"})["items"]["mail-password"], "hush €");
    EXPECT_THAT(nas.log(), Not(HasSubstr("hush")));
    EXPECT_EQ(run(cli, {"set", "mail-port=1", "--mail-password-file", file}).exitCode, 2);
}

TEST_P(CliDevice, WrongUsageIsFoundBeforeAnythingIsSent) {
    EXPECT_THAT(run(cli, {"set", "no-item=1"}).err, HasSubstr("no-item is none of smart-sync"));
    EXPECT_THAT(run(cli, {"set", "mail-port=1", "mail-port=2"}).err, HasSubstr("twice"));
    EXPECT_EQ(run(cli, {"set"}).exitCode, 2);
    EXPECT_EQ(run(cli, {"get", "no-item"}).exitCode, 2);
    // What is shown is always about who asks, and this machine is no device of another user.
    EXPECT_EQ(run(cli, {"get", "--of", "ben"}).exitCode, 2);
    EXPECT_EQ(run(cli, {"set", "--of", "ben", "smart-sync=1"}).exitCode, 2);
    EXPECT_EQ(run(cli, {"reset", "--of", "ben"}).exitCode, 2);
    EXPECT_EQ(nas.requestCount("login"), 0);
    EXPECT_EQ(run(cli, {"get", "--device", "a&b"}).exitCode, 2);
}

TEST_P(CliDevice, ADeviceIsFoundByItsName) {
    json(cli, {"set", "mail-port=25"});
    const Json device = json(cli, {"list"})["devices"][0];
    for (const char* key : {"name", "uid"}) {
        const std::string named = device[key];
        EXPECT_EQ(json(cli, {"get", "--device", named})["items"]["mail-port"], "25") << named;
    }
}

TEST_P(CliDevice, AResetTakesBackWhatWasSetAndOnlyThen) {
    json(cli, {"set", "--device", "desk", "smart-sync=1"});
    const ProcessResult planned = run(cli, {"reset", "--device", "desk", "--dry-run"});
    EXPECT_THAT(planned.out, HasSubstr("would reset"));
    EXPECT_EQ(json(cli, {"get", "--device", "desk"})["count"], 1);
    EXPECT_EQ(json(cli, {"reset", "--device", "desk"})["reset"], true);
    EXPECT_EQ(json(cli, {"get", "--device", "desk"})["count"], 0);
    EXPECT_EQ(run(cli, {"reset", "--device", "lap"}).exitCode, 5);
    EXPECT_EQ(run(ben, {"reset", "--device", "desk", "--of", "anna"}).exitCode, 6);
}

TEST_P(CliDevice, WhatAnAdministratorChangesIsNewsToTheUser) {
    EXPECT_THAT(run(ben, {"notify"}).out, HasSubstr("There are none"));
    json(cli, {"set", "--of", "ben", "--device", "desk", "--at-once", "conflict-policy=1"});
    json(cli, {"reset", "--of", "ben", "--device", "desk"});
    const Json changes = json(ben, {"notify"})["changes"];
    ASSERT_EQ(changes.size(), 2u) << changes;
    EXPECT_EQ(changes[0]["device"], "desk");
    EXPECT_EQ(changes[0]["modifier"], "anna");
    EXPECT_EQ(changes[0]["action"], "1");
    EXPECT_EQ(changes[0]["value"], "Policy/conflict Policy");
    EXPECT_EQ(json(ben, {"notify", "--limit", "1", "--offset", "1"})["changes"][0]["id"], changes[1]["id"]);
    EXPECT_EQ(json(cli, {"notify", "--of", "ben", "--device", "desk"})["count"], 2);
    EXPECT_EQ(json(cli, {"notify", "--of", "ben", "--device", "lap"})["count"], 0);
    EXPECT_THAT(run(ben, {"notify"}).out, AllOf(HasSubstr("anna"), HasSubstr("Policy/conflict Policy")));
    EXPECT_EQ(run(ben, {"set", "--of", "anna", "--device", "desk", "smart-sync=1"}).exitCode, 6);
}

TEST_P(CliDeviceNames, AUserIsTakenWhereTheRequestCarriesTheName) {
    Cli kim{nas, GetParam()};
    kim.become("jo+kim", "open");
    EXPECT_EQ(json(kim, {"get"})["count"], 0);
    EXPECT_EQ(json(kim, {"list"})["user"], "jo+kim");
    EXPECT_EQ(json(cli, {"list", "--of", "jo+kim"})["total"], 1);
    EXPECT_EQ(run(cli, {"reset", "--of", "jo+kim", "--device", "desk"}).exitCode, 5);
    for (const ProcessResult& refused : {run(kim, {"set", "smart-sync=1"}),
                                         run(cli, {"set", "--of", "jo+kim", "--device", "a", "smart-sync=1"}),
                                         run(cli, {"notify", "--of", "jo+kim"})}) {
        EXPECT_EQ(refused.exitCode, 2);
        EXPECT_THAT(refused.err, HasSubstr("jo+kim has a +"));
    }
    EXPECT_EQ(nas.requestCount("nubo_save_device_config"), 0) << nas.log();
}

TEST_P(CliDeviceNames, AUidThatNoRequestCanCarryIsRefusedFromTheListToo) {
    answer("nubo_get_device_config_list",
           R"({"total":1,"device":[{"device_name":"desk","device_uid":"d&1"}]})");
    const ProcessResult result = run(cli, {"get", "--device", "d&1"});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_THAT(result.err, HasSubstr("d&1 has a &"));
    EXPECT_EQ(nas.requestCount("nubo_get_device_config"), 0) << nas.log();
}

TEST_P(CliDeviceRules, TheRulesAreShown) {
    const Json rules = json(ben, {"acl"});
    EXPECT_EQ(rules["managed"], true);
    EXPECT_EQ(rules["password"], true);
    EXPECT_EQ(rules["conflict-policy"], false);
    EXPECT_EQ(rules["mail"], true);
    EXPECT_THAT(run(ben, {"acl"}).out, HasSubstr("conflict-policy  no"));
}

TEST_P(CliDeviceRules, TheConfigurationPasswordOpensWhatOneMayNotSet) {
    const std::vector<std::string> set = {"set", "conflict-policy=1"};
    std::vector<std::string> alone = ben.connected(whole(set));
    alone.insert(alone.begin(), {"--wait", kTorvi});
    const ProcessResult refused = runProcess(findProgram("setsid"), alone, ben.options());
    EXPECT_EQ(refused.exitCode, 6);
    EXPECT_THAT(refused.err, HasSubstr("--config-password-file"));
    const ProcessResult wrong = runWith(ben, set, {{"TORVI_CONFIG_PASSWORD", "guess"}});
    EXPECT_EQ(wrong.exitCode, 4);
    EXPECT_THAT(wrong.err, HasSubstr("configuration password is wrong"));
    EXPECT_EQ(json(ben, {"get"})["count"], 0);
    EXPECT_EQ(runWith(ben, set, {{"TORVI_CONFIG_PASSWORD", "k€y"}}).exitCode, 0);
    EXPECT_EQ(json(ben, {"get"})["items"]["conflict-policy"], "1");
    const std::string file = ben.work().write("key", "k€y\n");
    EXPECT_EQ(run(ben, {"set", "conflict-policy=2", "--config-password-file", file}).exitCode, 0);
    EXPECT_EQ(json(ben, {"get"})["items"]["conflict-policy"], "2");
    // What is left to users needs none.
    EXPECT_EQ(run(ben, {"set", "smart-sync=1"}).exitCode, 0);
}

TEST_P(CliDeviceRules, TheConfigurationPasswordIsAskedForOnATerminal) {
    Process::Options options = ben.options();
    options.arguments = ben.connected(whole({"set", "conflict-policy=1"}));
    options.terminal = true;
    Process process(kTorvi, options);
    ASSERT_TRUE(process.waitFor([](const std::string& out, const std::string&) {
        return out.find("Configuration password") != out.npos;
    }));
    process.write("k€y\n");
    EXPECT_EQ(process.wait(), 0) << process.out();
    EXPECT_THAT(process.out(), Not(HasSubstr("k€y")));
    EXPECT_EQ(json(ben, {"get"})["items"]["conflict-policy"], "1");
}
