#include "lib_support.h"
#include "support/logcapture.h"
#include "support/progress.h"

using namespace e2e;

namespace {

/// Faults on every kind of call. A fault that ends a connection hits each attempt: Qt may repeat a GET.
class LibFault : public LibRoad {
protected:
    void SetUp() override {
        put("a.bin", m_bytes);
        put("d/x", "1");  // so that no reply is shorter than a fault reaches into it
    }

    /// The calls that a fault is tried on, by the func that the server counts them under.
    std::map<std::string, std::function<Numbers()>> calls() {
        return {
            {"get_list",
             [this] {
                 Pages pages;
                 std::vector<Entry> entries;
                 return client.page(pages, entries);
             }},
            {"get_tree",
             [this] {
                 std::vector<Entry> entries;
                 return client.folders(L"/home", entries);
             }},
            {"stat", [this] { return client.stat(L"/home", L"a.bin"); }},
            {"properties",
             [this] {
                 std::int64_t size = 0;
                 return client.folderSize(L"/home", L"d", size);
             }},
            {"nubo_check_permission", [this] { return client.mayUpload(L"/home", L"x"); }},
            {"download",
             [this] {
                 Download download{L"/home/a.bin"};
                 download.size = static_cast<std::int64_t>(m_bytes.size());
                 return client.download(download);
             }},
            {"upload",
             [this] {
                 return client.upload({m_bytes, L"/home/up", false, 0, {}, 1, Progress::callback, &m_heard});
             }},
            {"upload_and_move", [this] {
                 return client.upload({m_bytes, L"/home/up", true, 0, {}, 1, Progress::callback, &m_heard});
             }}};
    }
    static bool isPost(const std::string& func) { return func == "download" || func.rfind("upload", 0) == 0; }
    /// Not connected, as each call says it.
    static Numbers lost(const std::string& func) {
        // A download doesn't look at the network error: nothing fits the size.
        if (func == "download") return {0, 13};
        if (func == "get_list") return {2, IsNetworkAlive() ? 53 : 1231};
        return {2, -1};
    }
    static Numbers notUnderstood(const std::string& func) { return refused(func, 14); }
    static Numbers refused(const std::string& func, std::uint32_t dwStatus) {
        return func == "download" ? Numbers{0, 13} : Numbers{dwStatus, -1};
    }

    /// Each call alone under the fault: the numbers, and that the server was asked once if it was a POST.
    void expectNumbers(const std::string& fault, const std::function<Numbers(const std::string&)>& expected,
                       bool served) {
        for (const auto& [func, call] : calls()) {
            SCOPED_TRACE(fault + " on " + func);
            nas.disarm();
            nas.forgetRequests();
            const int id = nas.arm(fault + ",count=-1,match=" + func);
            EXPECT_EQ(call(), expected(func));
            EXPECT_GE(nas.hits(id), 1);
            if (isPost(func)) {
                EXPECT_EQ(nas.hits(id), 1);
                EXPECT_EQ(nas.requestCount(func), served ? 1 : 0);
            }
        }
        // Nothing stays behind that disturbs the next call.
        nas.disarm();
        EXPECT_EQ(client.stat(L"/home", L"a.bin"), kDone);
    }

    const std::string m_bytes = randomBytes(200000);
    Progress m_heard;
};

Login loginTo(const Nas& nas, const Road& road) {
    Login login;
    login.road = road;
    login.port = portOf(nas, road);
    return login;
}

}  // namespace

TEST_P(LibFault, AConnectionClosedInPlaceOfTheReplyIsLost) {
    expectNumbers("close-before-reply", lost, true);
}

TEST_P(LibFault, AConnectionClosedInTheHeadOfTheReplyIsLost) {
    expectNumbers("close-in-reply,bytes=20", lost, true);
}

TEST_P(LibFault, AConnectionClosedInTheBodyIsLostOrLeavesAShortFile) {
    expectNumbers(
        "close-in-reply,bytes=10,body=1",
        [](const std::string& func) { return func == "download" ? kDone : lost(func); }, true);
}

TEST_P(LibFault, AResetConnectionIsLost) {
    expectNumbers("reset", lost, true);
}

TEST_P(LibFault, AReplyInDropsIsTakenWhole) {
    put("a.bin", "short");
    std::vector<Entry> entries;
    Pages pages;
    std::string bytes;
    const int fault = nas.arm("trickle,bytes=40,ms=2,count=-1");
    EXPECT_EQ(client.page(pages, entries), kDone);
    EXPECT_EQ(entries.size(), 2u);
    EXPECT_EQ(client.upload({"bytes", L"/home/up"}), kDone);
    EXPECT_EQ(client.download(L"/home/a.bin", bytes), kDone);
    EXPECT_EQ(bytes, "short");
    EXPECT_EQ(nas.hits(fault), 4);  // with the stat that asks for the size
}

TEST_P(LibFault, AReplyShorterThanAnnouncedIsLost) {
    expectNumbers("wrong-length,bytes=5", lost, true);
}

TEST_P(LibFault, AReplyLongerThanAnnouncedIsCutAndNotUnderstood) {
    expectNumbers("wrong-length,bytes=-5", notUnderstood, true);
}

TEST_P(LibFault, AReplyThatIsNoJsonIsNotUnderstood) {
    expectNumbers("garbage", notUnderstood, false);
}

TEST_P(LibFault, AServerThatIsNotReadyIs12) {
    expectNumbers(
        "http-status,status=503", [](const std::string& func) { return refused(func, 12); }, false);
}

TEST_P(LibFault, AServerErrorIs6) {
    expectNumbers(
        "http-status,status=500", [](const std::string& func) { return refused(func, 6); }, false);
}

TEST_P(LibFault, ARedirectIsNotFollowed) {
    expectNumbers("http-status,status=302,location=/elsewhere", notUnderstood, false);
}

TEST_P(LibFault, AnUploadCutInItsBodyIsLostOnceAndLeavesNoFile) {
    const std::string huge = randomBytes(8 << 20);
    for (const char* kind : {"cut-upload", "reset-upload"}) {
        for (const bool move : {false, true}) {
            for (const bool heard : {true, false}) {
                SCOPED_TRACE(std::string(kind) + (move ? " moved" : " plain") + (heard ? " heard" : ""));
                nas.disarm();
                nas.forgetRequests();
                const int fault = nas.arm(std::string(kind) + ",bytes=100000,count=-1");
                Progress progress;
                Upload upload{huge, L"/home/cut"};
                upload.move = move;
                if (heard) upload.callback = Progress::callback;
                upload.data = &progress;
                EXPECT_EQ(client.upload(upload), (Numbers{2, heard ? -1 : move ? -31 : 13}));
                EXPECT_EQ(nas.hits(fault), 1);
                EXPECT_EQ(nas.log().find("http=200 status=1 (8388608 bytes)"), std::string::npos);
                EXPECT_FALSE(std::filesystem::exists(onDisk("cut")));
            }
        }
    }
}

TEST_P(LibFault, ACreatedFileIsSentOnce) {
    nas.forgetRequests();
    const int fault = nas.arm("close-before-reply,count=-1");
    EXPECT_EQ(client.createFile(L"/home/new"), (Numbers{2, -1}));
    EXPECT_EQ(nas.hits(fault), 1);
    EXPECT_EQ(nas.requestCount("upload"), 1);
    EXPECT_EQ(nas.folder().read("homes/anna/new"), "");  // it was made, and the caller can't know
}

TEST_P(LibFault, AStalledLoginEndsWithItsTimeOutAndIsSentOnce) {
    // Before the reply, or inside its body.
    const std::string fault = GetParam().tls ? "stall,bytes=5,body=1" : "stall";
    const int id = nas.arm(fault + ",match=login,count=-1");
    nas.forgetRequests();
    Login login = loginTo(nas, GetParam());
    login.timeoutMs = 1000;
    LogCapture log;
    EXPECT_EQ(login.run(), (Numbers{2, -1}));
    const std::string call = isSync() ? "[WFM] TorviLogin" : "[WFM] WFMLogin";
    log.expectLines({call + ": FAIL(httpStatusCode=408)", call + " failed dwStatus(2)"});
    EXPECT_EQ(login.session, nullptr);
    EXPECT_EQ(nas.hits(id), 1);
    EXPECT_EQ(nas.requestCount("login"), 1);
}

TEST_P(LibFault, AFaultyLoginIsSentOnceAndMakesASessionOnlyOfAWholeReply) {
    struct Row {
        const char* fault;
        Numbers sync, fileManager;
    } const rows[] = {
        {"close-before-reply", {2, -1}, {2, -1}},
        {"close-in-reply,bytes=20", {2, -1}, {2, -1}},
        // The file manager's login goes by the HTTP status, whatever became of the connection.
        {"close-in-reply,bytes=5,body=1", {2, -1}, {14, -1}},
        {"reset", {2, -1}, {2, -1}},
        {"wrong-length,bytes=5", {2, -1}, kDone},
        {"wrong-length,bytes=-5", {6, -1}, {14, -1}},
        {"garbage", {6, -1}, {14, -1}},
        {"http-status,status=503", {12, -1}, {12, -1}},
        {"http-status,status=404", {10, -1}, {6, -1}},
        {"http-status,status=500", {6, -1}, {6, -1}},
        {"http-status,status=302", {14, -8}, {14, -8}},
        {"reply,content={\"status\":1}", {14, 0}, {14, 0}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const Numbers& expected = isSync() ? row.sync : row.fileManager;
        nas.disarm();
        const int id = nas.arm(std::string(row.fault) + ",match=login,count=-1");
        Login login = loginTo(nas, GetParam());
        EXPECT_EQ(login.run(), expected);
        EXPECT_EQ(login.session != nullptr, expected == kDone);
        EXPECT_EQ(nas.hits(id), 1);
    }
}

E2E_ON_ALL_ROADS(LibFault);
