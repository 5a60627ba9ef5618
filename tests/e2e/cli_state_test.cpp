#include "cli_support.h"

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Json = nlohmann::json;

namespace {

class CliState : public CliOnRoads {
protected:
    CliState()
        : CliOnRoads(nasWith({"--quota", "ben:1048576", "--veto", "*.tmp", "--veto", ".hidden-db",
                              "--external-address", "203.0.113.7", "--external-port", "8081"})) {}
    void asBen() { cli.become("ben", "hidden"); }
};

}  // namespace

CLI_ON_ALL_ROADS(CliState);

TEST_P(CliState, StatusTellsWhatIsInOrderAndTheAddresses) {
    serve("a", "1");
    const Json json = runJson({"status", "--detail"});
    EXPECT_EQ(json["service"], GetParam().older ? "older" : "sync");
    EXPECT_EQ(json["model"], "Torvi Shelf 4");
    EXPECT_EQ(json["firmware"], "5.1.0.20260105");
    EXPECT_EQ(json["homeAvailable"], true);
    EXPECT_EQ(json["recovering"], false);
    EXPECT_EQ(json["sync"]["enabled"], true);
    EXPECT_EQ(json["sync"]["home"], true);
    EXPECT_EQ(json["addresses"]["external"], "203.0.113.7");
    EXPECT_EQ(json["addresses"]["externalPort"], 8081);
    EXPECT_EQ(json["addresses"]["port"], nas.port());
    EXPECT_GT(json["lastChange"], 0);
    EXPECT_EQ(nas.requestCount("refused"), GetParam().older ? 1 : 0) << nas.log();
}

TEST_P(CliState, StatusIsAScreenForReaders) {
    const ProcessResult result = cli.run({"status"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_THAT(result.out, AllOf(HasSubstr("Model:                 Torvi Shelf 4\n"),
                                  HasSubstr("External address:      203.0.113.7 (HTTP 8081)\n")));
}

TEST_P(CliState, FoldersHaveSizesWhenAskedInDetail) {
    std::filesystem::create_directories(nas.folder().path() / "Public");
    asBen();
    nas.folder().write("homes/ben/a", std::string(3000, 'x'));
    const auto homeOf = [](const Json& json) {
        for (const Json& folder : json["folders"]) {
            if (folder["name"] == "home") return folder;
        }
        return Json();
    };
    const Json plain = runJson({"folders"});
    EXPECT_EQ(plain["count"], 2);
    EXPECT_EQ(homeOf(plain)["path"], "/home");
    EXPECT_EQ(homeOf(plain)["privilege"], 2);
    EXPECT_TRUE(homeOf(plain)["used"].is_null());
    const Json detailed = homeOf(runJson({"folders", "--detail", "--refresh"}));
    EXPECT_EQ(detailed["used"], 3000);
    EXPECT_EQ(detailed["capacity"], 1048576);
    EXPECT_EQ(detailed["free"], 1048576 - 3000);
    EXPECT_THAT(cli.run({"folders"}).out, HasSubstr("Public"));
}

TEST_P(CliState, QuotaTellsWhatIsUsedAndWhatIsLeft) {
    asBen();
    nas.folder().write("homes/ben/a", std::string(48576, 'x'));
    const Json json = runJson({"quota"});
    EXPECT_EQ(json["enabled"], true);
    EXPECT_GT(json["volumeTotal"], 0);
    ASSERT_EQ(json["quotas"].size(), 1u);
    EXPECT_EQ(json["quotas"][0]["quota"], 1048576);
    EXPECT_EQ(json["quotas"][0]["used"], 48576);
    EXPECT_EQ(json["quotas"][0]["available"], 1000000);
    EXPECT_THAT(cli.run({"quota"}).out, AllOf(HasSubstr("1.0 MiB"), HasSubstr("47.4 KiB")));
}

TEST_P(CliState, WhoHasNoQuotaHearsOfTheVolumeAlone) {
    const Json json = runJson({"quota"});
    EXPECT_EQ(json["enabled"], false);
    EXPECT_THAT(json["quotas"], IsEmpty());
    EXPECT_THAT(cli.run({"quota"}).out, HasSubstr("No quota"));
}

TEST_P(CliState, HomeTellsWhereOnesOwnAndOthersLie) {
    EXPECT_EQ(runJson({"home"})["home"], "/home");
    EXPECT_EQ(runJson({"home", "ben"})["home"], "/homes/ben");
    EXPECT_EQ(cli.run({"home", "nobody"}).exitCode, 5);
}

TEST_P(CliState, VetoListsTheNames) {
    EXPECT_EQ(cli.run({"veto"}).out, "*.tmp\n.hidden-db\n");
    const Json json = runJson({"veto"});
    EXPECT_THAT(json["names"], ElementsAre("*.tmp", ".hidden-db"));
    EXPECT_EQ(json["text"], "/*.tmp/.hidden-db/");
}
