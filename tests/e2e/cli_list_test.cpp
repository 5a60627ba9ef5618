#include "cli_support.h"
#include "support/programs.h"

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Json = nlohmann::json;

namespace {

class CliList : public CliTest {
protected:
    /// A name with its number in two digits.
    static std::string numbered(int number) {
        return (number < 10 ? "file0" : "file") + std::to_string(number);
    }

    void SetUp() override {
        for (int i = 0; i < 25; ++i) {
            const std::string path =
                nas.folder().write(home + "box/" + numbered(i), std::string(100 - i, 'x'));
            setModifiedTime(path, 1500000000 + i * 1000);
        }
        std::filesystem::create_directories(nas.folder().path() / home / "box" / "sub");
        std::filesystem::create_directories(nas.folder().path() / home / "empty");
    }

    std::vector<std::string> names(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"ls", "/home/box", "--json"});
        const ProcessResult result = cli.run(arguments);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        std::vector<std::string> list;
        const Json listing = Json::parse(result.out);
        for (const Json& entry : listing["entries"]) list.push_back(entry["name"]);
        return list;
    }
};

}  // namespace

TEST_F(CliList, AListingIsFetchedPageByPageAndWhole) {
    const ProcessResult result = cli.run({"ls", "/home/box", "--page-size", "10", "--json"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const Json listing = Json::parse(result.out);
    EXPECT_EQ(listing["total"], 26);
    EXPECT_EQ(listing["count"], 26);
    EXPECT_EQ(listing["complete"], true);
    EXPECT_EQ(nas.requestCount("get_list"), 3);
    std::vector<std::string> expected;
    for (int i = 0; i < 25; ++i) expected.push_back(numbered(i));
    expected.push_back("sub");
    std::vector<std::string> got;
    for (const Json& entry : listing["entries"]) got.push_back(entry["name"]);
    EXPECT_EQ(got, expected);
}

TEST_F(CliList, AnEntryTellsNamePathTypeSizeTimeAndAccess) {
    const Json listing = Json::parse(cli.run({"ls", "/home/box/", "--pattern", "file07", "--json"}).out);
    ASSERT_EQ(listing["entries"].size(), 1u);
    const Json& entry = listing["entries"][0];
    EXPECT_EQ(entry["path"], "/home/box/file07");
    EXPECT_EQ(entry["type"], "file");
    EXPECT_EQ(entry["size"], 93);
    EXPECT_EQ(entry["mtime"], 1500007000);
    EXPECT_EQ(entry["modified"], "2017-07-14T04:36:40Z");
    EXPECT_EQ(entry["access"], "write");
}

TEST_F(CliList, TheTableHasARowForEachEntry) {
    const ProcessResult result = cli.run({"ls", "/home/box"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 27);
    EXPECT_THAT(result.out,
                AllOf(HasSubstr("NAME"), HasSubstr("SIZE"), HasSubstr("MODIFIED"), HasSubstr("ACCESS")));
    EXPECT_THAT(result.out, HasSubstr("file00  100 B  2017-07-14 02:40:00  file    write\n"));
    EXPECT_THAT(result.out, HasSubstr("sub/        -  "));
}

TEST_F(CliList, FiltersOrdersAndLimits) {
    EXPECT_THAT(names({"--folders"}), ElementsAre("sub"));
    EXPECT_EQ(names({"--files"}).size(), 25u);
    EXPECT_THAT(names({"--pattern", "*1?"}).size(), 10u);
    EXPECT_THAT(names({"--files", "--sort", "size", "--limit", "2"}), ElementsAre("file00", "file01"));
    EXPECT_THAT(names({"--files", "--sort", "size", "--limit", "2", "-r"}), ElementsAre("file24", "file23"));
    EXPECT_THAT(names({"--files", "--sort", "mtime", "--limit", "2"}), ElementsAre("file24", "file23"));
    EXPECT_THAT(names({"--limit", "1"}), ElementsAre("file00"));
}

TEST_F(CliList, NewestFirstWithALimitAsksForNoMorePagesThanItShows) {
    EXPECT_THAT(names({"--files", "--sort", "mtime", "--limit", "3", "--page-size", "5"}).size(), 3u);
    EXPECT_EQ(nas.requestCount("get_list"), 1);
}

TEST_F(CliList, APatternThatMatchesOnlyOnALaterPageIsFound) {
    EXPECT_THAT(names({"--pattern", "file0*", "--sort", "mtime", "--page-size", "5"}).size(), 10u);
}

TEST_F(CliList, EmptyMissingDeniedAndPlainFileAreToldApart) {
    const ProcessResult empty = cli.run({"ls", "/home/empty", "--json"});
    EXPECT_EQ(empty.exitCode, 0) << empty.err;
    EXPECT_THAT(Json::parse(empty.out)["entries"], IsEmpty());

    EXPECT_EQ(cli.run({"ls", "/home/missing"}).exitCode, 5);

    const ProcessResult file = cli.run({"ls", "/home/box/file03", "--json"});
    EXPECT_EQ(file.exitCode, 0) << file.err;
    EXPECT_EQ(Json::parse(file.out)["entries"][0]["path"], "/home/box/file03");

    Process::Options ben = cli.options();
    ben.environment["TORVI_PASSWORD"] = "hidden";
    const ProcessResult denied = runProcess(
        kTorvi,
        {"ls", "/homes/anna", "--server", "127.0.0.1", "--user", "ben", "--port", std::to_string(nas.port())},
        ben);
    EXPECT_EQ(denied.exitCode, 6) << denied.err;
}

TEST_F(CliList, TheRootListsTheShares) {
    std::filesystem::create_directories(nas.folder().path() / "Public");
    const ProcessResult result = cli.run({"ls"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("Public/"));
}

TEST_F(CliList, AListingThatBreaksOffBetweenPagesIsNotTakenForWhole) {
    nas.control("POST", "faults",
                R"({"name":"reply","match":"get_list","skip":1,"status":200,"content":"{\"status\":3}"})");
    const ProcessResult result = cli.run({"ls", "/home/box", "--page-size", "10", "--json"});
    EXPECT_EQ(result.exitCode, 8);
    const Json listing = Json::parse(result.out);
    EXPECT_EQ(listing["complete"], false);
    EXPECT_EQ(listing["count"], 10);
}

TEST_F(CliList, AServerErrorInAListingIsAFailure) {
    nas.arm("http-status,match=get_list,status=500");
    EXPECT_EQ(cli.run({"ls", "/home/box"}).exitCode, 1);
    nas.arm("garbage,match=get_list");
    EXPECT_EQ(cli.run({"ls", "/home/box"}).exitCode, 1);
    nas.arm("http-status,match=get_list,status=503");
    EXPECT_EQ(cli.run({"ls", "/home/box"}).exitCode, 3);
}

TEST_F(CliList, NamesFromTheServerDoNotSteerTheTerminal) {
    nas.folder().write(home + "odd/red\x1b[31m\u202Etxt", "x");
    const ProcessResult result = cli.run({"ls", "/home/odd"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_THAT(result.out, AllOf(HasSubstr("red?[31m?txt"), Not(HasSubstr("\x1b"))));
    EXPECT_EQ(Json::parse(cli.run({"ls", "/home/odd", "--json"}).out)["entries"][0]["name"],
              "red\x1b[31m\u202Etxt");
}

TEST_F(CliList, WideNamesKeepTheColumnsStraight) {
    nas.folder().write(home + "wide/\u6587\u4ef6", "x");
    nas.folder().write(home + "wide/abcd", "x");
    const std::string out = cli.run({"ls", "/home/wide"}).out;
    EXPECT_THAT(out, AllOf(HasSubstr("\nabcd   1 B"), HasSubstr("\n\u6587\u4ef6   1 B")));
}

TEST_F(CliList, StatTellsOnePath) {
    const Json file = Json::parse(cli.run({"stat", "/home/box/file05", "--json"}).out);
    EXPECT_EQ(file["size"], 95);
    EXPECT_EQ(file["mtime"], 1500005000);
    EXPECT_EQ(file["type"], "file");
    EXPECT_EQ(Json::parse(cli.run({"stat", "/home/box/sub", "--json"}).out)["type"], "folder");
    EXPECT_THAT(cli.run({"stat", "/home/box/file05"}).out, HasSubstr("95 B (95 bytes)"));
    EXPECT_EQ(cli.run({"stat", "/home"}).exitCode, 0);
    EXPECT_EQ(cli.run({"stat", "/"}).exitCode, 0);
    EXPECT_EQ(cli.run({"stat", "/home/box/none"}).exitCode, 5);
    EXPECT_EQ(cli.run({"stat", "/nothing"}).exitCode, 5);
}

TEST_F(CliList, DuSumsAFolder) {
    const ProcessResult result = cli.run({"du", "/home/box", "--json"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(Json::parse(result.out)["size"], 25 * 100 - 300);
    EXPECT_EQ(cli.run({"du", "/home/missing"}).exitCode, 5);
}
