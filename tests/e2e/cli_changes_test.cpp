#include "cli_support.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using Json = nlohmann::json;

namespace {

class CliChanges : public CliTest {
protected:
    using CliTest::CliTest;
    void SetUp() override { std::filesystem::create_directories(nas.folder().path() / home); }

    /// A reply to the next stat of a path that speaks of a file as it isn't any more.
    int makeStale(const std::string& name) {
        return answer("stat", R"({"status":1,"total":1,"datas":[{"filename":")" + name +
                                  R"(","isfolder":0,"filesize":"3","epochmt":1000}]})");
    }
};

class CliChangesOnRoads : public CliOnRoads {};

/// With jobs that take their time.
class CliJobs : public CliChanges {
protected:
    CliJobs() : CliChanges(slow()) {}
    static Nas::Options slow() {
        Nas::Options options;
        options.arguments = {"--job-delay", "1000"};
        return options;
    }
};

}  // namespace

CLI_ON_ALL_ROADS(CliChangesOnRoads);

TEST_P(CliChangesOnRoads, AFolderAndAFileLiveAndDieAndComeBack) {
    EXPECT_EQ(runJson({"mkdir", "-p", "/home/a/b"})["created"], Json({"/home/a", "/home/a/b"}));
    const Json touched = runJson({"touch", "/home/a/b/f", "--time", "2009-02-13T23:31:30Z"});
    EXPECT_EQ(touched["created"], true);
    EXPECT_EQ(modifiedTime(nas.folder().file(home + "a/b/f")), kTime);

    EXPECT_EQ(runJson({"mv", "/home/a/b/f", "/home/a/b/g"})["operation"], "rename");
    EXPECT_TRUE(served("a/b/g"));
    EXPECT_EQ(runJson({"mv", "/home/a/b/g", "/home/a/h"})["operation"], "move");
    EXPECT_TRUE(served("a/h"));
    EXPECT_EQ(runJson({"mv", "--check", "/home/a/h", "/home/a/b/"})["destination"], "/home/a/b/h");
    EXPECT_TRUE(served("a/b/h"));
    EXPECT_EQ(runJson({"mv", "--check", "/home/a/b", "/home/c"})["type"], "folder");
    EXPECT_TRUE(served("c/h"));
    EXPECT_FALSE(served("a/b"));

    EXPECT_EQ(runJson({"rm", "--check", "/home/c/h"})["removed"], true);
    EXPECT_FALSE(served("c/h"));
    EXPECT_EQ(runJson({"restore", "/home/c/h"})["path"], "/home/c/h");
    EXPECT_TRUE(served("c/h"));
    const Json gone = runJson({"rm", "-r", "/home/c"});
    EXPECT_EQ(gone["files"], 1);
    EXPECT_EQ(gone["folders"], 1);
    EXPECT_FALSE(served("c"));
    EXPECT_EQ(nas.requestCount("login"), nas.requestCount("logout"));
}

TEST_F(CliChanges, MkdirMakesOneFolderAndWithPAllThatAreMissing) {
    EXPECT_EQ(cli.run({"mkdir", "/home/a"}).exitCode, 0);
    EXPECT_EQ(cli.run({"mkdir", "/home/a"}).exitCode, 10);
    const ProcessResult orphan = cli.run({"mkdir", "/home/x/y"});
    EXPECT_EQ(orphan.exitCode, 5);
    EXPECT_THAT(orphan.err, HasSubstr("-p makes the folders on the way"));
    EXPECT_EQ(cli.run({"mkdir", "-p", "/home/x/y"}).exitCode, 0);
    EXPECT_TRUE(served("x/y"));
    EXPECT_EQ(cli.run({"mkdir", "-p", "/home/x/y"}).exitCode, 0) << "it is there";
    serve("file", "");
    EXPECT_EQ(cli.run({"mkdir", "-p", "/home/file/z"}).exitCode, 10);
}

TEST_F(CliChanges, MkdirIsRefusedWhereNothingMayBeMade) {
    const std::filesystem::path closed = nas.folder().path() / home / "closed";
    std::filesystem::create_directory(closed);
    std::filesystem::permissions(closed, std::filesystem::perms(0555));
    EXPECT_EQ(cli.run({"mkdir", "/home/closed/a"}).exitCode, 6);
}

TEST_F(CliChanges, TouchSetsTheTimeOfWhatIsThereAndLeavesItsContent) {
    serve("full", "content");
    const Json touched = runJson({"touch", "/home/full", "--time", "@1500000000"});
    EXPECT_EQ(touched["created"], false);
    EXPECT_EQ(touched["mtime"], 1500000000);
    EXPECT_EQ(modifiedTime(nas.folder().file(home + "full")), 1500000000);
    EXPECT_EQ(nas.folder().read(home + "full"), "content");
    EXPECT_EQ(cli.run({"touch", "/home/full", "--time", "yesterday"}).exitCode, 2);
    EXPECT_EQ(cli.run({"touch", "/home/full", "--time", "1970-01-01 00:00:00"}).exitCode, 0);
    EXPECT_EQ(modifiedTime(nas.folder().file(home + "full")), 0);
}

TEST_F(CliChanges, RemovingAFolderWantsToBeSaidAndTellsWhatGoes) {
    serve("box/a", "12345");
    serve("box/sub/b", "123");
    const ProcessResult refused = cli.run({"rm", "/home/box"});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_THAT(refused.err, HasSubstr("-r removes it"));
    EXPECT_TRUE(served("box/a"));

    const ProcessResult dry = cli.run({"rm", "-r", "--dry-run", "/home/box"});
    EXPECT_EQ(dry.exitCode, 0) << dry.err;
    EXPECT_EQ(dry.out,
              "would remove /home/box/a\n"
              "would remove /home/box/sub/\n"
              "would remove /home/box/sub/b\n"
              "would remove /home/box (2 files, 2 folders, 8 B)\n");
    EXPECT_TRUE(served("box/sub/b"));
    EXPECT_EQ(nas.requestCount("delete"), 0);

    const ProcessResult done = cli.run({"rm", "-r", "/home/box"});
    EXPECT_EQ(done.exitCode, 0) << done.err;
    EXPECT_EQ(done.out, "removed /home/box (2 files, 2 folders, 8 B)\n");
    EXPECT_FALSE(served("box"));
    EXPECT_EQ(nas.requestCount("delete"), 1);
    EXPECT_EQ(cli.run({"rm", "/home/box"}).exitCode, 5);
}

TEST_F(CliChanges, ARefusalThatLooksLikeASuccessIsFoundOut) {
    serve("a", "content");
    answer("delete", R"({"status":9,"success":"true"})");
    const ProcessResult result = cli.run({"rm", "/home/a"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.err, HasSubstr("it is still there"));
}

TEST_F(CliChanges, WhatChangedSinceItWasLookedAtIsLeftAlone) {
    serve("a", "content");
    const std::vector<std::vector<std::string>> commands = {{"rm", "--check", "/home/a"},
                                                            {"mv", "--check", "/home/a", "/home/b"},
                                                            {"mv", "--check", "/home/a", "/home/box/"}};
    std::filesystem::create_directory(nas.folder().path() / home / "box");
    for (const auto& command : commands) {
        const int fault = makeStale("a");
        const ProcessResult result = cli.run(command);
        EXPECT_EQ(nas.hits(fault), 1);
        EXPECT_EQ(result.exitCode, 12) << command[0] << result.err;
        EXPECT_THAT(result.err, HasSubstr("it is not what it was when it was looked at"));
        EXPECT_TRUE(served("a"));
    }
    EXPECT_EQ(cli.run({"rm", "--check", "/home/a"}).exitCode, 0);
}

TEST_F(CliChanges, SharesAreNotChanged) {
    std::filesystem::create_directory(nas.folder().path() / "Public");
    EXPECT_EQ(cli.run({"rm", "-r", "/Public"}).exitCode, 6);
    EXPECT_EQ(cli.run({"mv", "/Public", "/Private"}).exitCode, 6);
    EXPECT_EQ(cli.run({"mkdir", "/New"}).exitCode, 6);
    EXPECT_TRUE(std::filesystem::exists(nas.folder().path() / "Public"));
}

TEST_F(CliChanges, MvRefusesBeforehandWhatWouldGoWrong) {
    serve("a", "1");
    serve("box/b", "2");
    serve("box/a", "3");
    EXPECT_EQ(cli.run({"mv", "/home/none", "/home/x"}).exitCode, 5);
    EXPECT_EQ(cli.run({"mv", "/home/a", "/home/a"}).exitCode, 2);
    EXPECT_EQ(cli.run({"mv", "/home/box", "/home/box/inner"}).exitCode, 2);
    EXPECT_EQ(cli.run({"mv", "/home/a", "/home/box/b"}).exitCode, 10);
    EXPECT_EQ(cli.run({"mv", "/home/a", "/home/box"}).exitCode, 10);
    const ProcessResult nowhere = cli.run({"mv", "/home/a", "/home/none/x"});
    EXPECT_EQ(nowhere.exitCode, 5);
    EXPECT_THAT(nowhere.err, HasSubstr("mkdir -p"));
    // It would arrive as box/a, and the clean-up after that failure would delete what is there.
    const ProcessResult onTheWay = cli.run({"mv", "/home/a", "/home/box/c"});
    EXPECT_EQ(onTheWay.exitCode, 10);
    EXPECT_THAT(onTheWay.err, HasSubstr("/home/box/a"));
    EXPECT_EQ(nas.requestCount("move") + nas.requestCount("rename"), 0);
    EXPECT_EQ(nas.folder().read(home + "box/a"), "3");
}

TEST_F(CliChanges, MvOnlyTellsWithDryRun) {
    serve("a", "1");
    EXPECT_EQ(cli.run({"mv", "/home/a", "/home/b", "--dry-run"}).out, "would rename /home/a to /home/b\n");
    std::filesystem::create_directory(nas.folder().path() / home / "box");
    EXPECT_EQ(cli.run({"mv", "/home/a", "/home/box", "--dry-run"}).out,
              "would move /home/a to /home/box/a\n");
    EXPECT_TRUE(served("a"));
    EXPECT_EQ(nas.requestCount("move") + nas.requestCount("rename"), 0);
}

TEST_F(CliChanges, AMoveThatStoppedHalfWaySaysWhereThingsAre) {
    serve("a", "1");
    std::filesystem::create_directory(nas.folder().path() / home / "box");
    nas.arm("http-status,match=move,status=503");
    const ProcessResult early = cli.run({"mv", "/home/a", "/home/box/b"});
    EXPECT_EQ(early.exitCode, 3);
    EXPECT_THAT(early.err, HasSubstr("it is still at /home/a"));

    nas.arm("http-status,match=rename,status=500");
    const ProcessResult late = cli.run({"mv", "/home/a", "/home/box/b"});
    EXPECT_EQ(late.exitCode, 1) << late.err;
    EXPECT_THAT(late.err, AllOf(HasSubstr("it is at neither path now"), HasSubstr("torvi trash")));
    EXPECT_EQ(cli.run({"restore", "/home/box/a"}).exitCode, 0);
    EXPECT_EQ(nas.folder().read(home + "box/a"), "1");
}

TEST_F(CliJobs, MovingAFolderShowsThatItGoesOnAndThenThatItIsDone) {
    serve("box/a", "1");
    std::filesystem::create_directory(nas.folder().path() / home / "to");
    const ProcessResult lines = cli.run({"mv", "/home/box", "/home/to"});
    EXPECT_EQ(lines.exitCode, 0) << lines.err;
    EXPECT_EQ(lines.err, "moving /home/box to /home/to/box ...\n");
    EXPECT_EQ(lines.out, "moved /home/box to /home/to/box\n");

    const auto terminal = cli.start({"mv", "/home/to/box", "/home/box"}, true);
    EXPECT_EQ(terminal->wait(), 0);
    EXPECT_THAT(terminal->out(), AllOf(HasSubstr("\r\x1b[K| moving /home/to/box to /home/box  0:00"),
                                       HasSubstr("\r\x1b[K/ moving")));
    EXPECT_TRUE(served("box/a"));
}

TEST_F(CliJobs, CtrlCStopsWaitingForAMove) {
    Nas::Options never;
    never.arguments = {"--job-delay", "3600000"};
    Nas stuck(never);
    Cli mover(stuck);
    stuck.folder().write(home + "box/a", "1");
    std::filesystem::create_directory(stuck.folder().path() / home / "to");
    const auto process = mover.start({"mv", "/home/box", "/home/to"});
    ASSERT_TRUE(stuck.waitForLog("func=get_move_status"));
    process->sendSignal(SIGINT);
    EXPECT_EQ(process->wait(), 7) << process->err();
    EXPECT_THAT(process->err(), HasSubstr("cancelled, but the server may go on with it"));
    EXPECT_EQ(stuck.requestCount("logout"), 1);
}

TEST_F(CliJobs, ARecoveryShowsItsProgress) {
    serve("box/a", "1");
    ASSERT_EQ(cli.run({"rm", "/home/box/a"}).exitCode, 0);
    const ProcessResult result = cli.run({"restore", "/home/box/a"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out, "restored /home/box/a\n");
    EXPECT_THAT(result.err, AllOf(StartsWith("a: "), HasSubstr("\na: 100%\n"))) << "not only its end";
    EXPECT_GT(nas.requestCount("nubo_get_progress"), 2);
    EXPECT_TRUE(served("box/a"));
}

TEST_F(CliJobs, ADetachedRecoveryIsWatchedByItsJob) {
    serve("a", "1");
    ASSERT_EQ(cli.run({"rm", "/home/a"}).exitCode, 0);
    const Json started = runJson({"restore", "/home/a", "--detach"});
    EXPECT_EQ(started["restored"], false);
    const std::string pid = started["pid"];
    const Json now = runJson({"jobs", pid});
    EXPECT_EQ(now["done"], false);
    EXPECT_LT(now["percent"], 100);
    const ProcessResult waited = cli.run({"jobs", pid, "--wait"});
    EXPECT_EQ(waited.exitCode, 0) << waited.err;
    EXPECT_EQ(waited.out, "job " + pid + ": done\n");
    EXPECT_TRUE(served("a"));
    EXPECT_EQ(cli.run({"jobs", pid}).exitCode, 5) << "its end has been told";
}

TEST_F(CliJobs, AJobIsFollowedOnTheChannelOfMovesAndDropped) {
    serve("a", "1");
    ASSERT_EQ(cli.run({"rm", "/home/a"}).exitCode, 0);
    const std::string first = runJson({"restore", "/home/a", "--detach"})["pid"];
    EXPECT_EQ(runJson({"jobs", first, "--move"})["done"], true);
    EXPECT_TRUE(served("a"));

    ASSERT_EQ(cli.run({"rm", "/home/a"}).exitCode, 0);
    const std::string second = runJson({"restore", "/home/a", "--detach"})["pid"];
    EXPECT_EQ(runJson({"jobs", second, "--clear"})["cleared"], true);
    EXPECT_EQ(nas.requestCount("daemon_list"), 1);
    EXPECT_EQ(cli.run({"jobs", second}).exitCode, 5);
}

TEST_F(CliChanges, AnUnknownJobIsNotFound) {
    EXPECT_EQ(cli.run({"jobs", "99999"}).exitCode, 5);
    EXPECT_EQ(cli.run({"jobs", "99999", "--wait"}).exitCode, 5);
    EXPECT_EQ(cli.run({"jobs", "99999", "--move"}).exitCode, 5);
    EXPECT_EQ(cli.run({"jobs", "0"}).exitCode, 2);
}

TEST_F(CliChanges, TheTrashTellsWhereThingsWere) {
    EXPECT_EQ(cli.run({"trash"}).out, "The trash is empty\n");
    EXPECT_EQ(runJson({"trash"})["count"], 0);
    serve("box/a", "12345");
    ASSERT_EQ(cli.run({"rm", "/home/box/a"}).exitCode, 0);
    EXPECT_THAT(cli.run({"trash"}).out, AllOf(HasSubstr("WAS AT"), HasSubstr("/home/box/a")));
    const Json entries = runJson({"trash", "/home/box"})["entries"];
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0]["path"], "/home/@Recycle/box/a");
    EXPECT_EQ(entries[0]["original"], "/home/box/a");
    EXPECT_EQ(entries[0]["mtime"], kTime);
    EXPECT_EQ(cli.run({"trash", "/home/none"}).exitCode, 5);
}

TEST_F(CliChanges, RestoreReplacesOnlyWhenAsked) {
    serve("a", "old");
    ASSERT_EQ(cli.run({"rm", "/home/a"}).exitCode, 0);
    serve("a", "new");
    const ProcessResult refused = cli.run({"restore", "/home/a"});
    EXPECT_EQ(refused.exitCode, 10);
    EXPECT_THAT(refused.err, HasSubstr("--overwrite"));
    EXPECT_EQ(cli.run({"restore", "/home/a", "-f", "--dry-run"}).out,
              "would restore /home/a, replacing what is there now\n");
    EXPECT_EQ(nas.folder().read(home + "a"), "new");
    // By its place in the trash, too.
    EXPECT_EQ(cli.run({"restore", "/home/@Recycle/a", "-f"}).exitCode, 0);
    EXPECT_EQ(nas.folder().read(home + "a"), "old");
    const ProcessResult gone = cli.run({"restore", "/home/a"});
    EXPECT_EQ(gone.exitCode, 5);
    EXPECT_THAT(gone.err, HasSubstr("torvi trash"));
}
