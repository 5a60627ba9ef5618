#include "cli_support.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using Json = nlohmann::json;

namespace {

class CliBatch : public CliOnRoads {
protected:
    void SetUp() override { std::filesystem::create_directories(nas.folder().path() / home / "box"); }
};

class CliBatchEdges : public CliBatch {};

}  // namespace

CLI_ON_ALL_ROADS(CliBatch);
INSTANTIATE_TEST_SUITE_P(OneRoad, CliBatchEdges, testing::Values(CliRoad{}),
                         [](const auto& info) { return nameOf(info.param); });

TEST_P(CliBatch, ManyFilesGoInOneRequest) {
    std::map<std::string, std::string> files = {{"empty", ""}, {"\u6587\u4ef6 & 100%+#?~'.txt", "text"}};
    for (unsigned i = 0; i < 20; ++i) files["file" + std::to_string(i)] = randomBytes(1000 * i + 1, i);
    std::vector<std::string> arguments = {"put", "--batch"};
    for (const auto& [name, content] : files) arguments.push_back(keep(name, content));
    arguments.insert(arguments.end(), {"/home/box", "--json"});
    const ProcessResult result = cli.run(arguments);
    ASSERT_EQ(result.exitCode, 0) << result.out << result.err;
    for (const auto& [name, content] : files) {
        EXPECT_TRUE(nas.folder().read(home + "box/" + name) == content) << name;
        EXPECT_EQ(modifiedTime(nas.folder().file(home + "box/" + name)), kTime) << name;
    }
    const Json json = Json::parse(result.out);
    EXPECT_EQ(json["sent"], files.size());
    EXPECT_EQ(json["failed"], 0);
    EXPECT_EQ(json["files"][0]["sent"], true);
    EXPECT_EQ(nas.requestCount("upload.php"), 1);
}

TEST_P(CliBatchEdges, EachFileHasItsOwnResult) {
    serve("box/there", "old");
    std::filesystem::create_directory(nas.folder().path() / home / "box" / "folder");
    const ProcessResult result = cli.run({"put", "--batch", keep("good", "1"), keep("there", "2"), "missing",
                                          keep("folder", "3"), "/home/box"});
    EXPECT_EQ(result.exitCode, 10) << result.err;
    EXPECT_THAT(result.out,
                AllOf(HasSubstr("good      1 B  sent\n"), HasSubstr("--overwrite replaces it"),
                      HasSubstr("cannot read missing"), HasSubstr("a folder of that name exists")));
    EXPECT_THAT(result.err, HasSubstr("3 of 4 files were not sent"));
    EXPECT_EQ(nas.folder().read(home + "box/good"), "1");
    EXPECT_EQ(nas.folder().read(home + "box/there"), "old");
    EXPECT_EQ(cli.run({"put", "--batch", "there", "good", "/home/box", "-f"}).exitCode, 0);
    EXPECT_EQ(nas.folder().read(home + "box/there"), "2");
}

TEST_P(CliBatchEdges, WhatTheServerRefusesOrLeavesOutIsToldFileByFile) {
    answer("upload.php", R"({"status":1,"files":[{"name":"a","status":"1","size":1},)"
                         R"({"name":"b","status":"4","size":1},{"name":"c","status":"1","size":7}]})");
    const ProcessResult result = cli.run({"put", "--batch", keep("a", "1"), keep("b", "1"), keep("c", "1"),
                                          keep("d", "1"), "/home/box", "--json"});
    EXPECT_EQ(result.exitCode, 6) << result.err;
    const Json files = Json::parse(result.out)["files"];
    EXPECT_EQ(files[0]["sent"], true);
    EXPECT_EQ(files[1]["exit"], 6);
    EXPECT_EQ(files[2]["exit"], 8);
    EXPECT_EQ(files[3]["exit"], 1);
}

TEST_P(CliBatchEdges, ARefusedBatchFailsAllOfIts) {
    answer("upload.php", R"({"status":9})");
    const ProcessResult result = cli.run({"put", "--batch", keep("a", "1"), keep("b", "1"), "/home/box"});
    EXPECT_EQ(result.exitCode, 11) << result.err;
    EXPECT_THAT(result.err, HasSubstr("2 of 2 files were not sent"));
}

TEST_P(CliBatchEdges, ManyBytesMakeSeveralRequestsAndALargeFileGoesAlone) {
    std::vector<std::string> arguments = {"put", "--batch"};
    for (unsigned i = 0; i < 4; ++i)
        arguments.push_back(keep("m" + std::to_string(i), randomBytes(3 << 20, i)));
    arguments.push_back(keep("large", randomBytes(9 << 20)));
    arguments.push_back("/home/box");
    const ProcessResult result = cli.run(arguments);
    ASSERT_EQ(result.exitCode, 0) << result.out << result.err;
    EXPECT_EQ(nas.requestCount("upload.php"), 2);
    EXPECT_EQ(nas.requestCount("upload_and_move"), 1);
    EXPECT_TRUE(nas.folder().read(home + "box/large") == cli.work().read("large"));
    EXPECT_TRUE(nas.folder().read(home + "box/m3") == cli.work().read("m3"));
}

TEST_P(CliBatchEdges, NothingIsSentOnADryRunOrToNowhere) {
    const std::string file = keep("a", "1");
    EXPECT_THAT(cli.run({"put", "--batch", file, "/home/box", "--dry-run"}).out, HasSubstr("would be sent"));
    EXPECT_EQ(cli.run({"put", "--batch", file, "/home/none"}).exitCode, 5);
    EXPECT_EQ(cli.run({"put", "--batch", file, cli.work().write("sub/A", "2"), "/home/box"}).exitCode, 2)
        << "the server's answer could not tell them apart";
    EXPECT_EQ(cli.run({"put", file, file, "/home/box"}).exitCode, 2);
    EXPECT_EQ(nas.requestCount("upload.php"), 0);
}
