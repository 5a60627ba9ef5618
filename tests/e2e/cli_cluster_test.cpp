#include <fstream>
#include <set>
#include <sstream>

#include "cli_support.h"
#include "support/nginx.h"

using testing::HasSubstr;
using Json = nlohmann::json;

namespace {

/// Two nodes behind a front end; a folder that ben shares with anna lies on the second one.
class CliCluster : public testing::Test {
protected:
    CliCluster() { cli.goThrough(front.port()); }

    static Nas::Options node(const TempDir& sessions, const std::string& id) {
        Nas::Options options;
        options.arguments = {"--slave-id",          id,       "--session-dir",
                             sessions.file("sids"), "--team", "ben:/home/Plans:anna"};
        return options;
    }
    static std::string templateText() {
        std::ifstream in(NGINX_CLUSTER_TEMPLATE);
        std::ostringstream text;
        text << in.rdbuf();
        return text.str();
    }
    ProcessResult run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.end(), {"--team", "/home/.Torvi/Plans=vtf://ben-Plans@node2"});
        return cli.run(std::move(arguments));
    }

    TempDir sessions;
    Nas master{node(sessions, "master")};
    Nas other{node(sessions, "node2")};
    Nginx front{templateText(),
                {{"MASTER", "127.0.0.1:" + std::to_string(master.port())},
                 {"MASTER_ID", "master"},
                 {"NODE", "127.0.0.1:" + std::to_string(other.port())},
                 {"NODE_ID", "node2"}}};
    Cli cli{master};
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
