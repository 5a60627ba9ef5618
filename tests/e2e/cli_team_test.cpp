#include "cli_support.h"

using testing::HasSubstr;
using Json = nlohmann::json;

namespace {

/// ben works in a folder of anna's.
class CliTeam : public CliOnRoads {
protected:
    CliTeam() : CliOnRoads(shared()) {}
    static Nas::Options shared() {
        Nas::Options options;
        options.arguments = {"--team", "anna:/home/Plans:ben"};
        return options;
    }
    void SetUp() override {
        std::filesystem::create_directories(nas.folder().path() / home / "Plans");
        cli.become("ben", "hidden");
    }
    std::vector<std::string> shares(std::vector<std::string> arguments) const {
        arguments.insert(arguments.end(), {"--team", "/home/.Torvi/Plans=vtf://anna-Plans"});
        return arguments;
    }
    const std::string plans = home + "Plans/";
};

class CliTeamEdges : public CliTeam {};

}  // namespace

// At the older service they are where they are seen, and need no --team.
CLI_ON_ROADS(CliTeam, syncRoads());
INSTANTIATE_TEST_SUITE_P(OneRoad, CliTeamEdges, testing::Values(CliRoad{}),
                         [](const auto& info) { return nameOf(info.param); });

TEST_P(CliTeam, CommandsWorkInATeamFolder) {
    runJson(shares({"mkdir", "/home/.Torvi/Plans/sub"}));
    runJson(shares({"touch", "/home/.Torvi/Plans/sub/a", "--time", "1000000000"}));
    EXPECT_EQ(modifiedTime(nas.folder().file(plans + "sub/a")), 1000000000);
    runJson(shares({"mv", "/home/.Torvi/Plans/sub/a", "/home/.Torvi/Plans/sub/b"}));
    runJson(shares({"mv", "/home/.Torvi/Plans/sub/b", "/home/.Torvi/Plans/"}));
    EXPECT_TRUE(served("Plans/b"));
    EXPECT_EQ(runJson(shares({"ls", "/home/.Torvi/Plans"}))["count"], 2);

    const std::string content = randomBytes(300000);
    runJson(shares({"put", keep("whole", content), "/home/.Torvi/Plans/"}));
    EXPECT_TRUE(nas.folder().read(plans + "whole") == content);
    runJson(shares({"put", keep("sliced", content), "/home/.Torvi/Plans/", "--resume"}));
    EXPECT_TRUE(nas.folder().read(plans + "sliced") == content);
    runJson(shares({"put", "--batch", keep("c", "1"), keep("d", "2"), "/home/.Torvi/Plans"}));
    EXPECT_EQ(nas.folder().read(plans + "d"), "2");
    runJson(shares({"get", "/home/.Torvi/Plans/sliced", "back"}));
    EXPECT_TRUE(cli.work().read("back") == content);

    EXPECT_EQ(runJson(shares({"rm", "-r", "/home/.Torvi/Plans/sub"}))["removed"], true);
    EXPECT_FALSE(served("Plans/sub"));
}

TEST_P(CliTeamEdges, LoginKeepsTheFoldersAndNoneTakesThemOut) {
    ASSERT_EQ(cli.run(shares({"login"})).exitCode, 0);
    EXPECT_EQ(Json::parse(cli.state().read("torvi/profile.json"))["teams"],
              Json({"/home/.Torvi/Plans/=vtf://anna-Plans/"}));
    EXPECT_EQ(cli.runBare({"mkdir", "/home/.Torvi/Plans/x"}).exitCode, 0);
    EXPECT_TRUE(served("Plans/x"));
    EXPECT_EQ(cli.runBare({"mkdir", "/home/.Torvi/Plans/y", "--team", "none"}).exitCode, 5);
    EXPECT_FALSE(served("Plans/y"));
}

TEST_P(CliTeamEdges, TheFolderItselfIsNotChanged) {
    EXPECT_EQ(cli.run(shares({"rm", "-r", "/home/.Torvi/Plans"})).exitCode, 6);
    EXPECT_NE(cli.run(shares({"mv", "/home/.Torvi/Plans", "/home/.Torvi/Other"})).exitCode, 0);
    EXPECT_EQ(cli.run(shares({"mkdir", "/home/.Torvi/Plans"})).exitCode, 10);
    EXPECT_TRUE(served("Plans"));
}

TEST_P(CliTeamEdges, OnlyTheOwnerBringsBackWhatWasDeletedThere) {
    serve("Plans/a", "1");
    ASSERT_EQ(cli.run(shares({"rm", "/home/.Torvi/Plans/a"})).exitCode, 0);
    const ProcessResult receiver = cli.run(shares({"restore", "/home/.Torvi/Plans/a"}));
    EXPECT_EQ(receiver.exitCode, 6);
    EXPECT_THAT(receiver.err, HasSubstr("only the owner"));
    EXPECT_EQ(nas.requestCount("trash_recovery"), 0);
    cli.become("anna", "secret");
    EXPECT_EQ(cli.run({"restore", "/home/Plans/a"}).exitCode, 0);
    EXPECT_TRUE(served("Plans/a"));
}

TEST_P(CliTeamEdges, AFolderThatIsNoneIsWrongUsage) {
    for (const char* team : {"Plans", "/home/Plans=vtf://anna-Plans", "/home/.Torvi/Plans=/home/Plans",
                             "/home/.Torvi/=vtf://x", "/home/.Torvi/Plans=vtf://"}) {
        const ProcessResult result = cli.run({"ls", "/home", "--team", team});
        EXPECT_EQ(result.exitCode, 2) << team;
        EXPECT_THAT(result.err, HasSubstr("CLIENTPATH=SERVERPATH"));
    }
}
