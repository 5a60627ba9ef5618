#include <gmock/gmock.h>

#include <csignal>
#include <thread>

#include "nastest.h"
#include "support/sanitized.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class NasChunks : public NasTest {
protected:
    using NasTest::NasTest;

    struct Slice {
        explicit Slice(std::string uploadId = {}) : id(std::move(uploadId)) {}

        std::string id;
        std::string path = "/Public";
        std::string name = "big";
        std::string content;
        std::int64_t offset = 0;
        std::int64_t size = 0;
        bool more = false;
        int overwrite = 1;
        std::string rename;
        std::string root = "/home";
        std::int64_t mtime = 1000000001;
    };

    static std::string sliceQuery(const std::string& sid, const Slice& slice) {
        return "func=chunked_upload&sid=" + sid + "&upload_id=" + slice.id +
               "&settime=1&mtime=" + std::to_string(slice.mtime) + "&offset=" + std::to_string(slice.offset) +
               "&filesize=" + std::to_string(slice.size) + "&dest_path=" + encoded(slice.path) +
               "&overwrite=" + std::to_string(slice.overwrite) +
               (slice.rename.empty() ? "" : "&rename_dest=" + encoded(slice.rename)) +
               "&upload_root_dir=" + encoded(slice.root) + (slice.more ? "&multipart=1" : "");
    }
    NasRequest request(const Slice& slice, const std::string& session = {}) {
        return NasRequest::upload(cgi(sliceQuery(session.empty() ? sid : session, slice)), slice.name,
                                  slice.content, "chunked_upload");
    }
    NasReply send(const Slice& slice, const std::string& session = {}) {
        return run(request(slice, session));
    }

    NasReply start(const std::string& root = "/home", const std::string& session = {}) {
        return get(cgi("func=start_chunked_upload&sid=" + (session.empty() ? sid : session) +
                       "&upload_root_dir=" + encoded(root)));
    }
    std::string begin(const std::string& root = "/home") {
        const NasReply reply = start(root);
        EXPECT_EQ(0, reply.status()) << reply.body;
        return reply.json()["upload_id"].asString();
    }
    NasReply ask(const std::string& id, const std::string& root = "/home", const std::string& session = {}) {
        return get(cgi("func=get_chunked_upload_status&sid=" + (session.empty() ? sid : session) +
                       "&upload_id=" + encoded(id) + "&upload_root_dir=" + encoded(root)));
    }
    /// The bytes that the server holds, -1 for an id that it doesn't know.
    std::int64_t held(const std::string& id) {
        const NasReply reply = ask(id);
        if (reply.status() == 5) return -1;
        EXPECT_EQ(0, reply.status());
        EXPECT_TRUE(reply.json()["size"].isString());
        return std::stoll(reply.json()["size"].asString());
    }
    NasReply drop(const std::string& id, const std::string& root = "/home", const std::string& session = {}) {
        return get(cgi("func=delete_chunked_upload_file&sid=" + (session.empty() ? sid : session) +
                       "&upload_id=" + encoded(id) + "&upload_root_dir=" + encoded(root)));
    }
    /// Where the file's bytes begin in a request's body.
    static std::size_t headLength(const NasRequest& request) {
        return request.body.find("\r\n\r\n", request.body.find("octet-stream")) + 4;
    }
    std::vector<std::string> partials() const { return onDisk(".torvi-nas.partials"); }
};

class NasChunkQuota : public NasChunks {
protected:
    NasChunkQuota() : NasChunks({"--quota", "anna:1000"}) {}
};

class NasChunkAge : public NasChunks {
protected:
    NasChunkAge() : NasChunks({"--partial-max-age", "3600"}) {}
};

TEST_F(NasChunks, SlicesGrowTogetherAndTheLastOnePutsTheFileInItsPlace) {
    const std::string content = noise(700001);
    const std::string id = begin();
    EXPECT_EQ(0, held(id));
    EXPECT_THAT(nas.control("GET", "state"), HasSubstr("\"partials\":1,"));
    Slice slice{id};
    slice.size = static_cast<std::int64_t>(content.size());
    for (const std::size_t length : {std::size_t(300000), std::size_t(299999), std::size_t(100002)}) {
        slice.content = content.substr(static_cast<std::size_t>(slice.offset), length);
        slice.more = slice.offset + static_cast<std::int64_t>(length) < slice.size;
        EXPECT_FALSE(there("Public/big"));
        const NasReply reply = send(slice);
        EXPECT_EQ(1, reply.status()) << reply.body;
        slice.offset += static_cast<std::int64_t>(length);
        EXPECT_EQ(std::to_string(slice.offset), reply.json()["size"].asString());
        if (slice.more) {
            EXPECT_EQ(slice.offset, held(id));
        }
    }
    EXPECT_TRUE(nas.folder().read("Public/big") == content);
    EXPECT_EQ(1000000001, timeOf(nas.folder().file("Public/big")));
    EXPECT_EQ(-1, held(id));
    EXPECT_THAT(partials(), IsEmpty());
    EXPECT_THAT(onDisk("Public"), ElementsAre("big"));
    EXPECT_THAT(onDisk("homes/anna"), ElementsAre("Plans", "Rules"));
}

TEST_F(NasChunks, OneRequestMayCarryItAll) {
    for (const std::string& content : {std::string("whole"), std::string()}) {
        Slice slice{begin()};
        slice.content = content;
        slice.size = static_cast<std::int64_t>(content.size());
        EXPECT_EQ(1, send(slice).status());
        EXPECT_EQ(content, nas.folder().read("Public/big"));
    }
}

TEST_F(NasChunks, SliceWithoutBytesEndsAFileThatIsAllThere) {
    Slice slice{begin()};
    slice.size = 10;
    slice.content = "01234";
    slice.more = true;
    EXPECT_EQ(1, send(slice).status());
    nas.arm("close-before-reply,match=chunked_upload");
    slice.offset = 5;
    slice.content = "56789";
    slice.size = 11;
    send(slice);
    slice.offset = 10;
    slice.size = 10;
    slice.content = "";
    slice.more = false;
    EXPECT_EQ(1, send(slice).status());
    EXPECT_EQ("0123456789", nas.folder().read("Public/big"));
}

TEST_F(NasChunks, PartialIsInNoListing) {
    Slice slice{begin("/Public")};
    slice.root = "/Public";
    slice.content = "half";
    slice.size = 10;
    slice.more = true;
    EXPECT_EQ(1, send(slice).status());
    EXPECT_THAT(names(get(cgi(listQuery(sid, "/Public"))).json()["datas"]), IsEmpty());
    EXPECT_THAT(names(get(cgi(listQuery(sid, "/"))).json()["datas"]),
                testing::UnorderedElementsAre("home", "homes", "Public"));
    EXPECT_EQ(4, get(cgi(listQuery(sid, "/.torvi-nas.partials"))).status());
    EXPECT_EQ(4, fetch("/.torvi-nas.partials", slice.id).status());
}

TEST_F(NasChunks, OffsetMustBeWhatIsHeld) {
    Slice slice{begin()};
    slice.content = "01234";
    slice.size = 10;
    slice.more = true;
    EXPECT_EQ(1, send(slice).status());
    for (const std::int64_t wrong : {0, 4, 6}) {
        slice.offset = wrong;
        slice.content = std::string(static_cast<std::size_t>(10 - wrong), 'x');
        slice.more = false;
        EXPECT_EQ(0, send(slice).status()) << wrong;
        EXPECT_EQ(5, held(slice.id));
    }
    EXPECT_TRUE(nas.waitForLog("offset 4, but 5 bytes are held"));
    slice.offset = 5;
    slice.content = "56789";
    EXPECT_EQ(1, send(slice).status());
    EXPECT_EQ("0123456789", nas.folder().read("Public/big"));
}

TEST_F(NasChunks, SizeThatWasToldIsOutOfDateOnceASliceLanded) {
    Slice slice{begin()};
    EXPECT_EQ(0, held(slice.id));
    slice.content = "01234";
    slice.size = 10;
    slice.more = true;
    EXPECT_EQ(1, send(slice).status());
    EXPECT_EQ(0, send(slice).status());
    EXPECT_EQ(5, held(slice.id));
}

TEST_F(NasChunks, CutBodyLeavesExactlyWhatCame) {
    const std::string content = noise(900000);
    for (const bool reset : {false, true}) {
        Slice slice{begin()};
        slice.content = content;
        slice.size = static_cast<std::int64_t>(content.size());
        NasRequest first = request(slice);
        const int fault =
            nas.arm(std::string(reset ? "reset" : "cut") +
                    "-upload,match=chunked_upload,bytes=" + std::to_string(headLength(first) + 300007));
        EXPECT_EQ(0, run(first).http);
        EXPECT_EQ(1, nas.hits(fault));
        EXPECT_EQ(300007, held(slice.id));
        EXPECT_FALSE(there("Public/big"));
        slice.offset = 300007;
        slice.content = content.substr(300007);
        EXPECT_EQ(1, send(slice).status());
        EXPECT_TRUE(nas.folder().read("Public/big") == content);
        std::filesystem::remove(nas.folder().path() / "Public/big");
    }
}

TEST_F(NasChunks, CutInsideTheEnvelopeLosesNothing) {
    Slice slice{begin()};
    slice.content = "0123456789";
    slice.size = 10;
    const NasRequest whole = request(slice);
    for (const std::size_t bytes : {std::size_t(20), headLength(whole)}) {
        nas.arm("cut-upload,match=chunked_upload,bytes=" + std::to_string(bytes));
        run(whole);
        EXPECT_EQ(0, held(slice.id));
    }
    nas.arm("cut-upload,match=chunked_upload,bytes=" + std::to_string(headLength(whole) + 10 + 30));
    run(whole);
    EXPECT_EQ(10, held(slice.id));
    slice.offset = 10;
    slice.content = "";
    EXPECT_EQ(1, send(slice).status());
    EXPECT_EQ("0123456789", nas.folder().read("Public/big"));
}

TEST_F(NasChunks, ShortSliceKeepsSoMuchAndSaysSo) {
    const std::string content = noise(100000);
    const int fault = nas.arm("short-slice,match=chunked_upload,bytes=30000,count=-1");
    Slice slice{begin()};
    slice.size = static_cast<std::int64_t>(content.size());
    int rounds = 0;
    do {
        slice.offset = held(slice.id);
        slice.content = content.substr(static_cast<std::size_t>(slice.offset));
        ++rounds;
    } while (send(slice).status() == 0);
    EXPECT_EQ(4, rounds);
    EXPECT_EQ(4, nas.hits(fault));
    EXPECT_TRUE(nas.folder().read("Public/big") == content);
}

TEST_F(NasChunks, DroppedReplyLeavesTheSliceInPlace) {
    Slice slice{begin()};
    slice.content = "01234";
    slice.size = 10;
    slice.more = true;
    for (const char* name : {"close-before-reply", "reset"}) {
        nas.arm(std::string(name) + ",match=chunked_upload");
        EXPECT_EQ("", send(slice).raw);
        slice.offset += 5;
        EXPECT_EQ(slice.more ? 5 : -1, held(slice.id));
        slice.more = false;
    }
    EXPECT_EQ("0123401234", nas.folder().read("Public/big"));
}

TEST_F(NasChunks, StalledBodyGoesOn) {
    Slice slice{begin()};
    slice.content = noise(8 << 20);
    slice.size = 8 << 20;
    const int fault = nas.arm("stall-upload,match=chunked_upload,bytes=1000,ms=100");
    EXPECT_EQ(1, send(slice).status());
    EXPECT_EQ(1, nas.hits(fault));
    EXPECT_TRUE(nas.folder().read("Public/big") == slice.content);
}

TEST_F(NasChunks, SizeThatWasToldHoldsWhateverALostRequestStillBrings) {
    Slice slice{begin()};
    slice.content = noise(1 << 20);
    slice.size = 1 << 20;
    const std::string content = slice.content;
    const std::string bytes = request(slice).bytes();
    NasConnection old(nas.port());
    old.send(bytes.substr(0, 600000));
    const auto partial = nas.folder().path() / ".torvi-nas.partials" / slice.id;
    while (std::filesystem::file_size(partial) < 500000) std::this_thread::yield();
    const std::int64_t told = held(slice.id);
    // The old request comes to life again, and then the client goes on from what it was told.
    old.send(bytes.substr(600000, 300000));
    while (static_cast<std::int64_t>(std::filesystem::file_size(partial)) <= told) std::this_thread::yield();
    slice.offset = told;
    slice.content = content.substr(static_cast<std::size_t>(told));
    EXPECT_EQ(1, send(slice).status());
    EXPECT_TRUE(nas.folder().read("Public/big") == content);
    old.send(bytes.substr(900000));
    EXPECT_EQ(0, old.readAll().status());
    EXPECT_TRUE(nas.waitForLog("another request took this upload over"));
    EXPECT_TRUE(nas.folder().read("Public/big") == content);
    EXPECT_THAT(partials(), IsEmpty());
}

TEST_F(NasChunks, AskingForTheSizeDisturbsNoRequestThatAdds) {
    Slice slice{begin()};
    slice.content = noise(1 << 20);
    slice.size = 1 << 20;
    const std::string bytes = request(slice).bytes();
    NasConnection connection(nas.port());
    connection.send(bytes.substr(0, 600000));
    const auto partial = nas.folder().path() / ".torvi-nas.partials" / slice.id;
    while (std::filesystem::file_size(partial) < 500000) std::this_thread::yield();
    EXPECT_GE(held(slice.id), 500000);
    connection.send(bytes.substr(600000));
    EXPECT_EQ(1, connection.readAll().status());
    EXPECT_TRUE(nas.folder().read("Public/big") == slice.content);
}

TEST_F(NasChunks, NewRequestAndDeletionTakeTheUploadFromOneThatHangs) {
    for (const bool deletes : {false, true}) {
        Slice slice{begin()};
        slice.content = noise(1 << 20);
        slice.size = 1 << 20;
        const std::string bytes = request(slice).bytes();
        NasConnection hanging(nas.port());
        hanging.send(bytes.substr(0, 600000));
        const auto partial = nas.folder().path() / ".torvi-nas.partials" / slice.id;
        while (std::filesystem::file_size(partial) < 500000) std::this_thread::yield();
        if (deletes) {
            EXPECT_EQ(1, drop(slice.id).status());
            EXPECT_FALSE(std::filesystem::exists(partial));
        } else {
            EXPECT_EQ(0, send(slice).status());
            EXPECT_TRUE(nas.waitForLog("offset 0, but"));
        }
        hanging.send(bytes.substr(600000));
        EXPECT_EQ(0, hanging.readAll().status());
        EXPECT_FALSE(there("Public/big"));
    }
}

TEST_F(NasChunks, LostConnectionIsPutAwayBeforeTheSizeIsTold) {
    const std::string content = noise(600000);
    for (int i = 0; i < 10; ++i) {
        Slice slice{begin()};
        slice.content = content;
        slice.size = static_cast<std::int64_t>(content.size());
        const NasRequest whole = request(slice);
        {
            NasConnection connection(nas.port());
            connection.send(whole.bytes().substr(0, whole.bytes().size() - 100000));
        }
        slice.offset = held(slice.id);
        slice.content = content.substr(static_cast<std::size_t>(slice.offset));
        const NasReply reply = send(slice);
        EXPECT_EQ(1, reply.status()) << reply.body << slice.offset;
        EXPECT_TRUE(nas.folder().read("Public/big") == content);
    }
}

TEST_F(NasChunks, BodyThatIsNotTheProtocolsAddsNothing) {
    Slice slice{begin()};
    slice.content = "01234";
    slice.size = 10;
    slice.more = true;
    EXPECT_EQ(1, send(slice).status());
    slice.offset = 5;
    slice.content = "56789";
    // The slice that ends the file may not say that more comes.
    NasReply reply = send(slice);
    EXPECT_EQ(400, reply.http);
    EXPECT_THAT(reply.body, HasSubstr("multipart"));
    slice.more = false;
    NasRequest closing = NasRequest::upload(cgi(sliceQuery(sid, slice)), "big", slice.content, "Upload");
    EXPECT_EQ(400, run(closing).http);
    NasRequest cut = request(slice);
    cut.body.resize(cut.body.size() - 5);
    EXPECT_EQ(400, run(cut.set("Content-Length", std::to_string(cut.body.size()))).http);
    EXPECT_EQ(5, held(slice.id));
    EXPECT_FALSE(there("Public/big"));
    EXPECT_EQ(1, send(slice).status());
    EXPECT_EQ("0123456789", nas.folder().read("Public/big"));
}

TEST_F(NasChunks, BytesThatDoNotAddUpToFilesizeMakeNoFile) {
    Slice slice{begin()};
    slice.content = "01234";
    slice.size = 4;
    EXPECT_EQ(0, send(slice).status());
    EXPECT_EQ(0, held(slice.id));
    slice.size = 6;
    EXPECT_EQ(0, send(slice).status());
    EXPECT_EQ(5, held(slice.id));
    EXPECT_FALSE(there("Public/big"));
    slice.offset = 5;
    slice.content = "5";
    EXPECT_EQ(1, send(slice).status());
    EXPECT_EQ("012345", nas.folder().read("Public/big"));
}

TEST_F(NasChunks, RestartedServerGoesOn) {
    TempDir root;
    std::filesystem::create_directory(root.path() / "Public");
    const std::string content = noise(3 << 20);
    Nas::Options options;
    options.root = root.string();
    Slice slice;
    slice.size = static_cast<std::int64_t>(content.size());
    std::int64_t before = -1;
    // Ended in order, then killed in the middle of a slice.
    for (const int signal : {SIGTERM, SIGKILL}) {
        Nas first(options);
        const std::string session = loginSid(first.port(), "anna", "secret");
        const auto call = [&](const std::string& query) {
            return exchange(first.port(), NasRequest::get(cgi(query))).json();
        };
        if (slice.id.empty()) {
            slice.id =
                call("func=start_chunked_upload&sid=" + session + "&upload_root_dir=%2Fhome")["upload_id"]
                    .asString();
        }
        slice.offset = std::stoll(call("func=get_chunked_upload_status&sid=" + session +
                                       "&upload_id=" + slice.id + "&upload_root_dir=%2Fhome")["size"]
                                      .asString());
        if (before >= 0) {
            EXPECT_EQ(before, slice.offset);
        }
        slice.content = content.substr(static_cast<std::size_t>(slice.offset));
        const std::string bytes = request(slice, session).bytes();
        NasConnection connection(first.port());
        connection.send(bytes.substr(0, bytes.size() / 2));
        const auto partial = root.path() / ".torvi-nas.partials" / slice.id;
        while (static_cast<std::int64_t>(std::filesystem::file_size(partial)) <= slice.offset) {
            std::this_thread::yield();
        }
        ::kill(first.pid(), signal);
        while (accepts(first.port())) std::this_thread::yield();
        if (signal == SIGTERM) first.stop();
        before = static_cast<std::int64_t>(std::filesystem::file_size(partial));
        EXPECT_GT(before, slice.offset);
    }
    Nas last(options);
    const std::string session = loginSid(last.port(), "anna", "secret");
    const Json::Value status =
        exchange(last.port(), NasRequest::get(cgi("func=get_chunked_upload_status&sid=" + session +
                                                  "&upload_id=" + slice.id + "&upload_root_dir=%2Fhome")))
            .json();
    slice.offset = std::stoll(status["size"].asString());
    EXPECT_EQ(before, slice.offset);
    slice.content = content.substr(static_cast<std::size_t>(slice.offset));
    EXPECT_EQ(1, exchange(last.port(), request(slice, session)).status());
    EXPECT_TRUE(root.read("Public/big") == content);
}

TEST_F(NasChunkAge, UploadsThatRestForSoLongAreGivenUp) {
    const std::string old = begin(), young = begin();
    const auto age = [&](const std::string& id, long seconds) {
        setTime(nas.folder().file(".torvi-nas.partials/" + id), std::time(nullptr) - seconds);
    };
    age(old, 3601);
    age(young, 3000);
    const std::string third = begin();
    EXPECT_EQ(-1, held(old));
    EXPECT_EQ(0, held(young));
    EXPECT_EQ(4u, partials().size());
    // A server that starts looks, too.
    age(young, 3601);
    nas.stop();
    Nas::Options options;
    options.root = nas.root();
    options.arguments = {"--partial-max-age", "3600"};
    Nas next(options);
    EXPECT_THAT(partials(), ElementsAre(third, third + ".owner"));
}

TEST_F(NasChunks, IdBelongsToItsUserAndItsRootFolder) {
    Slice slice{begin("/home/")};
    slice.content = "01234";
    slice.size = 10;
    slice.more = true;
    EXPECT_EQ(1, send(slice).status());
    EXPECT_EQ(5, ask(slice.id, "/home", benSid).status());
    EXPECT_EQ(5, drop(slice.id, "/home", benSid).status());
    EXPECT_EQ(5, ask(slice.id, "/Public").status());
    EXPECT_EQ(5, drop(slice.id, "/Public").status());
    EXPECT_EQ(3, ask(slice.id, "/home", "0123456789abcdef0123456789abcdef").status());
    EXPECT_EQ(3, drop(slice.id, "/home", "0123456789abcdef0123456789abcdef").status());
    Slice other = slice;
    other.offset = 5;
    other.more = false;
    EXPECT_EQ(5, send(other, benSid).status());
    other.root = "/Public";
    EXPECT_EQ(5, send(other).status());
    EXPECT_EQ(5, held(slice.id));
    for (const char* id : {"../../../../etc/passwd", "0123456789abcdef0123456789abcdef", "..", "x"}) {
        EXPECT_EQ(5, ask(id).status()) << id;
        EXPECT_EQ(5, drop(id).status()) << id;
        other.id = encoded(id);
        EXPECT_EQ(5, send(other).status()) << id;
    }
}

TEST_F(NasChunks, DeletedUploadIsGone) {
    Slice slice{begin()};
    slice.content = "01234";
    slice.size = 10;
    slice.more = true;
    send(slice);
    const NasReply reply = drop(slice.id);
    EXPECT_EQ(1, reply.status());
    EXPECT_EQ("true", reply.json()["success"].asString());
    EXPECT_EQ(-1, held(slice.id));
    EXPECT_EQ(5, drop(slice.id).status());
    EXPECT_THAT(partials(), IsEmpty());
}

TEST_F(NasChunks, RootFolderMustBeOneThatTheUserCanHave) {
    write("Public/file", "1");
    std::filesystem::create_directory(nas.folder().path() / "Public/fixed");
    std::filesystem::permissions(nas.folder().path() / "Public/fixed", std::filesystem::perms(0555));
    const auto told = [&](const std::string& root, const std::string& session = {}) {
        const Json::Value reply = start(root, session).json();
        EXPECT_FALSE(reply.isMember("upload_id")) << root;
        return std::pair(reply["status"].asInt(), reply.get("home_folder_available", -1).asInt());
    };
    EXPECT_EQ(0, start("/home/not/there/yet").status());
    EXPECT_EQ(0, start("vtf://anna-Plans", benSid).status());
    EXPECT_EQ(std::pair(7, 1), told("/none"));
    EXPECT_EQ(std::pair(7, 1), told("/Public/file"));
    EXPECT_EQ(std::pair(7, 1), told("/Public/file/below"));
    EXPECT_EQ(std::pair(7, 1), told("vtf://none"));
    EXPECT_EQ(std::pair(4, -1), told("/Public/fixed"));
    EXPECT_EQ(std::pair(4, -1), told("/Public/fixed/below"));
    EXPECT_EQ(std::pair(4, -1), told("/Public/.."));
    EXPECT_EQ(std::pair(4, -1), told("/"));
    EXPECT_EQ(std::pair(4, -1), told("vtf://anna-Rules", benSid));
    EXPECT_EQ(std::pair(-4, -1), told("home"));
    EXPECT_EQ(std::pair(3, -1), told("/home", "0123456789abcdef0123456789abcdef"));
    std::filesystem::remove_all(nas.folder().path() / "homes/ben");
    EXPECT_EQ(std::pair(7, 0), told("/home", benSid));
    EXPECT_EQ(std::pair(7, 0), told("/home/sub", benSid));
    EXPECT_EQ(0, start("/Public", benSid).status());
}

TEST_F(NasChunks, PlacesThatCannotTakeItAnswerWithTheirStatusAndKeepTheUpload) {
    write("Public/folder/x", "1");
    write("Public/there", "before");
    Slice slice{begin()};
    slice.content = "01234";
    slice.size = 5;
    const auto status = [&](const std::string& path, const std::string& name, int overwrite = 1) {
        Slice other = slice;
        other.path = path;
        other.name = name;
        other.overwrite = overwrite;
        return send(other).status();
    };
    EXPECT_EQ(5, status("/Public/none", "a"));
    EXPECT_EQ(4, status("/", "a"));
    EXPECT_EQ(4, status("/homes", "a"));
    EXPECT_EQ(4, status("/Public/..", "a"));
    EXPECT_EQ(12, status("/Public", "a/b"));
    EXPECT_EQ(26, status("/Public", std::string(256, 'n')));
    EXPECT_EQ(33, status("/Public", "folder"));
    EXPECT_EQ(2, status("/Public", "there", 0));
    EXPECT_EQ(0, held(slice.id));
    EXPECT_EQ("before", nas.folder().read("Public/there"));
    EXPECT_EQ(1, status("/Public", "there"));
    EXPECT_EQ("01234", nas.folder().read("Public/there"));
}

TEST_F(NasChunks, MissingHomeIsTold) {
    const std::string id = start("/Public", benSid).json()["upload_id"].asString();
    std::filesystem::remove_all(nas.folder().path() / "homes/ben");
    Slice slice{id};
    slice.root = "/Public";
    slice.path = "/home/x";
    slice.content = "1";
    slice.size = 1;
    const NasReply reply = send(slice, benSid);
    EXPECT_EQ(5, reply.status());
    EXPECT_EQ(0, reply.json()["home_folder_available"].asInt());
    slice.path = "/Public/none";
    EXPECT_FALSE(send(slice, benSid).json().isMember("home_folder_available"));
}

TEST_F(NasChunks, RenameTargetIsANameOrAPath) {
    write("Public/sub/x", "1");
    for (const auto& [rename, place] : std::vector<std::pair<std::string, std::string>>{
             {"other", "Public/other"}, {"/Public/sub/deep", "Public/sub/deep"}}) {
        Slice slice{begin()};
        slice.content = rename;
        slice.size = static_cast<std::int64_t>(rename.size());
        slice.rename = rename;
        EXPECT_EQ(1, send(slice).status());
        EXPECT_EQ(rename, nas.folder().read(place));
    }
    EXPECT_THAT(onDisk("Public"), ElementsAre("other", "sub"));
}

TEST_F(NasChunkQuota, QuotaStopsTheSliceAndKeepsWhatFits) {
    Slice slice{begin()};
    slice.path = "/home";
    slice.size = 1500;
    slice.content = std::string(900, 'x');
    slice.more = true;
    EXPECT_EQ(1, send(slice).status());
    slice.offset = 900;
    slice.content = std::string(600, 'y');
    slice.more = false;
    EXPECT_EQ(9, send(slice).status());
    EXPECT_LE(held(slice.id), 1000);
    EXPECT_GE(held(slice.id), 900);
    EXPECT_FALSE(there("homes/anna/big"));
    // The same bytes elsewhere are nobody's quota.
    slice.offset = held(slice.id);
    slice.content = std::string(static_cast<std::size_t>(1500 - slice.offset), 'y');
    slice.path = "/Public";
    EXPECT_EQ(1, send(slice).status());
}

TEST_F(NasChunks, TeamFolderAndFileManagerTakeThemToo) {
    const std::string id = start("vtf://anna-Plans", benSid).json()["upload_id"].asString();
    Slice slice{id};
    slice.root = "vtf://anna-Plans";
    slice.path = "vtf://anna-Plans";
    slice.content = "plan";
    slice.size = 4;
    EXPECT_EQ(1, send(slice, benSid).status());
    EXPECT_EQ("plan", nas.folder().read("homes/anna/Plans/big"));
    const std::string second =
        get(manager("func=start_chunked_upload&sid=" + sid + "&upload_root_dir=%2Fhome"))
            .json()["upload_id"]
            .asString();
    Slice other{second};
    other.content = "1";
    other.size = 1;
    EXPECT_EQ(1,
              run(NasRequest::upload(manager(sliceQuery(sid, other)), "m", "1", "chunked_upload")).status());
    EXPECT_TRUE(there("Public/m"));
    Slice denied{start("/home", benSid).json()["upload_id"].asString()};
    denied.path = "vtf://anna-Rules";
    denied.content = "1";
    denied.size = 1;
    EXPECT_EQ(4, send(denied, benSid).status());
}

TEST_F(NasChunks, QueryIsExact) {
    Slice slice{begin()};
    slice.content = "1";
    slice.size = 1;
    const std::string right = sliceQuery(sid, slice);
    const auto refused = [&](const std::string& from, const std::string& to, const std::string& reason) {
        std::string query = right;
        ASSERT_NE(std::string::npos, query.find(from)) << from;
        query.replace(query.find(from), from.size(), to);
        const NasReply reply = run(NasRequest::upload(cgi(query), "big", "1", "chunked_upload"));
        EXPECT_EQ(400, reply.http) << query;
        EXPECT_THAT(reply.body, HasSubstr(reason));
    };
    refused("&settime=1", "", "settime");
    refused("&settime=1", "&settime=0", "settime");
    refused("&mtime=1000000001", "&mtime=-1", "mtime");
    refused("&offset=0", "&offset=-1", "offset");
    refused("&offset=0", "&offset=2", "offset");
    refused("&filesize=1", "&filesize=1.5", "filesize");
    refused("&filesize=1", "", "filesize");
    refused("&overwrite=1", "&overwrite=256", "overwrite");
    refused("&overwrite=1", "&overwrite=1&rename_dest=", "rename_dest");
    refused("&upload_root_dir=%2Fhome", "&upload_root_dir=", "upload_root_dir");
    refused("&upload_root_dir=%2Fhome", "&multipart=1&upload_root_dir=%2Fhome", "multipart");
    refused("&upload_root_dir=%2Fhome", "&upload_root_dir=%2Fhome&multipart=0", "multipart");
    refused("&upload_root_dir=%2Fhome", "&upload_root_dir=%2Fhome&more=1", "more");
    refused("upload_id=" + slice.id, "upload_id=", "upload_id");
    refused("dest_path=%2FPublic", "dest_path=/Public", "unencoded");
    EXPECT_EQ(405, get(cgi(right)).http);
    EXPECT_EQ(400, run(request(slice).set("Pragma", "no-cache")).http);
    for (const char* query :
         {"func=start_chunked_upload&sid=SID", "func=start_chunked_upload&sid=SID&upload_root_dir=",
          "func=start_chunked_upload&upload_root_dir=%2Fhome&sid=SID",
          "func=get_chunked_upload_status&sid=SID&upload_id=1",
          "func=get_chunked_upload_status&sid=SID&upload_id=&upload_root_dir=%2Fhome",
          "func=delete_chunked_upload_file&sid=SID&upload_root_dir=%2Fhome&upload_id=1",
          "func=delete_chunked_upload_file&sid=SID&upload_id=&upload_root_dir=%2Fhome"}) {
        std::string text = query;
        text.replace(text.find("SID"), 3, sid);
        EXPECT_EQ(400, get(cgi(text)).http) << query;
    }
    EXPECT_EQ(1, send(slice).status());
}

TEST_F(NasChunks, ZerosBecomeHolesAndMemoryStaysFlat) {
    const std::int64_t sliceSize = 160 << 20;
    Slice slice{begin()};
    slice.size = 2 * sliceSize;
    const std::string block(1 << 20, '\0');
    for (const bool more : {true, false}) {
        slice.more = more;
        slice.offset = more ? 0 : sliceSize;
        NasRequest frame = request(slice);
        const auto split = headLength(frame);
        NasRequest head = frame;
        head.set("Content-Length", std::to_string(frame.body.size() + static_cast<std::size_t>(sliceSize)));
        head.body = frame.body.substr(0, split);
        NasConnection connection(nas.port());
        ASSERT_TRUE(connection.send(head.bytes()));
        for (std::int64_t sent = 0; sent < sliceSize; sent += 1 << 20) ASSERT_TRUE(connection.send(block));
        ASSERT_TRUE(connection.send(frame.body.substr(split)));
        EXPECT_EQ(1, connection.readAll(60000).status());
    }
    struct stat info {};
    ASSERT_EQ(0, ::stat(nas.folder().file("Public/big").c_str(), &info));
    EXPECT_EQ(2 * sliceSize, info.st_size);
    EXPECT_LT(info.st_blocks * 512, 1 << 20);
    EXPECT_GT(peakMemory(), 0);
    if (!sanitized()) {
        EXPECT_LT(peakMemory(), 64 * 1024) << "KiB at the peak";
    }
}
