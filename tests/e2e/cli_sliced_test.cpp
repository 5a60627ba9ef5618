#include <csignal>

#include "cli_support.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Json = nlohmann::json;

namespace {

class CliSliced : public CliOnRoads {
protected:
    void SetUp() override { std::filesystem::create_directories(nas.folder().path() / home); }

    /// The files that are kept for uploads that have been begun.
    std::vector<std::string> records() const {
        std::vector<std::string> paths;
        std::error_code ignored;
        for (const auto& file :
             std::filesystem::directory_iterator(cli.state().path() / "torvi" / "uploads", ignored))
            paths.push_back(file.path().string());
        return paths;
    }
    /// What the server has of the one upload that it knows; -1 if there is none.
    std::int64_t held() const {
        for (const auto& file : std::filesystem::recursive_directory_iterator(nas.folder().path())) {
            const std::string name = file.path().filename().string();
            if (file.is_regular_file() && name.size() == 32 &&
                name.find_first_not_of("0123456789abcdef") == name.npos)
                return static_cast<std::int64_t>(file.file_size());
        }
        return -1;
    }
    /// The next run goes on with what the server says that it has, and then the two ends are the same.
    void goesOn(const std::string& file, const std::string& name, const std::string& content) {
        EXPECT_EQ(records().size(), 1u);
        EXPECT_FALSE(served(name));
        const ProcessResult again = cli.run({"put", file, "/home/" + name, "--json"});
        ASSERT_EQ(again.exitCode, 0) << again.err << nas.log();
        const std::int64_t from = Json::parse(again.out)["resumedAt"];
        EXPECT_GT(from, 0);
        EXPECT_LT(from, static_cast<std::int64_t>(content.size()));
        EXPECT_THAT(again.err, HasSubstr("resuming at byte " + std::to_string(from)));
        EXPECT_THAT(nas.log(), HasSubstr("http=200 status=0 (" + std::to_string(from) + " bytes)"));
        isThere(name, content);
    }
    void isThere(const std::string& name, const std::string& content) {
        EXPECT_EQ(sha256(nas.folder().read(home + name)), sha256(content));
        EXPECT_EQ(modifiedTime(nas.folder().file(home + name)), kTime);
        EXPECT_THAT(records(), IsEmpty());
        EXPECT_EQ(held(), -1);
    }
    void waitForRecord(Process& process) {
        while (records().empty() && process.running())
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
};

class CliSlicedEdges : public CliSliced {};

}  // namespace

CLI_ON_ALL_ROADS(CliSliced);
INSTANTIATE_TEST_SUITE_P(OneRoad, CliSlicedEdges, testing::Values(CliRoad{}),
                         [](const auto& info) { return nameOf(info.param); });

TEST_P(CliSliced, AnUploadInSlicesArrivesWithItsTimeAndLeavesNothingBehind) {
    for (const std::string& content : {randomBytes(3 << 20), std::string("x"), std::string()}) {
        const std::string name = "file" + std::to_string(content.size());
        const ProcessResult result = cli.run({"put", keep(name, content), "/home/", "--resume"});
        ASSERT_EQ(result.exitCode, 0) << result.err;
        isThere(name, content);
    }
    EXPECT_EQ(nas.requestCount("chunked_upload"), 3);
    EXPECT_EQ(nas.requestCount("upload_and_move"), 0);
}

TEST_P(CliSliced, AConnectionThatBreaksInTheMiddleIsGoneOnWith) {
    const std::string content = randomBytes(12 << 20);
    const std::string file = keep("film", content);
    const int fault = nas.arm("cut-upload,match=chunked_upload,bytes=5000000");
    const ProcessResult broken = cli.run({"put", file, "/home/", "--resume"});
    EXPECT_EQ(nas.hits(fault), 1);
    EXPECT_EQ(broken.exitCode, 8) << broken.err;
    EXPECT_THAT(broken.err, AllOf(HasSubstr("the connection broke, the server has "),
                                  HasSubstr("run it again to go on")));
    goesOn(file, "film", content);
}

TEST_P(CliSliced, AServerThatIsKilledAndComesBackIsGoneOnWith) {
    const std::string content = randomBytes(32 << 20);
    const std::string file = keep("film", content);
    const int fault = nas.arm("stall-upload,match=chunked_upload,bytes=8000000");
    const auto process = cli.start({"put", file, "/home/", "--resume"});
    waitForHit(fault, *process);
    nas.kill();
    EXPECT_EQ(process->wait(), 8) << process->err();
    EXPECT_THAT(process->err(), HasSubstr("the server went away; run it again to go on"));
    nas.startAgain();
    goesOn(file, "film", content);
}

TEST_P(CliSliced, CtrlCKeepsTheUploadAndTheNextRunGoesOn) {
    const std::string content = randomBytes(32 << 20);
    const std::string file = keep("film", content);
    // Bytes move again before the patience with a silent server ends.
    const int fault = nas.arm("stall-upload,match=chunked_upload,bytes=8000000,ms=1200");
    const auto process = cli.start({"put", file, "/home/", "--resume"});
    waitForHit(fault, *process);
    process->sendSignal(SIGINT);
    EXPECT_EQ(process->wait(), 7) << process->err();
    EXPECT_THAT(process->err(), HasSubstr("cancelled"));
    EXPECT_EQ(nas.requestCount("logout"), nas.requestCount("login"));
    goesOn(file, "film", content);
}

TEST_P(CliSliced, AClientThatIsKilledIsGoneOnWith) {
    const std::string content = randomBytes(32 << 20);
    const std::string file = keep("film", content);
    const int fault = nas.arm("stall-upload,match=chunked_upload,bytes=8000000,ms=1000");
    const auto process = cli.start({"put", file, "/home/", "--resume"});
    waitForHit(fault, *process);
    process->sendSignal(SIGKILL);
    EXPECT_EQ(process->wait(), 128 + SIGKILL);
    goesOn(file, "film", content);
}

TEST_P(CliSlicedEdges, FourInterruptionsAndThenTheWholeFile) {
    const std::string content = randomBytes(40 << 20);
    const std::string file = keep("film", content);
    std::int64_t before = 0;
    // Each run begins where the server is, which is further than the run before it.
    const auto begin = [&](const std::string& fault) {
        const int armed = nas.arm("stall-upload,match=chunked_upload,bytes=4000000," + fault);
        auto process = cli.start({"put", file, "/home/", "--resume"});
        waitForHit(armed, *process);
        return process;
    };
    const auto wentOn = [&](const std::string& said) {
        const std::string mark = "resuming at byte ";
        const auto at = said.find(mark);
        ASSERT_NE(at, said.npos) << said;
        const std::int64_t from = std::stoll(said.substr(at + mark.size()));
        EXPECT_GT(from, before);
        before = from;
    };

    auto process = begin("ms=1200");
    process->sendSignal(SIGINT);
    EXPECT_EQ(process->wait(), 7) << process->err();

    process = begin("ms=0");
    nas.kill();
    EXPECT_EQ(process->wait(), 8) << process->err();
    wentOn(process->err());
    nas.startAgain();

    nas.arm("cut-upload,match=chunked_upload,bytes=4000000");
    const ProcessResult cut = cli.run({"put", file, "/home/", "--resume"});
    EXPECT_EQ(cut.exitCode, 8) << cut.err;
    wentOn(cut.err);

    process = begin("ms=1000");
    process->sendSignal(SIGKILL);
    EXPECT_EQ(process->wait(), 128 + SIGKILL);
    wentOn(process->err());

    const ProcessResult last = cli.run({"put", file, "/home/", "--resume"});
    EXPECT_EQ(last.exitCode, 0) << last.err;
    wentOn(last.err);
    isThere("film", content);
}

TEST_P(CliSlicedEdges, TheIdIsKeptForItsOwnerAloneBeforeTheFirstByteGoesOut) {
    const std::string file = keep("film", randomBytes(1 << 20));
    const int fault = nas.arm("stall-upload,match=chunked_upload,bytes=0");
    const auto process = cli.start({"put", file, "/home/", "--resume"});
    waitForHit(fault, *process);
    ASSERT_EQ(records().size(), 1u);
    struct stat status = {};
    ASSERT_EQ(::stat(records()[0].c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600u);
    ASSERT_EQ(::stat(cli.state().file("torvi/uploads").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0700u);
    const Json record = Json::parse(
        cli.state().read("torvi/uploads/" + std::filesystem::path(records()[0]).filename().string()));
    EXPECT_EQ(record["path"], "/home/film");
    EXPECT_EQ(record["uploadRoot"], "/home");
    EXPECT_EQ(record["uploadId"].get<std::string>().size(), 32u);
    EXPECT_EQ(held(), 0);

    const ProcessResult second = cli.run({"put", file, "/home/", "--resume"});
    EXPECT_EQ(second.exitCode, 9);
    EXPECT_THAT(second.err, HasSubstr("by another torvi"));
}

TEST_P(CliSlicedEdges, CtrlCBeforeAByteGivesTheUploadUp) {
    const std::string file = keep("film", randomBytes(1 << 20));
    nas.arm("stall,match=start_chunked_upload,ms=1200");
    const auto process = cli.start({"put", file, "/home/", "--resume"});
    ASSERT_TRUE(nas.waitForLog("func=start_chunked_upload"));
    process->sendSignal(SIGINT);
    EXPECT_EQ(process->wait(), 7) << process->err();
    EXPECT_THAT(process->err(), Not(HasSubstr("run it again to go on")));
    EXPECT_THAT(records(), IsEmpty());
    EXPECT_EQ(held(), -1);
    EXPECT_EQ(nas.requestCount("delete_chunked_upload_file"), 1);
}

TEST_P(CliSlicedEdges, CtrlCBeforeAByteOfAResumedUploadKeepsWhatTheServerHas) {
    const std::string content = randomBytes(12 << 20);
    const std::string file = keep("film", content);
    nas.arm("cut-upload,match=chunked_upload,bytes=5000000");
    ASSERT_EQ(cli.run({"put", file, "/home/", "--resume"}).exitCode, 8);
    const int fault = nas.arm("stall,match=get_chunked_upload_status,ms=1200");
    const auto process = cli.start({"put", file, "/home/"});
    waitForHit(fault, *process);
    process->sendSignal(SIGINT);
    EXPECT_EQ(process->wait(), 7) << process->err();
    EXPECT_THAT(process->err(), HasSubstr("run it again to go on"));
    EXPECT_EQ(nas.requestCount("chunked_upload"), 1) << "the one that was cut";
    goesOn(file, "film", content);
}

TEST_P(CliSlicedEdges, CtrlCWhereNoBytesMoveKeepsTheUpload) {
    const std::string content = randomBytes(32 << 20);
    const std::string file = keep("film", content);
    const int fault = nas.arm("stall-upload,match=chunked_upload,bytes=8000000,ms=4000");
    const auto process = cli.start({"put", file, "/home/", "--resume"});
    waitForHit(fault, *process);
    process->sendSignal(SIGINT);
    EXPECT_EQ(process->wait(), 7) << process->err();
    goesOn(file, "film", content);
}

TEST_P(CliSlicedEdges, AFileThatChangedMeanwhileIsSentFromItsBeginning) {
    const std::string file = keep("film", randomBytes(12 << 20, 1));
    nas.arm("cut-upload,match=chunked_upload,bytes=5000000");
    ASSERT_EQ(cli.run({"put", file, "/home/", "--resume"}).exitCode, 8);
    const std::string changed = randomBytes(12 << 20, 2);
    keep("film", changed, kTime);
    // The same size in the same second, and yet another file.
    const timespec times[2] = {{kTime, 0}, {kTime, 5}};
    ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    const ProcessResult result = cli.run({"put", file, "/home/", "--resume"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_THAT(result.err, Not(HasSubstr("resuming")));
    EXPECT_EQ(nas.requestCount("delete_chunked_upload_file"), 1) << "the old one is dropped";
    isThere("film", changed);
}

TEST_P(CliSlicedEdges, AnUploadThatTheServerHasDroppedBeginsAnew) {
    const std::string content = randomBytes(12 << 20);
    const std::string file = keep("film", content);
    nas.arm("cut-upload,match=chunked_upload,bytes=5000000");
    ASSERT_EQ(cli.run({"put", file, "/home/", "--resume"}).exitCode, 8);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(nas.folder().path())) {
        if (entry.path().filename().string().find("partials") != std::string::npos) {
            for (const auto& one : std::filesystem::directory_iterator(entry.path()))
                std::filesystem::remove(one.path());
        }
    }
    const ProcessResult result = cli.run({"put", file, "/home/"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_THAT(result.err, HasSubstr("the server has dropped what it had of it; starting over"));
    isThere("film", content);
}

TEST_P(CliSlicedEdges, RestartDropsWhatTheServerHas) {
    const std::string content = randomBytes(12 << 20);
    const std::string file = keep("film", content);
    nas.arm("cut-upload,match=chunked_upload,bytes=5000000");
    ASSERT_EQ(cli.run({"put", file, "/home/", "--resume"}).exitCode, 8);
    const ProcessResult result = cli.run({"put", file, "/home/", "--restart"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_THAT(result.err, Not(HasSubstr("resuming")));
    EXPECT_EQ(nas.requestCount("delete_chunked_upload_file"), 1);
    isThere("film", content);
}

TEST_P(CliSlicedEdges, AFileInItsPlaceIsDoneThoughTheReplyWasLost) {
    const std::string content = randomBytes(1 << 20);
    const std::string file = keep("film", content);
    const int fault = nas.arm("close-before-reply,match=chunked_upload");
    const ProcessResult result = cli.run({"put", file, "/home/", "--resume"});
    EXPECT_EQ(nas.hits(fault), 1);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    isThere("film", content);
}

TEST_P(CliSlicedEdges, AClientThatIsKilledBeforeTheLastReplyFindsTheFileInItsPlace) {
    const std::string content = randomBytes(1 << 20);
    const std::string file = keep("film", content);
    const int fault = nas.arm("stall,match=chunked_upload");
    const auto process = cli.start({"put", file, "/home/", "--resume"});
    waitForHit(fault, *process);
    process->sendSignal(SIGKILL);
    process->wait();
    nas.disarm();
    ASSERT_TRUE(served("film"));
    ASSERT_EQ(records().size(), 1u);
    const ProcessResult again = cli.run({"put", file, "/home/", "--json"});
    EXPECT_EQ(again.exitCode, 0) << again.err;
    EXPECT_EQ(nas.requestCount("chunked_upload"), 1);
    isThere("film", content);
}

TEST_P(CliSlicedEdges, AnExistingFileIsReplacedOnlyWhenAsked) {
    serve("film", "old");
    const std::string content = randomBytes(100000);
    const std::string file = keep("film", content);
    EXPECT_EQ(cli.run({"put", file, "/home/", "--resume"}).exitCode, 10);
    EXPECT_EQ(nas.requestCount("start_chunked_upload"), 0);
    EXPECT_THAT(cli.run({"put", file, "/home/", "--resume", "-f", "--dry-run"}).out,
                HasSubstr("replacing what is there"));
    EXPECT_EQ(nas.folder().read(home + "film"), "old");
    EXPECT_EQ(cli.run({"put", file, "/home/", "--resume", "-f"}).exitCode, 0);
    isThere("film", content);
    EXPECT_EQ(cli.run({"put", file, "/home/x", "--resume", "--rename", "y"}).exitCode, 0);
    EXPECT_TRUE(served("y"));
}

TEST_P(CliSlicedEdges, LargeFilesGoInSlicesByThemselves) {
    const std::string file = cli.work().file("huge");
    cli.work().write("huge", "");
    std::filesystem::resize_file(file, 256 << 20);
    EXPECT_EQ(runJson({"put", file, "/home/", "--dry-run"})["road"], "sliced");
    EXPECT_EQ(runJson({"put", file, "/home/", "--dry-run", "--no-resume"})["road"], "whole");
    std::filesystem::resize_file(file, (256 << 20) - 1);
    EXPECT_EQ(runJson({"put", file, "/home/", "--dry-run"})["road"], "whole");
    EXPECT_EQ(nas.requestCount("start_chunked_upload"), 0);
}

TEST_P(CliSlicedEdges, AFailureForTheMomentKeepsTheIdAndAnotherOneDropsIt) {
    const std::string file = keep("film", randomBytes(100000));
    answer("chunked_upload", R"({"status":0})");
    const ProcessResult moment = cli.run({"put", file, "/home/", "--resume"});
    EXPECT_EQ(moment.exitCode, 8) << moment.err;
    EXPECT_THAT(moment.err, HasSubstr("for the moment; run it again to go on"));
    EXPECT_EQ(records().size(), 1u);
    EXPECT_EQ(nas.requestCount("delete_chunked_upload_file"), 0);

    answer("chunked_upload", R"({"status":12})");
    EXPECT_EQ(cli.run({"put", file, "/home/", "--resume"}).exitCode, 1);
    EXPECT_THAT(records(), IsEmpty());
    EXPECT_EQ(nas.requestCount("delete_chunked_upload_file"), 1);
}

TEST_P(CliSlicedEdges, AnExhaustedQuotaKeepsTheIdForTheUser) {
    const std::string content = randomBytes(100000);
    const std::string file = keep("film", content);
    answer("chunked_upload", R"({"status":9})");
    const ProcessResult full = cli.run({"put", file, "/home/", "--resume"});
    EXPECT_EQ(full.exitCode, 11) << full.err;
    EXPECT_THAT(full.err, HasSubstr("clear the cause, then run it again to go on"));
    EXPECT_EQ(records().size(), 1u);
    EXPECT_EQ(nas.requestCount("delete_chunked_upload_file"), 0);
    EXPECT_EQ(cli.run({"put", file, "/home/"}).exitCode, 0);
    isThere("film", content);
}

TEST_P(CliSlicedEdges, AFileOfTwoSlicesGoesInTwoRequests) {
    const std::string file = keep("huge", "");
    std::filesystem::resize_file(file, (1LL << 30) + 100000);
    setModifiedTime(file, kTime);
    const ProcessResult result = cli.run({"put", file, "/home/"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(nas.requestCount("chunked_upload"), 2);
    EXPECT_EQ(nas.requestCount("get_chunked_upload_status"), 0);
    EXPECT_THAT(nas.log(), HasSubstr("(1073741824 bytes held)"));
    EXPECT_EQ(std::filesystem::file_size(nas.folder().path() / home / "huge"), (1LL << 30) + 100000);
    EXPECT_EQ(modifiedTime(nas.folder().file(home + "huge")), kTime);
    EXPECT_THAT(records(), IsEmpty());
}

TEST_P(CliSlicedEdges, ASliceThatBrokeOffAtTheStartOfALargeFileIsDropped) {
    const std::string file = keep("huge", "");
    std::filesystem::resize_file(file, (1LL << 30) + 100000);
    nas.arm("cut-upload,match=chunked_upload,bytes=5000000");
    const ProcessResult result = cli.run({"put", file, "/home/"});
    EXPECT_EQ(result.exitCode, 8) << result.err;
    EXPECT_THAT(result.err, HasSubstr("run it again to start over"));
    EXPECT_EQ(nas.requestCount("delete_chunked_upload_file"), 1);
    EXPECT_THAT(records(), IsEmpty());
    EXPECT_EQ(held(), -1);
}

TEST_P(CliSlicedEdges, ProgressCountsFromTheStartOfTheFile) {
    const std::string content = randomBytes(12 << 20);
    const std::string file = keep("film", content);
    nas.arm("cut-upload,match=chunked_upload,bytes=7000000");
    ASSERT_EQ(cli.run({"put", file, "/home/", "--resume"}).exitCode, 8);
    const ProcessResult result = cli.run({"put", file, "/home/"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.err, AllOf(Not(HasSubstr("film: 10%")), Not(HasSubstr("film: 50%")),
                                  HasSubstr("film: 100% (12.0 MiB of 12.0 MiB)")));
}
