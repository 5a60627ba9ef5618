#include <sstream>

#include "cli_support.h"

using testing::AllOf;
using testing::HasSubstr;
using Json = nlohmann::json;

namespace {

class CliLog : public CliOnRoads {
protected:
    explicit CliLog(Nas::Options options = Nas::Options()) : CliOnRoads(std::move(options)) {}
    std::int64_t newest() { return runJson({"log"})["newest"]; }
    void makeFolders(int count, const std::string& prefix = "f") {
        for (int i = 0; i < count; ++i) runJson({"mkdir", "/home/" + prefix + std::to_string(i)});
    }
};

class CliLogEdges : public CliLog {
protected:
    /// Follows the log, with questions that come often.
    std::unique_ptr<Process> follow(std::vector<std::string> more = {}) {
        more.insert(more.begin(), {"log", "--follow", "--last", "0", "--interval", "0.05"});
        auto process = cli.start(more);
        // From its first question on nothing is missed.
        waitForRequest("nubo_get_max_log", *process);
        return process;
    }
    void waitForRequest(const std::string& func, Process& process) {
        const std::int64_t before = m_seen[func];
        while (nas.requestCount(func) <= before && process.running())
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        m_seen[func] = nas.requestCount(func);
    }
    static bool shows(Process& process, const std::string& text) {
        return process.waitFor(
            [&](const std::string& out, const std::string&) { return out.find(text) != out.npos; });
    }
    std::map<std::string, std::int64_t> m_seen;
};

}  // namespace

CLI_ON_ALL_ROADS(CliLog);
INSTANTIATE_TEST_SUITE_P(OneRoad, CliLogEdges, testing::Values(CliRoad{}),
                         [](const auto& info) { return nameOf(info.param); });

TEST_P(CliLog, TellsTheChangesThatWereMade) {
    const std::int64_t before = newest();
    runJson({"mkdir", "/home/a"});
    runJson({"mv", "/home/a", "/home/b"});
    runJson({"put", keep("x", "1"), "/home/b/"});
    runJson({"rm", "/home/b/x"});
    const Json json = runJson({"log", "--since", std::to_string(before)});
    ASSERT_GE(json["changes"].size(), 4u) << json;
    const Json& made = json["changes"][0];
    EXPECT_EQ(made["actionName"], "made");
    EXPECT_EQ(made["type"], "folder");
    EXPECT_EQ(made["path"], "/home/a");
    EXPECT_EQ(made["number"], before + 1);
    const Json& renamed = json["changes"][1];
    EXPECT_EQ(renamed["actionName"], "renamed");
    EXPECT_EQ(renamed["path"], "/home/b");
    EXPECT_EQ(renamed["oldPath"], "/home/a");
    EXPECT_EQ(json["changes"].back()["actionName"], "deleted");
    EXPECT_EQ(json["changes"].back()["path"], "/home/b/x");
    EXPECT_EQ(json["newest"], json["changes"].back()["number"]);
    EXPECT_THAT(cli.run({"log", "--since", std::to_string(before)}).out,
                AllOf(HasSubstr("NUMBER"), HasSubstr("/home/a -> /home/b")));
}

TEST_P(CliLog, OneFolderHasItsOwn) {
    runJson({"mkdir", "/home/one"});
    runJson({"mkdir", "/home/two"});
    runJson({"mkdir", "/home/one/sub"});
    const Json json = runJson({"log", "/home/one", "--since", "0"});
    for (const Json& change : json["changes"])
        EXPECT_THAT(change["path"].get<std::string>(), testing::StartsWith("/home/one"));
    EXPECT_EQ(json["changes"].back()["path"], "/home/one/sub");
    EXPECT_EQ(cli.run({"log", "/home/nowhere"}).exitCode, 5);
}

TEST_P(CliLogEdges, ItEndsWithTheLastNumbers) {
    makeFolders(6);
    const std::int64_t last = newest();
    const Json json = runJson({"log", "--last", "2"});
    ASSERT_EQ(json["changes"].size(), 2u);
    EXPECT_EQ(json["changes"][1]["number"], last);
    EXPECT_TRUE(runJson({"log", "--last", "0"})["changes"].empty());
}

TEST_P(CliLogEdges, MoreThanOneRequestHoldsAreAllTold) {
    const std::int64_t before = newest();
    // One upload each; a batch is quicker than so many folders.
    std::vector<std::string> arguments = {"put", "--batch"};
    for (int i = 0; i < 130; ++i) arguments.push_back(keep("b" + std::to_string(i), "1"));
    arguments.push_back("/home");
    runJson(arguments);
    const Json json = runJson({"log", "--since", std::to_string(before)});
    std::map<std::string, int> seen;
    for (const Json& change : json["changes"]) ++seen[change["path"].get<std::string>()];
    for (int i = 0; i < 130; ++i) EXPECT_GE(seen["/home/b" + std::to_string(i)], 1) << i;
    std::int64_t previous = before;
    for (const Json& change : json["changes"]) {
        EXPECT_GT(change["number"], previous) << "none twice";
        previous = change["number"];
    }
    EXPECT_GE(nas.requestCount("nubo_get_sync_log"), 2);
}

TEST_P(CliLogEdges, FollowPrintsChangesAsTheyComeAndEndsWellOnCtrlC) {
    const auto process = follow();
    runJson({"mkdir", "/home/first"});
    EXPECT_TRUE(shows(*process, "/home/first")) << process->err();
    runJson({"mv", "/home/first", "/home/second"});
    EXPECT_TRUE(shows(*process, "/home/first -> /home/second")) << process->err();
    process->sendSignal(SIGINT);
    EXPECT_EQ(process->wait(), 0) << process->err();
    EXPECT_EQ(process->err(), "");
    EXPECT_EQ(nas.requestCount("login"), nas.requestCount("logout")) << "its session ends, too";
}

TEST_P(CliLogEdges, FollowedChangesAreALineEachWithJson) {
    const auto process = follow({"--json"});
    runJson({"mkdir", "/home/a"});
    runJson({"mkdir", "/home/b"});
    ASSERT_TRUE(shows(*process, "/home/b\"")) << process->err();
    process->sendSignal(SIGINT);
    EXPECT_EQ(process->wait(), 0);
    std::istringstream lines(process->out());
    std::string line;
    std::vector<std::string> paths;
    while (std::getline(lines, line)) paths.push_back(Json::parse(line)["path"]);
    EXPECT_THAT(paths, testing::ElementsAre("/home/a", "/home/b"));
}

TEST_P(CliLogEdges, ASessionThatEndsMeanwhileIsReplacedOnce) {
    const auto process = follow();
    nas.expireSessions();
    runJson({"mkdir", "/home/after"});
    EXPECT_TRUE(shows(*process, "/home/after")) << process->err();
    process->sendSignal(SIGINT);
    EXPECT_EQ(process->wait(), 0) << process->err();
}

TEST_P(CliLogEdges, AServerThatGoesAwayEndsTheFollowing) {
    const auto process = follow();
    nas.kill();
    EXPECT_EQ(process->wait(), 3) << process->err();
}
