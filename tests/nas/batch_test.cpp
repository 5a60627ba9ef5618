#include <gmock/gmock.h>

#include "batchrequests.h"
#include "nastest.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class NasBatch : public NasTest, protected BatchRequests {
protected:
    using NasTest::NasTest;

    NasReply send(const std::vector<File>& files) { return run(requestOf(body(sid, files))); }
    /// "name:status:size" of each file.
    static std::vector<std::string> results(const NasReply& reply) {
        std::vector<std::string> out;
        const Json::Value json = reply.json();
        for (const Json::Value& file : json["files"]) {
            EXPECT_TRUE(file["size"].isInt64());
            out.push_back(file["name"].asString() + ":" + file["status"].asString() + ":" +
                          std::to_string(file["size"].asInt64()));
        }
        return out;
    }
};

class NasBatchQuota : public NasBatch {
protected:
    NasBatchQuota() : NasBatch({"--quota", "anna:1000"}) {}
};

TEST_F(NasBatch, EachFileLandsWithItsTimeAndHasItsResult) {
    const std::string second = noise(300000);
    for (const char* target : {"/cgi-bin/torvi/upload.php", "/cgi-bin/filemanager/upload.php"}) {
        const NasReply reply = run(requestOf(body(sid, {{"a +&\xc3\xa4", "one", "/Public/", "1000000001"},
                                                        {"b", second, "/Public/", "1000000002"},
                                                        {"empty", "", "/Public/", "0"}}),
                                             target));
        EXPECT_EQ(1, reply.status()) << reply.body;
        EXPECT_THAT(results(reply), ElementsAre("a +&\xc3\xa4:1:3", "b:1:300000", "empty:1:0"));
        EXPECT_EQ("one", nas.folder().read("Public/a +&\xc3\xa4"));
        EXPECT_TRUE(nas.folder().read("Public/b") == second);
        EXPECT_EQ("", nas.folder().read("Public/empty"));
        EXPECT_EQ(1000000001, timeOf(nas.folder().file("Public/a +&\xc3\xa4")));
        EXPECT_EQ(1000000002, timeOf(nas.folder().file("Public/b")));
        EXPECT_EQ(0, timeOf(nas.folder().file("Public/empty")));
        EXPECT_THAT(onDisk("Public"), ElementsAre("a +&\xc3\xa4", "b", "empty"));
        std::filesystem::remove_all(nas.folder().path() / "Public");
        std::filesystem::create_directory(nas.folder().path() / "Public");
    }
}

TEST_F(NasBatch, FileThatIsThereIsReplaced) {
    write("Public/a", "before");
    EXPECT_THAT(results(send({{"a", "after"}})), ElementsAre("a:1:5"));
    EXPECT_EQ("after", nas.folder().read("Public/a"));
}

TEST_F(NasBatch, ContentThatLooksLikeDelimitersLandsInPiecesOfAnySize) {
    const std::string delimiter = std::string("\r\n--") + kBoundary;
    const std::string content = "\r\n" + delimiter.substr(0, delimiter.size() - 1) + "X\r\r\n\r\n--\r\n" +
                                delimiter.substr(0, 10) + "\r\n\r\n";
    for (const std::size_t piece : {std::size_t(1), std::size_t(7), std::size_t(61)}) {
        NasConnection connection(nas.port());
        const std::string bytes = requestOf(body(sid, {{"a", content}, {"b", "\r\n"}})).bytes();
        for (std::size_t at = 0; at < bytes.size(); at += piece) connection.send(bytes.substr(at, piece));
        EXPECT_EQ(1, connection.readAll().status()) << piece;
        EXPECT_EQ(content, nas.folder().read("Public/a"));
        EXPECT_EQ("\r\n", nas.folder().read("Public/b"));
    }
}

TEST_F(NasBatch, FileThatCannotBePutLeavesTheOthers) {
    write("Public/folder/x", "1");
    std::filesystem::permissions(write("Public/locked", "1"), std::filesystem::perms(0444));
    const NasReply reply = send({{"good", "1"},
                                 {"a", "22", "/Public/none"},
                                 {"a", "333", "/"},
                                 {"a", "4444", "/Public/.."},
                                 {"folder", "55555"},
                                 {"locked", "666666"},
                                 {"x/y", "7777777"},
                                 {std::string(256, 'n'), "88888888"},
                                 {"last", "999999999", "/home"}});
    EXPECT_EQ(1, reply.status());
    EXPECT_THAT(results(reply),
                ElementsAre("good:1:1", "a:5:2", "a:4:3", "a:4:4", "folder:33:5", "locked:4:6", "x/y:12:7",
                            std::string(256, 'n') + ":26:8", "last:1:9"));
    EXPECT_EQ("1", nas.folder().read("Public/good"));
    EXPECT_EQ("999999999", nas.folder().read("homes/anna/last"));
    EXPECT_THAT(onDisk("Public"), ElementsAre("folder", "good", "locked"));
}

TEST_F(NasBatch, SessionAndTeamFoldersHold) {
    const std::string none = "0123456789abcdef0123456789abcdef";
    EXPECT_EQ(3, run(requestOf(body(none, {{"a", "1"}, {"b", "2"}}))).status());
    EXPECT_FALSE(run(requestOf(body(none, {{"a", "1"}}))).json().isMember("files"));
    EXPECT_THAT(onDisk("Public"), IsEmpty());
    EXPECT_THAT(results(run(requestOf(
                    body(benSid, {{"p", "1", "vtf://anna-Plans"}, {"r", "1", "vtf://anna-Rules"}})))),
                ElementsAre("p:1:1", "r:4:1"));
    EXPECT_EQ("1", nas.folder().read("homes/anna/Plans/p"));
    EXPECT_THAT(onDisk("homes/anna/Rules"), IsEmpty());
}

TEST_F(NasBatchQuota, QuotaHoldsForTheFilesTogether) {
    EXPECT_THAT(results(send({{"a", std::string(1001, 'x'), "/home"}})), ElementsAre("a:9:1001"));
    EXPECT_THAT(results(send({{"a", std::string(600, 'x'), "/home"}, {"b", std::string(600, 'x'), "/home"}})),
                ElementsAre("a:1:600", "b:9:600"));
    EXPECT_THAT(onDisk("homes/anna"), ElementsAre("Plans", "Rules", "a"));
}

TEST_F(NasBatch, BrokenOffBatchPutsNothingInItsPlace) {
    const NasRequest request = requestOf(body(sid, {{"a", "first"}, {"b", noise(100000)}}));
    const int fault = nas.arm("cut-upload,match=upload.php,bytes=50000");
    EXPECT_EQ(0, run(request).http);
    EXPECT_EQ(1, nas.hits(fault));
    EXPECT_TRUE(nas.waitForLog("func=upload.php user=- http=400 refused: the body broke off"));
    EXPECT_THAT(onDisk("Public"), IsEmpty());
    nas.arm("close-before-reply,match=upload.php");
    EXPECT_EQ("", run(request).raw);
    EXPECT_THAT(onDisk("Public"), ElementsAre("a", "b"));
}

TEST_F(NasBatch, BodyIsExact) {
    const std::string right = body(sid, {{"a", "one"}, {"b", "two"}});
    const std::string folder = field("dest_path[]", "/Public/"), time = field("mtime[]", "1000000001");
    const auto refused = [&](const std::string& from, const std::string& to, const std::string& reason) {
        std::string text = right;
        const auto at = text.find(from);
        ASSERT_NE(std::string::npos, at) << from;
        const NasReply reply = run(requestOf(text.replace(at, from.size(), to)));
        EXPECT_EQ(400, reply.http) << reason;
        EXPECT_THAT(reply.body, HasSubstr(reason));
        EXPECT_THAT(onDisk("Public"), IsEmpty()) << reason;
    };
    const std::string session = field("sid", sid);
    refused(session, "", "field \\\"dest_path[]\\\" where the field \\\"sid\\\" is due");
    refused(session, session + session, "field \\\"sid\\\" where a field \\\"dest_path[]\\\" is due");
    refused(session, field("sid", ""), "field \\\"sid\\\" is empty");
    refused(folder, "", "field \\\"mtime[]\\\" where a part \\\"files[]\\\" is due");
    refused(folder, folder + folder, "a file where a field \\\"mtime[]\\\" is due");
    refused(time, "", "a file where a field \\\"mtime[]\\\" is due");
    refused(folder + time, time + folder, "field \\\"dest_path[]\\\" where a part \\\"files[]\\\" is due");
    refused(time, field("mtime[]", "soon"), "not a decimal number");
    refused(time, field("mtime[]", "-1"), "negative");
    refused(part({"a", "one"}), "", "ends where a part \\\"files[]\\\" is due");
    refused(part({"b", "two"}), part({"b", "two"}) + part({"c", "three"}), "a file where the end is due");
    refused(part({"a", "one"}), part({"a", "one"}) + time, "field \\\"mtime[]\\\" where a part");
    refused(session, session + field("overwrite", "1"), "no part of the protocol");
    refused("name=\"files[]\"", "name=\"files\"", "no part of the protocol");
    refused("octet-stream\r\nContent-Transfer-Encoding: binary", "octet-stream", "isn't the protocol's");
    refused("Content-Type: application/octet-stream", "Content-Type: text/plain", "isn't the protocol's");
    refused("filename=\"a\"", "filename=\"a\xff\"", "not plain UTF-8");
    refused("filename=\"a\"", std::string("filename=\"a\0b\"", 14), "not plain UTF-8");
    const std::string end = std::string("--") + kBoundary + "--";
    refused(end, end + "\r\n", "after the closing delimiter");
    refused(end, std::string("--") + kBoundary + "-", "ends where");
    refused(end, "", "ends where");
    refused(session, "\r\n" + session, "no part or end");
    EXPECT_EQ(400, run(requestOf(field("sid", sid) + end)).http);
    EXPECT_EQ(400, run(requestOf("")).http);
    EXPECT_EQ(1, run(requestOf(right)).status());
    EXPECT_THAT(onDisk("Public"), ElementsAre("a", "b"));
}

TEST_F(NasBatch, RequestIsExact) {
    const NasRequest right = requestOf(body(sid, {{"a", "1"}}));
    EXPECT_EQ(400, run(NasRequest(right).set("Pragma", "")).http);
    EXPECT_EQ(400, run(NasRequest(right).set("Content-Type", "multipart/form-data; boundary=x")).http);
    EXPECT_EQ(411, run(NasRequest(right).set("Content-Length", "")).http);
    NasRequest query = right;
    query.target += "?sid=" + sid;
    EXPECT_EQ(400, run(query).http);
    EXPECT_EQ(405, get("/cgi-bin/torvi/upload.php").http);
    EXPECT_EQ(404, run(requestOf(right.body, "/cgi-bin/torvi/upload.cgi")).http);
    EXPECT_THAT(onDisk("Public"), IsEmpty());
}

TEST_F(NasBatch, LongBatchFitsTheServersDescriptors) {
    std::vector<File> files;
    for (int i = 0; i < 1500; ++i) files.push_back({"f" + std::to_string(i), std::to_string(i)});
    const NasReply reply = send(files);
    EXPECT_EQ(1, reply.status());
    EXPECT_EQ(1500u, onDisk("Public").size());
    EXPECT_EQ("1499", nas.folder().read("Public/f1499"));
    const auto open = std::filesystem::directory_iterator("/proc/" + std::to_string(nas.pid()) + "/fd");
    EXPECT_LT(std::distance(open, std::filesystem::directory_iterator()), 200);
}

class NasBatchNode : public NasBatch {
protected:
    NasBatchNode() : NasBatch({"--slave-id", "node7"}) {}
};

TEST_F(NasBatchNode, SyncAddressTakesTheNodesPrefix) {
    const std::string text = body(sid, {{"a", "1"}});
    EXPECT_EQ(1, run(requestOf(text, "/node7/cgi-bin/torvi/upload.php")).status());
    EXPECT_EQ(404, run(requestOf(text, "/node8/cgi-bin/torvi/upload.php")).http);
    EXPECT_EQ(404, run(requestOf(text, "/node7/cgi-bin/filemanager/upload.php")).http);
}
