#include <gmock/gmock.h>

#include "nastest.h"
#include "support/sanitized.h"

using testing::ElementsAre;
using testing::HasSubstr;

using NasUpload = NasTest;
using NasDownload = NasTest;

TEST_F(NasUpload, EveryByteLands) {
    const std::string content = noise(3 * 1024 * 1024 + 17);
    const NasReply reply = put("/Public", "a.bin", content);
    EXPECT_EQ(1, reply.status());
    EXPECT_EQ("true", reply.json()["success"].asString());
    EXPECT_EQ(content, nas.folder().read("Public/a.bin"));
    EXPECT_THAT(onDisk("Public"), ElementsAre("a.bin"));
}

TEST_F(NasUpload, ContentThatLooksLikeDelimitersLands) {
    const std::string delimiter = std::string("\r\n--") + kBoundary;
    const std::string content = "\r\n" + delimiter.substr(0, delimiter.size() - 1) + "X\r\r\n\r\n--\r\n" +
                                delimiter.substr(0, 10) + "\r\n\r\n";
    EXPECT_EQ(1, put("/Public", "a", content).status());
    EXPECT_EQ(content, nas.folder().read("Public/a"));
}

TEST_F(NasUpload, BodyInSinglePiecesOfAnySizeIsRead) {
    const NasRequest request = NasRequest::upload(cgi(uploadQuery(sid, "/Public")), "pieces", noise(900));
    for (const std::size_t piece : {std::size_t(1), std::size_t(7), std::size_t(61)}) {
        NasConnection connection(nas.port());
        const std::string bytes = request.bytes();
        for (std::size_t at = 0; at < bytes.size(); at += piece) connection.send(bytes.substr(at, piece));
        EXPECT_EQ(1, connection.readAll().status()) << piece;
        EXPECT_EQ(noise(900), nas.folder().read("Public/pieces"));
    }
}

TEST_F(NasUpload, OverwriteReplacesAndItsAbsenceKeeps) {
    write("Public/a", "before");
    EXPECT_EQ(2, put("/Public", "a", "after", 0).status());
    EXPECT_EQ("before", nas.folder().read("Public/a"));
    EXPECT_EQ(1, put("/Public", "a", "after", 1).status());
    EXPECT_EQ("after", nas.folder().read("Public/a"));
    EXPECT_THAT(onDisk("Public"), ElementsAre("a"));
}

TEST_F(NasUpload, EmptyPartMakesAnEmptyFileAndEmptiesOne) {
    write("Public/full", "content");
    EXPECT_EQ(1, put("/Public", "full", "").status());
    EXPECT_EQ("", nas.folder().read("Public/full"));
    EXPECT_EQ(1, put("/Public", "fresh", "").status());
    EXPECT_EQ("", nas.folder().read("Public/fresh"));
}

TEST_F(NasUpload, EmptyNameWithoutAFilePartIsAnIllegalName) {
    NasRequest request = NasRequest::upload(cgi(uploadQuery(sid, "vtf://anna-Plans")), "", "");
    const auto from = request.body.find("Content-Disposition: form-data; name=\"Filedata\"");
    const auto to = request.body.find("Content-Disposition: form-data; name=\"Upload\"");
    request.body.erase(from, to - from);
    request.set("Content-Length", std::to_string(request.body.size()));
    const NasReply reply = run(request);
    EXPECT_EQ(12, reply.status());
    EXPECT_EQ("true", reply.json()["success"].asString());
}

TEST_F(NasUpload, PlacesThatCannotTakeItAnswerWithTheirStatus) {
    write("Public/folder/x", "1");
    std::filesystem::create_directory(nas.folder().path() / "Public/fixed");
    std::filesystem::permissions(nas.folder().path() / "Public/fixed", std::filesystem::perms(0555));
    std::filesystem::permissions(write("Public/locked", "1"), std::filesystem::perms(0444));
    EXPECT_EQ(5, put("/Public/none", "a", "1").status());
    EXPECT_EQ(5, put("", "a", "1").status());
    EXPECT_EQ(4, put("/", "a", "1").status());
    EXPECT_EQ(4, put("/Public/fixed", "a", "1").status());
    EXPECT_EQ(4, put("/Public", "locked", "1").status());
    EXPECT_EQ(33, put("/Public", "folder", "1").status());
    EXPECT_EQ(26, put("/Public", std::string(256, 'n'), "1").status());
    EXPECT_EQ(1, put("/Public", std::string(255, 'n'), "1").status());
    EXPECT_THAT(onDisk("Public/fixed"), testing::IsEmpty());
}

TEST_F(NasUpload, RefusalsKeepTheSuccessFlagThatLetsTheStatusBeRead) {
    EXPECT_EQ("true", put("/Public/none", "a", "1").json()["success"].asString());
}

TEST_F(NasUpload, UploadAndMoveSetsTheTime) {
    const NasReply reply = run(
        NasRequest::upload(cgi(moveQuery(sid, "/Public", 1000000123, 5)), "m", "12345", "upload_and_move"));
    EXPECT_EQ(1, reply.status());
    EXPECT_EQ("5", reply.json()["size"].asString());
    struct stat info {};
    ASSERT_EQ(0, ::stat(nas.folder().file("Public/m").c_str(), &info));
    EXPECT_EQ(1000000123, info.st_mtim.tv_sec);
    EXPECT_THAT(onDisk("homes/anna"), ElementsAre("Plans", "Rules"));
}

TEST_F(NasUpload, SizeThatIsNotTheAnnouncedOneIsNotStored) {
    for (const int announced : {4, 6}) {
        EXPECT_EQ(0, run(NasRequest::upload(cgi(moveQuery(sid, "/Public", 1, announced)), "m", "12345",
                                            "upload_and_move"))
                         .status());
    }
    EXPECT_THAT(onDisk("Public"), testing::IsEmpty());
    EXPECT_TRUE(nas.waitForLog("more bytes come than the 4 that filesize says"));
    EXPECT_TRUE(nas.waitForLog("filesize says 6, 5 bytes came"));
}

TEST_F(NasUpload, RenameTargetIsANameOrAPath) {
    write("Public/sub/x", "1");
    EXPECT_EQ(1, run(NasRequest::upload(cgi(moveQuery(sid, "/Public", 1, 1, 1, "other")), "m", "1",
                                        "upload_and_move"))
                     .status());
    EXPECT_EQ(1, run(NasRequest::upload(cgi(moveQuery(sid, "/Public", 1, 1, 1, "/Public/sub/deep")), "m", "2",
                                        "upload_and_move"))
                     .status());
    EXPECT_EQ("1", nas.folder().read("Public/other"));
    EXPECT_EQ("2", nas.folder().read("Public/sub/deep"));
    EXPECT_THAT(onDisk("Public"), ElementsAre("other", "sub"));
}

TEST_F(NasUpload, MissingHomeIsTold) {
    std::filesystem::remove_all(nas.folder().path() / "homes/ben");
    const NasReply reply =
        run(NasRequest::upload(cgi(moveQuery(benSid, "/home/x", 1, 1)), "m", "1", "upload_and_move"));
    EXPECT_EQ(5, reply.status());
    EXPECT_EQ(0, reply.json()["home_folder_available"].asInt());
    EXPECT_FALSE(run(NasRequest::upload(cgi(moveQuery(sid, "/home/none", 1, 1)), "m", "1", "upload_and_move"))
                     .json()
                     .isMember("home_folder_available"));
}

TEST_F(NasUpload, FileManagerTakesBothCalls) {
    EXPECT_EQ(1, run(NasRequest::upload(manager(uploadQuery(sid, "/Public")), "a", "1")).status());
    EXPECT_EQ(1,
              run(NasRequest::upload(manager(moveQuery(sid, "/Public", 1, 1)), "b", "1", "upload_and_move"))
                  .status());
}

TEST_F(NasUpload, ReceiverOfATeamFolderWritesUnlessItIsForReading) {
    EXPECT_EQ(1, run(NasRequest::upload(cgi(uploadQuery(benSid, "vtf://anna-Plans")), "p", "1")).status());
    EXPECT_EQ("1", nas.folder().read("homes/anna/Plans/p"));
    EXPECT_EQ(4, run(NasRequest::upload(cgi(uploadQuery(benSid, "vtf://anna-Rules")), "p", "1")).status());
}

TEST_F(NasUpload, BrokenOffBodyLeavesNothing) {
    write("Public/a", "before");
    {
        NasRequest request = NasRequest::upload(cgi(uploadQuery(sid, "/Public")), "a", noise(100000));
        NasConnection connection(nas.port());
        connection.send(request.bytes().substr(0, 60000));
    }
    EXPECT_TRUE(nas.waitForLog("the body broke off"));
    EXPECT_EQ("before", nas.folder().read("Public/a"));
    EXPECT_THAT(onDisk("Public"), ElementsAre("a"));
}

class NasQuota : public NasTest {
protected:
    NasQuota() : NasTest({"--quota", "anna:1000"}) {}
};

TEST_F(NasQuota, HomeTakesNoMoreThanItsQuotaAndReplacingFreesIt) {
    EXPECT_EQ(1, put("/home", "a", std::string(900, 'x')).status());
    EXPECT_EQ(9, put("/home", "b", std::string(101, 'x')).status());
    EXPECT_EQ(1, put("/home", "a", std::string(1000, 'x')).status());
    EXPECT_EQ(1, put("/Public", "b", std::string(5000, 'x')).status());
    EXPECT_THAT(onDisk("homes/anna"), ElementsAre("Plans", "Rules", "a"));
}

TEST_F(NasUpload, HalfAGigabyteDoesNotGrowTheServer) {
    const std::uint64_t length = 512ull << 20;
    const NasRequest frame = NasRequest::upload(cgi(uploadQuery(sid, "/Public")), "big", "");
    const auto split = frame.body.find("\r\n\r\n", frame.body.find("octet-stream")) + 4;
    NasRequest head = frame;
    head.set("Content-Length", std::to_string(frame.body.size() + length));
    head.body = frame.body.substr(0, split);
    NasConnection connection(nas.port());
    ASSERT_TRUE(connection.send(head.bytes()));
    const std::string block = noise(1 << 20);
    for (std::uint64_t sent = 0; sent < length; sent += block.size()) ASSERT_TRUE(connection.send(block));
    ASSERT_TRUE(connection.send(frame.body.substr(split)));
    EXPECT_EQ(1, connection.readAll(60000).status());
    EXPECT_EQ(length, std::filesystem::file_size(nas.folder().path() / "Public/big"));

    // And back again.
    NasConnection reader(nas.port());
    reader.send(NasRequest::download(cgi("func=download"), downloadForm(sid, "/Public", "big")).bytes());
    std::string piece;
    std::uint64_t got = 0;
    while (reader.readBytes(piece, 1 << 20)) {
        got += piece.size();
        piece.clear();
    }
    EXPECT_GE(got + piece.size(), length);

    const long peak = peakMemory();
    EXPECT_GT(peak, 0);
    if (!sanitized()) {
        EXPECT_LT(peak, 64 * 1024) << "KiB at the peak";
    }
}

TEST_F(NasDownload, WholeFileComesWithItsLength) {
    const std::string content = noise(2 * 1024 * 1024 + 5);
    write("Public/a", content);
    const NasReply reply = fetch("/Public", "a");
    EXPECT_EQ(200, reply.http);
    EXPECT_EQ("application/octet-stream", reply.headers.at("content-type"));
    EXPECT_TRUE(reply.complete());
    EXPECT_TRUE(reply.body == content);
}

TEST_F(NasDownload, OffsetGivesTheRestAndAnnouncesTheRest) {
    write("Public/a", "0123456789");
    for (const auto& [offset, rest] : std::vector<std::pair<std::string, std::string>>{
             {"0", "0123456789"}, {"4", "456789"}, {"9", "9"}, {"10", ""}, {"-3", "0123456789"}}) {
        const NasReply reply = fetch("/Public", "a", offset);
        EXPECT_EQ(rest, reply.body) << offset;
        EXPECT_TRUE(reply.complete()) << offset;
    }
}

TEST_F(NasDownload, RefusalHasNoLengthThatCouldPassForTheFile) {
    write("Public/a", "0123456789");
    write("Public/dir/x", "1");
    std::filesystem::permissions(write("Public/locked", "1"), std::filesystem::perms(0044));
    for (const auto& [name, offset, status] : std::vector<std::tuple<std::string, std::string, int>>{
             {"none", "", 5}, {"dir", "", 5}, {"a", "11", 0}, {"locked", "", 4}}) {
        const NasReply reply = fetch("/Public", name, offset);
        EXPECT_EQ(status, reply.status()) << name;
        EXPECT_EQ(0u, reply.headers.count("content-length"));
    }
}

TEST_F(NasDownload, TeamFolderAndFileManagerServeToo) {
    write("homes/anna/Plans/p", "plan");
    EXPECT_EQ(
        "plan",
        run(NasRequest::download(cgi("func=download"), downloadForm(benSid, "vtf://anna-Plans", "p"))).body);
    EXPECT_EQ(
        "plan",
        run(NasRequest::download(manager("func=download"), downloadForm(sid, "/home/Plans", "p"))).body);
}

TEST_F(NasDownload, TlsCarriesBothDirections) {
    const std::string content = noise(700000);
    EXPECT_EQ(1, run(NasRequest::upload(cgi(uploadQuery(sid, "/Public")), "t", content), true).status());
    const NasReply reply =
        run(NasRequest::download(cgi("func=download"), downloadForm(sid, "/Public", "t")), true);
    EXPECT_TRUE(reply.body == content);
}

TEST_F(NasDownload, OneConnectionCarriesManyRequests) {
    write("Public/a", "0123456789");
    NasConnection connection(nas.port());
    NasRequest again = NasRequest::get(cgi(statQuery(sid, "/Public", "a")));
    again.set("Connection", "Keep-Alive");
    for (int i = 0; i < 3; ++i) {
        connection.send(again.bytes());
        std::string reply;
        ASSERT_TRUE(connection.readBytes(reply, 15));
        EXPECT_EQ("HTTP/1.1 200 OK", reply);
        const std::string rest = "\"total\":1}";
        while (reply.find(rest) == std::string::npos)
            ASSERT_TRUE(connection.readBytes(reply, reply.size() + 1));
    }
}
