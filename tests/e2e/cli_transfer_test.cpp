#include <regex>

#include "cli_support.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Json = nlohmann::json;

namespace {

class CliTransfer : public CliTest {
protected:
    void SetUp() override { std::filesystem::create_directories(nas.folder().path() / home); }

    bool kept(const std::string& name) const { return std::filesystem::exists(cli.work().path() / name); }

    /// Leaves a download that broke off after so many bytes, and gives how many arrived.
    std::int64_t breakOff(const std::string& name, std::size_t bytes) {
        nas.arm("close-in-reply,match=download,body=1,bytes=" + std::to_string(bytes));
        const ProcessResult result = cli.run({"get", "/home/" + name});
        EXPECT_EQ(result.exitCode, 8) << result.err;
        EXPECT_THAT(result.err, HasSubstr("run it again to go on"));
        EXPECT_FALSE(kept(name));
        const std::string partial = cli.partial();
        return partial.empty() ? 0 : static_cast<std::int64_t>(std::filesystem::file_size(partial));
    }
};

class CliRoundTrip : public CliTransfer, public testing::WithParamInterface<bool> {};

std::string number(std::int64_t value) {
    return std::to_string(value);
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Schemes, CliRoundTrip, testing::Bool(),
                         [](const auto& info) { return info.param ? "Tls" : "Http"; });

TEST_P(CliRoundTrip, EveryByteAndTheTimeComeBack) {
    const bool tls = GetParam();
    const std::map<std::string, std::string> files = {{"large.bin", randomBytes(5 << 20)},
                                                      {"empty", ""},
                                                      {"one", "x"},
                                                      {"\u6587\u4ef6 & 100%+#?~'.txt", "text"}};
    for (const auto& [name, content] : files) {
        const ProcessResult put = cli.run({"put", keep(name, content), "/home/"}, tls);
        ASSERT_EQ(put.exitCode, 0) << name << put.err;
        EXPECT_TRUE(nas.folder().read(home + name) == content) << name;
        EXPECT_EQ(modifiedTime(nas.folder().file(home + name)), kTime) << name;

        const ProcessResult get = cli.run({"get", "/home/" + name, "back"}, tls);
        ASSERT_EQ(get.exitCode, 0) << name << get.err;
        EXPECT_TRUE(cli.work().read("back") == content) << name;
        EXPECT_EQ(modifiedTime(cli.work().file("back")), kTime) << name;
        std::filesystem::remove(cli.work().path() / "back");
    }
    EXPECT_THAT(cli.partial(), IsEmpty());
    EXPECT_EQ(nas.requestCount("login"), nas.requestCount("logout"));
}

TEST_F(CliTransfer, PutTakesAFolderOrAPath) {
    const std::string file = keep("a.txt", "content");
    std::filesystem::create_directories(nas.folder().path() / home / "box");
    EXPECT_EQ(cli.run({"put", file, "/home/box"}).exitCode, 0);
    EXPECT_EQ(nas.folder().read(home + "box/a.txt"), "content");
    EXPECT_EQ(cli.run({"put", file, "home/box/b.txt"}).exitCode, 0);
    EXPECT_EQ(nas.folder().read(home + "box/b.txt"), "content");
}

TEST_F(CliTransfer, PutReplacesAFileOnlyWhenAsked) {
    serve("a.txt", "old");
    const std::string file = keep("a.txt", "new");
    const ProcessResult refused = cli.run({"put", file, "/home/"});
    EXPECT_EQ(refused.exitCode, 10);
    EXPECT_THAT(refused.err, HasSubstr("--overwrite"));
    EXPECT_EQ(nas.folder().read(home + "a.txt"), "old");
    EXPECT_EQ(nas.requestCount("upload_and_move"), 0);
    EXPECT_EQ(cli.run({"put", file, "/home/", "--overwrite"}).exitCode, 0);
    EXPECT_EQ(nas.folder().read(home + "a.txt"), "new");
}

TEST_F(CliTransfer, PutRenamesOnTheServer) {
    EXPECT_EQ(cli.run({"put", keep("a.txt", "content"), "/home/", "--rename", "b.txt"}).exitCode, 0);
    EXPECT_FALSE(served("a.txt"));
    EXPECT_EQ(nas.folder().read(home + "b.txt"), "content");
}

TEST_F(CliTransfer, PlainPutUsesTheOlderUpload) {
    const std::string content = randomBytes(100000);
    const ProcessResult result = cli.run({"put", keep("a.bin", content), "/home/", "--plain", "--json"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_TRUE(nas.folder().read(home + "a.bin") == content);
    EXPECT_EQ(nas.requestCount("upload"), 1);
    EXPECT_TRUE(Json::parse(result.out)["mtime"].is_null());
}

TEST_F(CliTransfer, PutFailuresHaveTheirCodes) {
    EXPECT_EQ(cli.run({"put", "missing", "/home/"}).exitCode, 9);
    EXPECT_EQ(cli.run({"put", cli.work().string(), "/home/"}).exitCode, 9);
    const std::string file = keep("a.txt", std::string(1000, 'x'));
    EXPECT_EQ(cli.run({"put", file, "/home/none/a.txt"}).exitCode, 5);
    nas.arm("close-before-reply,match=upload_and_move");
    EXPECT_EQ(cli.run({"put", file, "/home/"}).exitCode, 3);
    nas.arm("cut-upload,match=upload_and_move,bytes=100");
    EXPECT_EQ(cli.run({"put", file, "/home/b.txt"}).exitCode, 3);
    EXPECT_FALSE(served("b.txt"));
}

TEST_F(CliTransfer, ProgressIsALinePerTenthWhereNoTerminalIs) {
    serve("a.bin", randomBytes(2 << 20));
    // In small pieces, so that no tenth is jumped over.
    nas.arm("trickle,match=download,bytes=65536,ms=10");
    const ProcessResult get = cli.run({"get", "/home/a.bin"});
    ASSERT_EQ(get.exitCode, 0) << get.err;
    EXPECT_THAT(get.out, IsEmpty());
    EXPECT_THAT(get.err, AllOf(Not(HasSubstr("\r")), Not(HasSubstr("\x1b"))));
    std::istringstream lines(get.err);
    const std::regex form("a\\.bin: (\\d+)% \\(.* of 2\\.0 MiB\\)");
    std::vector<int> percents;
    for (std::string line; std::getline(lines, line);) {
        std::smatch match;
        ASSERT_TRUE(std::regex_match(line, match, form)) << line;
        percents.push_back(std::stoi(match[1]));
    }
    ASSERT_GE(percents.size(), 3u);
    EXPECT_LE(percents.size(), 10u);
    EXPECT_EQ(percents.back(), 100);
    for (std::size_t i = 0; i < percents.size(); ++i) {
        EXPECT_EQ(percents[i] % 10, 0);
        EXPECT_GT(percents[i], i == 0 ? 0 : percents[i - 1]);
    }

    const ProcessResult put = cli.run({"put", cli.work().file("a.bin"), "/home/b.bin"});
    EXPECT_THAT(put.err, HasSubstr("b.bin: 100% (2.0 MiB of 2.0 MiB)\n"));
}

TEST_F(CliTransfer, ProgressIsABarOnATerminal) {
    const auto process = cli.start({"put", keep("a.bin", randomBytes(1 << 20)), "/home/"}, true);
    EXPECT_EQ(process->wait(), 0) << process->out();
    EXPECT_THAT(process->out(), AllOf(HasSubstr("\r\x1b[Ka.bin ["), HasSubstr("####]"), HasSubstr("100%")));
}

TEST_F(CliTransfer, QuietTransfersSayNothing) {
    const ProcessResult put = cli.run({"put", keep("a.bin", "content"), "/home/", "--quiet"});
    EXPECT_EQ(put.exitCode, 0);
    EXPECT_THAT(put.out + put.err, IsEmpty());
    const ProcessResult get = cli.run({"get", "/home/a.bin", "b.bin", "-q"});
    EXPECT_EQ(get.exitCode, 0);
    EXPECT_THAT(get.out + get.err, IsEmpty());
}

TEST_F(CliTransfer, TransfersTellWhatTheyDidInJson) {
    const Json put = Json::parse(cli.run({"put", keep("a.bin", "content"), "/home/", "--json", "-q"}).out);
    EXPECT_EQ(put["remote"], "/home/a.bin");
    EXPECT_EQ(put["size"], 7);
    EXPECT_EQ(put["mtime"], kTime);
    const Json get = Json::parse(cli.run({"get", "/home/a.bin", "b.bin", "--json", "-q"}).out);
    EXPECT_EQ(get["local"], "b.bin");
    EXPECT_EQ(get["size"], 7);
    EXPECT_EQ(get["resumedAt"], 0);
}

TEST_F(CliTransfer, GetReplacesAFileOnlyWhenAsked) {
    serve("a.txt", "new");
    keep("a.txt", "old");
    EXPECT_EQ(cli.run({"get", "/home/a.txt"}).exitCode, 10);
    EXPECT_EQ(cli.work().read("a.txt"), "old");
    EXPECT_EQ(nas.requestCount("download"), 0);
    EXPECT_EQ(cli.run({"get", "/home/a.txt", "--overwrite"}).exitCode, 0);
    EXPECT_EQ(cli.work().read("a.txt"), "new");
}

TEST_F(CliTransfer, GetFailuresHaveTheirCodes) {
    serve("a.txt", "content");
    EXPECT_EQ(cli.run({"get", "/home/none"}).exitCode, 5);
    EXPECT_EQ(cli.run({"get", "/home"}).exitCode, 2);
    EXPECT_EQ(cli.run({"get", "/home/a.txt", "/nowhere/a.txt"}).exitCode, 9);
    EXPECT_THAT(cli.partial(), IsEmpty());
}

TEST_F(CliTransfer, ADownloadThatBrokeOffIsResumedWhereItStopped) {
    const std::string content = randomBytes(3000000);
    serve("film", content);
    const std::int64_t arrived = breakOff("film", 1000000);
    ASSERT_GT(arrived, 0);
    ASSERT_LE(arrived, 1000000);

    const ProcessResult result = cli.run({"get", "/home/film", "--json"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_THAT(result.err, HasSubstr("resuming at byte " + number(arrived)));
    EXPECT_EQ(Json::parse(result.out)["resumedAt"], arrived);
    EXPECT_TRUE(cli.work().read("film") == content);
    EXPECT_EQ(modifiedTime(cli.work().file("film")), kTime);
    EXPECT_THAT(cli.partial(), IsEmpty());
    EXPECT_TRUE(nas.waitForLog(number(3000000 - arrived) + " bytes from " + number(arrived)));
}

TEST_F(CliTransfer, BeyondItsHalfADownloadGoesOnAtTheHalfAndSaysSo) {
    const std::string content = randomBytes(3000001);
    serve("film", content);
    ASSERT_GT(breakOff("film", 2900000), 1500000);

    const ProcessResult result = cli.run({"get", "/home/film"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_THAT(result.err, HasSubstr("can't be resumed beyond its half: going on at byte 1500000"));
    EXPECT_TRUE(cli.work().read("film") == content);
    EXPECT_TRUE(nas.waitForLog("1500001 bytes from 1500000"));
}

TEST_F(CliTransfer, WhatIsHereOfAnotherVersionIsNotGoneOnWith) {
    serve("film", randomBytes(3000000, 1));
    ASSERT_GT(breakOff("film", 1000000), 0);
    const std::string changed = randomBytes(3000000, 2);
    serve("film", changed, kTime + 1);

    const ProcessResult result = cli.run({"get", "/home/film"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_THAT(result.err, Not(HasSubstr("resuming")));
    EXPECT_TRUE(cli.work().read("film") == changed);
    EXPECT_THAT(cli.partial(), IsEmpty()) << "what is outdated goes";
}

TEST_F(CliTransfer, RestartDropsWhatIsHere) {
    const std::string content = randomBytes(3000000);
    serve("film", content);
    ASSERT_GT(breakOff("film", 1000000), 0);
    const ProcessResult result = cli.run({"get", "/home/film", "--restart"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_THAT(result.err, Not(HasSubstr("resuming")));
    EXPECT_TRUE(cli.work().read("film") == content);
}

TEST_F(CliTransfer, AServerThatDoesNotGoOnIsReportedAndWhatIsHereIsKept) {
    const std::string content = randomBytes(3000000);
    serve("film", content);
    const std::int64_t arrived = breakOff("film", 1000000);
    ASSERT_GT(arrived, 0);
    const std::string partial = cli.partial();
    // The resumed reply announces a wrong length.
    nas.arm("wrong-length,match=download,bytes=5");
    const ProcessResult result = cli.run({"get", "/home/film"});
    EXPECT_EQ(result.exitCode, 8) << result.err;
    EXPECT_THAT(result.err,
                AllOf(HasSubstr("did not go on at byte " + number(arrived)), HasSubstr("--restart")));
    EXPECT_EQ(static_cast<std::int64_t>(std::filesystem::file_size(partial)), arrived);
    ASSERT_EQ(cli.run({"get", "/home/film"}).exitCode, 0);
    EXPECT_TRUE(cli.work().read("film") == content);
}

TEST_F(CliTransfer, AnErrorPageIsNotTakenForTheFile) {
    serve("film", randomBytes(3000000));
    nas.arm("reply,match=download,status=500,content=an error page in place of the file");
    const ProcessResult result = cli.run({"get", "/home/film"});
    EXPECT_EQ(result.exitCode, 8) << result.err;
    EXPECT_THAT(result.err, HasSubstr("did not send the file"));
    EXPECT_FALSE(kept("film"));
    EXPECT_THAT(cli.partial(), IsEmpty());
}

TEST_F(CliTransfer, AnErrorPageDoesNotSpoilWhatIsHere) {
    const std::string content = randomBytes(3000000);
    serve("film", content);
    const std::int64_t arrived = breakOff("film", 1000000);
    ASSERT_GT(arrived, 0);
    const std::string partial = cli.partial();
    nas.arm("http-status,match=stat,status=503,skip=1");
    nas.arm("reply,match=download,status=503,content=an error page in place of the file");
    EXPECT_EQ(cli.run({"get", "/home/film"}).exitCode, 3);
    EXPECT_EQ(static_cast<std::int64_t>(std::filesystem::file_size(partial)), arrived);
    ASSERT_EQ(cli.run({"get", "/home/film"}).exitCode, 0);
    EXPECT_TRUE(cli.work().read("film") == content);
}

TEST_F(CliTransfer, CtrlCStopsADownloadAndTheNextOneGoesOn) {
    const std::string content = randomBytes(8 << 20);
    serve("film", content);
    const int fault = nas.arm("trickle,match=download,bytes=65536,ms=20");
    const auto process = cli.start({"get", "/home/film"});
    ASSERT_TRUE(process->waitFor([](const std::string&, const std::string& err) {
        return err.find("film: 10%") != err.npos;
    })) << process->err();
    process->sendSignal(SIGINT);
    EXPECT_EQ(process->wait(), 7) << process->err();
    EXPECT_EQ(nas.hits(fault), 1);
    EXPECT_THAT(process->err(), HasSubstr("cancelled, "));
    EXPECT_FALSE(kept("film"));
    ASSERT_THAT(cli.partial(), Not(IsEmpty()));
    EXPECT_EQ(nas.requestCount("logout"), 1) << "the session ends all the same";

    nas.disarm();
    const ProcessResult again = cli.run({"get", "/home/film"});
    ASSERT_EQ(again.exitCode, 0) << again.err;
    EXPECT_THAT(again.err, HasSubstr("resuming at byte "));
    EXPECT_TRUE(cli.work().read("film") == content);
}

TEST_F(CliTransfer, CtrlCEndsADownloadThatGetsNoBytes) {
    serve("film", randomBytes(1 << 20));
    nas.arm("stall,match=download,body=1,bytes=500000");
    const auto process = cli.start({"get", "/home/film"});
    ASSERT_TRUE(process->waitFor([](const std::string&, const std::string& err) {
        return err.find("film: 40%") != err.npos;
    })) << process->err();
    process->sendSignal(SIGTERM);
    EXPECT_EQ(process->wait(), 7) << process->err();
    EXPECT_FALSE(kept("film"));
    EXPECT_THAT(cli.partial(), Not(IsEmpty()));
    EXPECT_EQ(nas.requestCount("logout"), 1);
}

TEST_F(CliTransfer, CtrlCEndsAResumedDownloadThatReportsNoProgress) {
    const std::string content = randomBytes(8 << 20);
    serve("film", content);
    ASSERT_GT(breakOff("film", 6 << 20), 4 << 20);
    nas.arm("trickle,match=download,bytes=65536,ms=100");
    const auto process = cli.start({"get", "/home/film"});
    ASSERT_TRUE(process->waitFor([](const std::string&, const std::string& err) {
        return err.find("film: 60%") != err.npos;
    })) << process->err();
    process->sendSignal(SIGINT);
    EXPECT_EQ(process->wait(), 7) << process->err();
    EXPECT_FALSE(kept("film"));
    EXPECT_EQ(nas.requestCount("logout"), nas.requestCount("login"));
    nas.disarm();
    EXPECT_EQ(cli.run({"get", "/home/film"}).exitCode, 0);
    EXPECT_TRUE(cli.work().read("film") == content);
}

TEST_F(CliTransfer, TwoDownloadsOfOneFileDoNotMix) {
    serve("film", randomBytes(1 << 20));
    nas.arm("stall,match=download,body=1,bytes=500000");
    const auto first = cli.start({"get", "/home/film"});
    ASSERT_TRUE(first->waitFor(
        [](const std::string&, const std::string& err) { return err.find("film: 40%") != err.npos; }));
    const ProcessResult second = cli.run({"get", "/home/film"});
    EXPECT_EQ(second.exitCode, 9);
    EXPECT_THAT(second.err, HasSubstr("in use"));
}

TEST_F(CliTransfer, CtrlCStopsAnUpload) {
    const std::string file = keep("film", randomBytes(64 << 20));
    const int fault = nas.arm("stall-upload,match=upload_and_move,bytes=16000000,ms=300");
    const auto process = cli.start({"put", file, "/home/"});
    ASSERT_TRUE(process->waitFor([](const std::string&, const std::string& err) {
        return err.find("film: ") != err.npos;
    })) << process->err();
    waitForHit(fault, *process);
    process->sendSignal(SIGINT);
    EXPECT_EQ(process->wait(), 7) << process->err();
    EXPECT_EQ(nas.hits(fault), 1);
    EXPECT_FALSE(served("film"));
}

TEST_F(CliTransfer, CtrlCEndsAnUploadThatNobodyReads) {
    const std::string file = keep("film", randomBytes(64 << 20));
    const int fault = nas.arm("stall-upload,match=upload_and_move,bytes=1000000");
    const auto process = cli.start({"put", file, "/home/"});
    waitForHit(fault, *process);
    process->sendSignal(SIGINT);
    EXPECT_EQ(process->wait(), 7) << process->err();
    EXPECT_FALSE(served("film"));
}

TEST_F(CliTransfer, TouchCreatesAndNeverEmpties) {
    EXPECT_EQ(cli.run({"touch", "/home/new"}).exitCode, 0);
    EXPECT_TRUE(served("new"));
    serve("full", "content");
    EXPECT_EQ(cli.run({"touch", "/home/full"}).exitCode, 10);
    EXPECT_EQ(nas.folder().read(home + "full"), "content");
}

TEST_F(CliTransfer, CanUploadTellsWhetherItIsAllowed) {
    const ProcessResult yes = cli.run({"can-upload", "/home/new", "--json"});
    EXPECT_EQ(yes.exitCode, 0) << yes.err;
    EXPECT_EQ(Json::parse(yes.out)["allowed"], true);
    EXPECT_EQ(cli.run({"can-upload", "/top"}).exitCode, 6);
}

TEST_F(CliTransfer, AnExhaustedQuotaHasItsCode) {
    Nas::Options limited;
    limited.arguments = {"--quota", "anna:1000"};
    Nas small(limited);
    Cli other(small);
    const std::string file = keep("a.bin", std::string(5000, 'x'));
    EXPECT_EQ(other.run({"put", file, "/home/"}).exitCode, 11);
    EXPECT_EQ(other.run({"put", file, "/home/b.bin", "--plain"}).exitCode, 11);
}
