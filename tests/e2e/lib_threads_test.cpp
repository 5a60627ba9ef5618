#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

#include "lib_support.h"
#include "support/process.h"
#include "support/sanitized.h"

using namespace e2e;

namespace {

class LibThreads : public LibRoad {};

class LibMemory : public LibRoad {
protected:
    static constexpr std::uintmax_t kSize = std::uintmax_t{256} << 20;

    void SetUp() override {
        if (sanitized()) GTEST_SKIP() << "the sanitizer's own memory counts as well";
    }
    /// By a process with nothing in it but the library.
    void transfer(const std::string& what, const std::string& local, const std::string& remote) {
        const ProcessResult child = runProcess(
            LIB_MEMORY_CHILD_PATH,
            {what, std::to_string(portOf(nas, GetParam())), GetParam().tls ? "tls" : "http", local, remote});
        ASSERT_EQ(child.exitCode, 0) << child.out << child.err;
        const long peakKiB = std::stol(child.out);
        RecordProperty("peakKiB", std::to_string(peakKiB));
        EXPECT_GT(peakKiB, 1024);
        EXPECT_LT(peakKiB, 64 * 1024);
    }
    static void expectMoved(const std::string& path) {
        EXPECT_EQ(std::filesystem::file_size(path), kSize);
        std::string begin(5, '\0');
        std::ifstream(path, std::ios::binary).read(begin.data(), 5);
        EXPECT_EQ(begin, "begin");
    }
};

/// Passes bytes between its clients and a server, all on the thread that made it.
class Relay {
public:
    explicit Relay(std::uint16_t to) : m_to(to) {
        m_server.listen(QHostAddress::LocalHost);
        QObject::connect(&m_server, &QTcpServer::newConnection, [this] {
            while (QTcpSocket* client = m_server.nextPendingConnection()) connectOn(client);
        });
    }
    std::uint16_t port() const { return m_server.serverPort(); }
    /// Until this is called nothing passes.
    void open() {
        m_isOpen = true;
        for (const auto& pass : m_passes) pass();
    }
    std::int64_t passed() const { return m_passed; }

private:
    void connectOn(QTcpSocket* client) {
        auto* server = new QTcpSocket(client);
        server->connectToHost(QHostAddress::LocalHost, m_to);
        for (const auto& [from, to] : {std::pair(client, server), std::pair(server, client)}) {
            const auto pass = [this, from = from, to = to] {
                if (m_isOpen) m_passed += to->write(from->readAll());
            };
            QObject::connect(from, &QTcpSocket::readyRead, pass);
            m_passes.emplace_back(pass);
        }
        QObject::connect(server, &QTcpSocket::disconnected, client, &QTcpSocket::disconnectFromHost);
    }

    std::uint16_t m_to;
    bool m_isOpen = false;
    std::int64_t m_passed = 0;
    std::vector<std::function<void()>> m_passes;
    QTcpServer m_server;
};

/// One worker's day: every kind of call, on files of its own beside one that all read.
void workAlone(const Client& client, int number) {
    const std::wstring name = L"/home/w " + std::to_wstring(number);
    const std::string bytes =
        randomBytes(50000 + static_cast<std::size_t>(number), static_cast<unsigned>(number));
    SCOPED_TRACE("worker " + std::to_string(number));
    Upload upload{bytes, name};
    for (const bool move : {false, true}) {
        upload.move = move;
        EXPECT_EQ(client.upload(upload), kDone);
        std::string back;
        EXPECT_EQ(client.download(name, back), kDone);
        EXPECT_TRUE(back == bytes);
    }
    EXPECT_EQ(client.createFile(name + L".new"), kDone);
    Entry entry;
    EXPECT_EQ(client.stat(L"/home", name.substr(6), &entry), kDone);
    EXPECT_EQ(entry.size, static_cast<std::int64_t>(bytes.size()));
    EXPECT_EQ(entry.time, upload.time);
    std::vector<Entry> entries;
    Pages page;
    page.limit = 10;
    EXPECT_EQ(client.page(page, entries), kDone);
    EXPECT_FALSE(entries.empty());
    EXPECT_EQ(client.folders(L"share_root", entries), kDone);
    bool answer = false;
    EXPECT_EQ(client.isPresent(name, false, answer), kDone);
    EXPECT_TRUE(answer);
    EXPECT_EQ(client.isDirectory(L"/home/d", answer), kDone);
    EXPECT_TRUE(answer);
    std::int64_t size = 0;
    EXPECT_EQ(client.folderSize(L"/home", L"d", size), kDone);
    EXPECT_EQ(size, 6);
    EXPECT_EQ(client.mayUpload(L"/home", L"x"), kDone);
    std::string shared;
    EXPECT_EQ(client.download(L"/home/d/shared", shared), kDone);
    EXPECT_EQ(shared, "shared");
    EXPECT_EQ(client.stat(L"/home", L"none"), (Numbers{0, 3}));
}

/// Another worker's: everything that changes the tree, in a folder of its own.
void changeAlone(const Client& client, int number) {
    const std::wstring name = L"c " + std::to_wstring(number), own = L"/home/" + name;
    const std::string bytes =
        randomBytes(60000 + static_cast<std::size_t>(number), static_cast<unsigned>(number));
    SCOPED_TRACE("worker " + std::to_string(number));
    EXPECT_EQ(client.makeFolder(L"/home", name), kDone);
    for (const wchar_t* folder : {L"from", L"to"}) EXPECT_EQ(client.makeFolder(own, folder), kDone);
    Slice slice;
    slice.bytes = bytes;
    slice.to = own + L"/from/a";
    EXPECT_EQ(client.uploadID(slice.id), kDone);
    EXPECT_EQ(client.heldBytes(slice.id, slice.offset), kDone);
    EXPECT_EQ(client.send(slice), (Sliced{kDone, false, false}));
    std::wstring unused;
    EXPECT_EQ(client.uploadID(unused), kDone);
    EXPECT_EQ(client.forgetUpload(unused), kDone);
    std::vector<BatchFile> batch = {{L"one", "1"}, {L"two", "22"}, {L"three", "333"}};
    EXPECT_EQ(client.sendBatch(own + L"/from", batch), kDone);
    for (const BatchFile& file : batch) EXPECT_EQ(file.result, 0);

    EXPECT_EQ(client.setTime(own + L"/from", L"a", 1234567890), kDone);
    const Profile a = client.profile(own + L"/from/a");
    EXPECT_EQ(a.time, 1234567890);
    EXPECT_EQ(a.size, static_cast<std::int64_t>(bytes.size()));
    EXPECT_EQ(client.removeChecked(own + L"/from/a", {a.time, a.size + 1, false}), (Numbers{0, 13}));
    EXPECT_EQ(client.renameChecked(own + L"/from/a", own + L"/from/b", a), kDone);
    EXPECT_EQ(client.rename(own + L"/from/b", own + L"/from/c"), kDone);
    EXPECT_EQ(client.moveChecked(own + L"/from/c", own + L"/to/d", a), kDone);
    EXPECT_EQ(client.move(own + L"/from", own + L"/to/from"), kDone);

    EXPECT_EQ(client.remove(own + L"/to/d"), kDone);
    std::wstring pid;
    EXPECT_EQ(client.restore(L"/home/@Recycle/" + name + L"/to", L"d", pid), kDone);
    EXPECT_EQ(client.followJob(std::stoi(L"0" + pid)), kDone);
    std::string back;
    EXPECT_EQ(client.download(own + L"/to/d", back), kDone);
    EXPECT_TRUE(back == bytes);
    EXPECT_EQ(client.download(own + L"/to/from/three", back), kDone);
    EXPECT_EQ(back, "333");
    EXPECT_EQ(client.removeChecked(own + L"/to/from", client.profile(own + L"/to/from")), kDone);

    WFM_VERSIONING_LOCK lock = {};
    EXPECT_EQ(client.lock(own + L"/to/d", lock), kDone);
    EXPECT_EQ(client.lock(own + L"/to/d", lock), kDone);
    EXPECT_EQ(client.makeSignature(own + L"/to/d", lock, pid), kDone);
    EXPECT_EQ(client.followJob(std::stoi(L"0" + pid)), kDone);
    WFM_VERSIONING_DELTA_STAT stat = {};
    EXPECT_EQ(client.statDelta(own + L"/to/d", lock, stat), 0u);
    EXPECT_EQ(client.upload({"new " + std::to_string(number), own + L"/to/d"}), kDone);
    EXPECT_EQ(client.commitVersion(own + L"/to/d", lock, 1234567890, pid), kDone);
    EXPECT_EQ(client.followJob(std::stoi(L"0" + pid)), kDone);
    EXPECT_EQ(client.unlock(own + L"/to/d", lock), kDone);
    EXPECT_EQ(client.download(own + L"/to/d", back), kDone);
    EXPECT_EQ(back, "new " + std::to_string(number));
}

/// Every worker on a thread and a clone of its own.
void atOnce(const Client& client, int count, void (*work)(const Client&, int)) {
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
        threads.emplace_back([clone = client.clone(), i, work] { work(clone, i); });
    for (std::thread& thread : threads) thread.join();
}

}  // namespace

TEST_P(LibThreads, ThirtyTwoThreadsOnClonesTransferAndListAtOnce) {
    put("d/shared", "shared");
    atOnce(client, 32, workAlone);
    EXPECT_EQ(nas.requestCount("upload"), 64);  // a created file is an upload too
    EXPECT_EQ(nas.requestCount("upload_and_move"), 32);
    EXPECT_EQ(nas.requestCount("refused"), 0);
}

TEST_P(LibThreads, ThirtyTwoThreadsOnClonesChangeTheTreeAtOnce) {
    atOnce(client, 32, changeAlone);
    EXPECT_EQ(nas.requestCount("createdir"), 96);
    EXPECT_EQ(nas.requestCount("chunked_upload"), 32);
    EXPECT_EQ(nas.requestCount("move"), 64);
    EXPECT_EQ(nas.requestCount("versioning_lock"), 64);
    EXPECT_EQ(nas.requestCount("refused"), 0);
}

TEST_P(LibThreads, TimersAndSocketsOfTheCallersThreadRunWhileACallWaits) {
    put("a", "bytes");
    // The call can't end but through this thread's own sockets, and those wait for this thread's timer.
    Relay relay(portOf(nas, GetParam()));
    Client throughRelay = client.clone();
    throughRelay.setPort(relay.port());
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, [&] { relay.open(); });
    timer.start(20);
    EXPECT_EQ(throughRelay.stat(L"/home", L"a"), kDone);
    EXPECT_FALSE(timer.isActive());
    EXPECT_GT(relay.passed(), 0);
    std::string bytes;
    EXPECT_EQ(throughRelay.upload({"more", L"/home/b"}), kDone);
    EXPECT_EQ(throughRelay.download(L"/home/b", bytes), kDone);
    EXPECT_EQ(bytes, "more");
}

TEST_P(LibThreads, ATimerFiresWhileTheServerStalls) {
    put("a", "bytes");
    const int fault = nas.arm("stall,match=stat,ms=300");
    int fired = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { ++fired; });
    timer.start(0);
    EXPECT_EQ(client.stat(L"/home", L"a"), kDone);
    EXPECT_GT(fired, 1);
    EXPECT_EQ(nas.hits(fault), 1);
}

TEST_P(LibMemory, AnUploadOfAnySizeTakesTheSame) {
    const TempDir work;
    const std::string local = work.write("up", "begin");
    std::filesystem::resize_file(local, kSize);
    transfer("upload", local, "/home/up");
    expectMoved(onDisk("up"));
}

TEST_P(LibMemory, ADownloadOfAnySizeTakesTheSame) {
    const TempDir work;
    std::filesystem::resize_file(put("down", "begin"), kSize);
    transfer("download", work.file("got"), "/home/down");
    expectMoved(work.file("got"));
}

E2E_ON_ALL_ROADS(LibThreads);
INSTANTIATE_TEST_SUITE_P(Roads, LibMemory,
                         testing::Values(Road{Service::Sync, false}, Road{Service::Sync, true}), roadName);
