#include "cli_cluster.h"

#include <set>

#include "visitor.h"

using testing::HasSubstr;
using Json = nlohmann::json;

namespace {

/// A folder that ben shares with anna lies on the second node.
class CliCluster : public CliClusterTest {
protected:
    CliCluster() : CliClusterTest({"--team", "ben:/home/Plans:anna"}) {}

    ProcessResult run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.end(), {"--team", "/home/.Torvi/Plans=vtf://ben-Plans@node2"});
        return cli.run(std::move(arguments));
    }
};

}  // namespace

TEST_F(CliCluster, AnUploadInSlicesGoesOnAtTheNodeThatHasTheTeamFolder) {
    std::filesystem::create_directories(other.folder().path() / "homes/ben/Plans");
    const std::string content = randomBytes(12 << 20);
    const std::string file = cli.work().write("film", content);
    other.arm("cut-upload,match=chunked_upload,bytes=5000000");
    const ProcessResult broken = run({"put", file, "/home/.Torvi/Plans/", "--resume"});
    ASSERT_EQ(broken.exitCode, 8) << broken.err << other.log();
    const ProcessResult again = run({"put", file, "/home/.Torvi/Plans/"});
    ASSERT_EQ(again.exitCode, 0) << again.err;
    EXPECT_THAT(again.err, HasSubstr("resuming at byte "));
    EXPECT_EQ(sha256(other.folder().read("homes/ben/Plans/film")), sha256(content));
    for (const char* func : {"start_chunked_upload", "get_chunked_upload_status", "chunked_upload"})
        EXPECT_EQ(master.requestCount(func), 0) << func;
}

TEST_F(CliCluster, JobsOfATeamFolderAreWatchedOnItsNode) {
    other.folder().write("homes/ben/Plans/plan", "text");
    ASSERT_EQ(run({"version-lock", "/home/.Torvi/Plans/plan"}).exitCode, 0);
    const ProcessResult made = run({"version-sig", "/home/.Torvi/Plans/plan"});
    EXPECT_EQ(made.exitCode, 0) << made.err;
    EXPECT_GE(other.requestCount("nubo_get_progress"), 1);
    EXPECT_EQ(master.requestCount("nubo_get_progress"), 0);
}

TEST_F(CliCluster, AKeptSessionStaysThatOfItsNode) {
    other.folder().write("homes/ben/Plans/film", "1");
    ASSERT_EQ(run({"login"}).exitCode, 0);
    const ProcessResult list = cli.runWithoutPassword({"ls", "/home/.Torvi/Plans"});
    EXPECT_EQ(list.exitCode, 0) << list.err;
    EXPECT_THAT(list.out, HasSubstr("film"));
    EXPECT_EQ(master.requestCount("get_list"), 0);
    EXPECT_GE(other.requestCount("get_list"), 1);

    const ProcessResult folders = cli.runWithoutPassword({"folders", "--json"});
    ASSERT_EQ(folders.exitCode, 0) << folders.err;
    const Json document = Json::parse(folders.out);
    std::set<std::string> nodes;
    for (const Json& folder : document["folders"]) nodes.insert(folder["node"]);
    EXPECT_THAT(nodes, testing::ElementsAre("master", "node2"));

    EXPECT_EQ(master.requestCount("login"), 1);
    const ProcessResult logout = cli.runWithoutPassword({"logout", "--json"});
    EXPECT_EQ(Json::parse(logout.out)["sessionsEnded"], 1) << logout.err;
    EXPECT_EQ(master.requestCount("logout"), 1);
}

TEST_F(CliCluster, ALinkIsKeptAndOpenedByTheNodeThatHasTheFile) {
    other.folder().write("homes/ben/Plans/plan", "the plan");
    other.folder().write("homes/ben/Plans/map", "the map");
    const auto json = [this](std::vector<std::string> arguments) {
        arguments.push_back("--json");
        const ProcessResult result = run(std::move(arguments));
        EXPECT_EQ(result.exitCode, 0) << result.err;
        return Json::parse(result.out, nullptr, false);
    };
    const Json one = json({"link", "create", "/home/.Torvi/Plans/plan"});
    EXPECT_EQ(visit(one["url"]).body, "the plan");
    const Json both = json({"link", "create", "/home/.Torvi/Plans/plan", "/home/.Torvi/Plans/map"});
    EXPECT_EQ(visit(both["url"].get<std::string>() + "&file=map").body, "the map");
    EXPECT_EQ(json({"link", "list"})["count"], 0);
    EXPECT_EQ(json({"link", "list", "--node", "node2"})["count"], 2);
    json({"link", "update", one["id"], "--code", "sesame", "--expires", "never", "--node", "node2"});
    EXPECT_EQ(visit(one["url"]).status, 403);
    EXPECT_EQ(visit(one["url"].get<std::string>() + "&access_code=sesame").body, "the plan");
    EXPECT_EQ(json({"link", "delete", one["id"], "--node", "node2"})["deleted"], true);
    EXPECT_EQ(visit(one["url"]).status, 404);
    EXPECT_EQ(master.requestCount("share"), 0);
    EXPECT_EQ(other.requestCount("refused"), 0) << other.log();
}
