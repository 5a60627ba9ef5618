#include "cli_support.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using Json = nlohmann::json;

namespace {

class CliVersions : public CliOnRoads {
protected:
    CliVersions() : CliOnRoads(shared()) {}
    static Nas::Options shared() {
        Nas::Options options;
        options.arguments = {"--team", "anna:/home/Plans:ben", "--job-delay", "300"};
        return options;
    }
    void SetUp() override { serve("Plans/plan", "first"); }

    std::vector<std::filesystem::path> records() const {
        std::vector<std::filesystem::path> paths;
        std::error_code ignored;
        for (const auto& file :
             std::filesystem::directory_iterator(cli.state().path() / "torvi" / "locks", ignored))
            paths.push_back(file.path());
        return paths;
    }
    /// Where the server works on a version of anna's.
    std::string work(const std::string& version, const std::string& name) const {
        return home + "@Versions/" + version + "/" + name;
    }
};

class CliVersionsEdges : public CliVersions {};

}  // namespace

CLI_ON_ALL_ROADS(CliVersions);
INSTANTIATE_TEST_SUITE_P(OneRoad, CliVersionsEdges, testing::Values(CliRoad{}),
                         [](const auto& info) { return nameOf(info.param); });

TEST_P(CliVersions, ANewVersionIsMadeUnderALockAndTheOldOneStays) {
    EXPECT_EQ(runJson({"version-probe"})["version"], "1.0");
    const Json lock = runJson({"version-lock", "/home/Plans/plan"});
    EXPECT_EQ(lock["renewed"], false);
    const std::string version = lock["versionId"];

    // What the client makes deltas with: here the version's own signature does.
    EXPECT_EQ(runJson({"version-sig", "/home/Plans/plan"})["done"], true);
    EXPECT_EQ(runJson({"version-stat", "/home/Plans/plan"})["exists"], false);
    nas.folder().write(work(version, "local.signature"), nas.folder().read(work(version, "signature")));
    const Json delta = runJson({"version-delta", "/home/Plans/plan"});
    EXPECT_GT(delta["size"], 0);
    EXPECT_EQ(runJson({"version-stat", "/home/Plans/plan"})["size"], delta["size"]);

    runJson({"put", keep("plan", "second"), "/home/Plans/", "--overwrite"});
    const Json commit = runJson({"version-commit", "/home/Plans/plan", "--time", "1500000000"});
    EXPECT_EQ(commit["versionId"], version);
    EXPECT_EQ(commit["done"], true);
    EXPECT_EQ(runJson({"version-unlock", "/home/Plans/plan"})["locked"], false);
    EXPECT_EQ(nas.folder().read(home + "Plans/plan"), "second");
    EXPECT_EQ(modifiedTime(nas.folder().file(home + "Plans/plan")), 1500000000);
    EXPECT_EQ(nas.folder().read(work(version, "content")), "first");
    EXPECT_THAT(records(), IsEmpty());
}

TEST_P(CliVersionsEdges, TheLockIsKeptForItsOwnerAloneAndAskedAbout) {
    const Json lock = runJson({"version-lock", "/home/Plans/plan"});
    ASSERT_EQ(records().size(), 1u);
    struct stat status = {};
    ASSERT_EQ(::stat(records()[0].c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600u);
    const ProcessResult again = cli.run({"version-lock", "/home/Plans/plan"});
    EXPECT_EQ(again.exitCode, 0) << again.err;
    EXPECT_THAT(again.out, AllOf(HasSubstr("still locked: /home/Plans/plan"),
                                 HasSubstr(lock["lockId"].get<std::string>())));
    EXPECT_EQ(cli.run({"version-lock", "/home/Plans/plan", "--new"}).exitCode, 1) << "it is locked";
}

TEST_P(CliVersionsEdges, ALockThatIsNoGoodAnyMoreIsForgotten) {
    const Json lock = runJson({"version-lock", "/home/Plans/plan"});
    // From elsewhere, and so without the record.
    const Cli elsewhere(nas);
    ASSERT_EQ(elsewhere.run({"version-unlock", "/home/Plans/plan", "--lock", lock["lockId"]}).exitCode, 0);
    const ProcessResult gone = cli.run({"version-lock", "/home/Plans/plan"});
    EXPECT_EQ(gone.exitCode, 1);
    EXPECT_THAT(gone.err, HasSubstr("no good any more and is forgotten"));
    EXPECT_THAT(records(), IsEmpty());
    EXPECT_EQ(runJson({"version-lock", "/home/Plans/plan"})["renewed"], false);
}

TEST_P(CliVersionsEdges, ALockShutsOthersOut) {
    const std::vector<std::string> team = {"--team", "/home/.Torvi/Plans=vtf://anna-Plans"};
    const auto asBen = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), team.begin(), team.end());
        Cli ben(nas);
        ben.become("ben", "hidden");
        return ben.run(arguments);
    };
    runJson({"version-lock", "/home/Plans/plan"});
    const ProcessResult lock = asBen({"version-lock", "/home/.Torvi/Plans/plan"});
    EXPECT_EQ(lock.exitCode, 1);
    EXPECT_THAT(lock.err, HasSubstr("somebody else holds its lock"));
    EXPECT_EQ(asBen({"put", keep("plan", "bens"), "/home/.Torvi/Plans/", "-f"}).exitCode, 6);
    EXPECT_EQ(nas.folder().read(home + "Plans/plan"), "first");
    runJson({"version-unlock", "/home/Plans/plan"});
    EXPECT_EQ(asBen({"version-lock", "/home/.Torvi/Plans/plan"}).exitCode, 0);
}

TEST_P(CliVersionsEdges, WithoutALockThereIsNothingToDo) {
    for (const char* command : {"version-unlock", "version-clean", "version-sig", "version-delta",
                                "version-stat", "version-commit"}) {
        const ProcessResult result = cli.run({command, "/home/Plans/plan"});
        EXPECT_EQ(result.exitCode, 2) << command;
        EXPECT_THAT(result.err, HasSubstr("torvi version-lock")) << command;
    }
    EXPECT_EQ(cli.run({"version-lock", "/home/Plans/none"}).exitCode, 1);
    EXPECT_THAT(records(), IsEmpty());
}

TEST_P(CliVersionsEdges, CleaningDropsTheWorkAndADryRunDoesNot) {
    const std::string version = runJson({"version-lock", "/home/Plans/plan"})["versionId"];
    runJson({"version-sig", "/home/Plans/plan"});
    EXPECT_THAT(cli.run({"version-clean", "/home/Plans/plan", "--dry-run"}).out, HasSubstr(version));
    EXPECT_TRUE(served("@Versions/" + version + "/signature"));
    EXPECT_EQ(runJson({"version-clean", "/home/Plans/plan"})["cleaned"], true);
    EXPECT_FALSE(served("@Versions/" + version + "/signature"));
    EXPECT_EQ(cli.run({"version-unlock", "/home/Plans/plan"}).exitCode, 0);
}

TEST_P(CliVersionsEdges, AJobIsDetachedOrFailsAloud) {
    const std::string version = runJson({"version-lock", "/home/Plans/plan"})["versionId"];
    const Json started = runJson({"version-sig", "/home/Plans/plan", "--detach"});
    EXPECT_EQ(started["done"], false);
    EXPECT_EQ(runJson({"jobs", started["pid"], "--wait"})["done"], true);
    nas.folder().write(work(version, "local.signature"), "no signature");
    const ProcessResult delta = cli.run({"version-delta", "/home/Plans/plan"});
    EXPECT_NE(delta.exitCode, 0);
    EXPECT_THAT(delta.err, HasSubstr("job "));
    EXPECT_EQ(cli.run({"version-commit", "/home/Plans/plan"}).exitCode, 5) << "nothing was uploaded";
}

TEST_P(CliVersionsEdges, ProgressOfAJobIsALinePerTenthWhereNoTerminalIs) {
    runJson({"version-lock", "/home/Plans/plan"});
    const ProcessResult result = cli.run({"version-sig", "/home/Plans/plan"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_THAT(result.err, HasSubstr("plan: 100%\n"));
    EXPECT_THAT(result.out, HasSubstr("is made\n"));
}
