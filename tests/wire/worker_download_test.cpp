// HttpRequestWorker::download: what lands in the file, and what the guards make of what comes.

#include <QCoreApplication>
#include <QFile>
#include <QNetworkReply>
#include <QTimer>
#include <fstream>

#include "support/sanitized.h"
#include "wire/worker_support.h"

using namespace wire;

namespace {

struct Download {
    TempDir dir;
    QFile file{QString::fromStdString(dir.file("target"))};
    Progress progress;
    HttpRequestWorker worker;

    int run(HttpRequestInput input, qint64 total, qint64 offset = 0) {
        return worker.download(&input, total, offset, &Progress::callback, &progress, &file);
    }
    int run(const RawServer& server, qint64 total, qint64 offset = 0) {
        HttpRequestInput input = request(server, "POST");
        input.add_var("a", "b c");
        return run(input, total, offset);
    }
    std::string content() const { return dir.read("target"); }
};

}  // namespace

TEST(WorkerDownload, TheFileHoldsTheReply) {
    RawServer server({Reply::text("hello")});
    Download download;
    EXPECT_EQ(download.run(server, 5), 0);
    EXPECT_EQ(download.worker.error_type, 0);
    EXPECT_EQ(download.worker.http_status, 200);
    EXPECT_TRUE(download.worker.response.isEmpty());
    EXPECT_EQ(download.worker.dwProgress, 0u);
    EXPECT_EQ(download.content(), "hello");
    EXPECT_FALSE(download.file.isOpen());
    const Request sent = server.onlyRequest();
    expectRequestLine(sent, "POST /x HTTP/1.1");
    EXPECT_EQ(sent.body, "a=b%20c");
    expectHeaders(sent, without(formHeaders(server, 7), "Pragma"));
}

TEST(WorkerDownload, TheCallbacksCallsRiseFromTheOpeningOne) {
    RawServer server({Reply::text("hello")});
    Download download;
    EXPECT_EQ(download.run(server, 5), 0);
    const std::vector<Progress::Call> expected = {{5, 0, 5, 0, 1, 1}, {5, 5, 5, 5, 1, 0}};
    EXPECT_EQ(download.progress.calls, expected);
}

TEST(WorkerDownload, AGetPutsItsFieldsIntoTheUrl) {
    RawServer server({Reply::text("hello")});
    Download download;
    HttpRequestInput input = request(server, "GET");
    input.add_var("a", "b c");
    EXPECT_EQ(download.run(input, 5), 0);
    expectRequestLine(server.onlyRequest(), "GET /x?a=b%20c HTTP/1.1");
    EXPECT_EQ(download.content(), "hello");
}

TEST(WorkerDownload, WhatCantStartIs299AndIsntSent) {
    RawServer server({Reply::text("hello")});
    {
        Download download;
        HttpRequestInput input = request(server, "POST");
        input.add_file("a", "b", "c", "", 0, 0, false);
        EXPECT_EQ(download.run(input, 5), 299);
        EXPECT_EQ(download.worker.error_type, 299);
    }
    {
        HttpRequestWorker worker;
        HttpRequestInput input = request(server, "POST");
        EXPECT_EQ(worker.download(&input, 5, 0, nullptr, nullptr, nullptr), 299);
    }
    {
        Download download;
        HttpRequestInput input = request(server, "POST");
        input.var_layout = kVarsInMultipart;
        EXPECT_EQ(download.run(input, 5), 299);
    }
    {
        Download download;
        download.file.setFileName(QString::fromStdString(download.dir.file("no/folder/target")));
        EXPECT_EQ(download.run(server, 5), 299);
        EXPECT_FALSE(download.file.isOpen());
        EXPECT_TRUE(download.progress.calls.empty());
    }
    EXPECT_EQ(server.connectionCount(), 0u);
}

TEST(WorkerDownload, AnOpenTargetIsReopenedAndClosed) {
    RawServer server({Reply::text("hello")});
    Download download;
    ASSERT_TRUE(download.file.open(QIODevice::WriteOnly));
    EXPECT_EQ(download.run(server, 5), 0);
    EXPECT_FALSE(download.file.isOpen());
    EXPECT_EQ(download.content(), "hello");
}

TEST(WorkerDownload, AnExistingLongerFileKeepsItsRest) {
    RawServer server({Reply::text("hello")});
    Download download;
    download.dir.write("target", "0123456789ABC");
    EXPECT_EQ(download.run(server, 5, 3), 0);
    EXPECT_EQ(download.content(), "012hello89ABC");
}

TEST(WorkerDownload, AnOffsetWantsTheWholeSizeAnnouncedAndCountsFromTheOffset) {
    RawServer server({Reply::text("hello")});
    Download download;
    EXPECT_EQ(download.run(server, 5, 2), 0);
    EXPECT_EQ(download.worker.dwProgress, 0u);
    EXPECT_EQ(download.worker.llBodyFileBytes, 3);
    const std::vector<Progress::Call> expected = {{5, 0, 5, 0, 1, 1}, {5, 7, 5, 7, 1, 0}};
    EXPECT_EQ(download.progress.calls, expected);
}

TEST(WorkerDownload, WithAnOffsetTheRestsOwnSizeIsRefused) {
    LogCapture log;
    RawServer server({Reply::text("llo")});
    Download download;
    EXPECT_EQ(download.run(server, 5, 2), 0);
    EXPECT_EQ(download.worker.dwProgress, 2u);
    EXPECT_THAT(log.texts(),
                testing::Contains("[WFM] HttpRequestWorker::downloadProgress size not match(3)(0)"));
}

TEST(WorkerDownload, ANegativeOffsetCountsAsNone) {
    RawServer server({Reply::text("hello")});
    Download download;
    EXPECT_EQ(download.run(server, 5, -4), 0);
    EXPECT_EQ(download.content(), "hello");
    EXPECT_EQ(download.worker.llStartOffset, 0);
    EXPECT_EQ(download.worker.llBodyFileBytes, 5);
}

TEST(WorkerDownload, AnOffsetEqualToTheSizeMustBringNothing) {
    RawServer server({Reply::status(200, "")});
    Download download;
    EXPECT_EQ(download.run(server, 5, 5), 0);
    EXPECT_EQ(download.worker.llBodyFileBytes, 0);
    EXPECT_EQ(download.worker.dwProgress, 2u);  // the reply announces 0, not 5
}

TEST(WorkerDownload, ASizeOneByteOffIsRefused) {
    for (qint64 total : {4, 6}) {
        LogCapture log;
        RawServer server({Reply::text("hello")});
        Download download;
        EXPECT_EQ(download.run(server, total), 0);
        EXPECT_EQ(download.worker.dwProgress, 2u);
        EXPECT_FALSE(download.file.isOpen());
        EXPECT_THAT(log.texts(),
                    testing::Contains("[WFM] HttpRequestWorker::downloadProgress size not match(5)(0)"));
    }
}

TEST(WorkerDownload, ALargeReplyOfTheWrongSizeIsAbortedAtOnce) {
    const std::uint64_t size = 256 << 20;
    RawServer server({Reply::generated(size, fillPattern)});
    Download download;
    EXPECT_EQ(download.run(server, static_cast<qint64>(size) - 1), 0);
    EXPECT_EQ(download.worker.dwProgress, 2u);
    EXPECT_EQ(download.worker.error_type, QNetworkReply::OperationCanceledError);
    EXPECT_LT(download.file.size(), static_cast<qint64>(size));
}

TEST(WorkerDownload, AVerdictOfZeroDoesntClearTheSizeGuards) {
    RawServer server({Reply::text("hell").contentLength(4)});
    Download download;
    EXPECT_EQ(download.run(server, 5), 0);
    ASSERT_GE(download.progress.calls.size(), 2u);  // the guard's own signal goes on to the callback
    EXPECT_EQ(download.worker.dwProgress, 2u);
}

TEST(WorkerDownload, AReplyOfUnknownLengthIsRefusedWhileItRuns) {
    LogCapture log;
    const std::uint64_t size = 64 << 20;
    RawServer server({Reply::generated(size, fillPattern).chunked(1 << 20).trickle(1 << 20)});
    Download download;
    EXPECT_EQ(download.run(server, static_cast<qint64>(size)), 0);
    EXPECT_EQ(download.worker.dwProgress, 2u);
    EXPECT_THAT(log.texts(), testing::Contains(testing::HasSubstr("size not match(-1)")));
}

TEST(WorkerDownload, AConnectionThatIsRefusedOrDroppedEndsInTheSizeGuard) {
    const RefusedPort port;
    Download refused;
    HttpRequestInput input(QString("http://127.0.0.1:%1/").arg(port.port()), "POST", false);
    input.add_var("a", "b");
    EXPECT_EQ(refused.run(input, 5), 0);
    EXPECT_EQ(refused.worker.error_type, 1);
    EXPECT_EQ(refused.worker.dwProgress, 2u);

    RawServer server({Reply::closeBeforeReply()});
    Download dropped;
    EXPECT_EQ(dropped.run(server, 5), 0);
    EXPECT_EQ(dropped.worker.error_type, 2);
    EXPECT_EQ(dropped.worker.dwProgress, 2u);
    EXPECT_EQ(server.requestCount(), 1u);
}

TEST(WorkerDownload, WhatArrivedBeforeABreakIsInTheFile) {
    RawServer server({Reply::text(pattern(100000)).closeAfterBodyBytes(60000)});
    Download download;
    EXPECT_EQ(download.run(server, 100000), 0);
    EXPECT_EQ(download.worker.error_type, 2);
    EXPECT_TRUE(download.content() == pattern(60000)) << download.content().size();
}

TEST(WorkerDownload, TheOpeningVerdictStopsNothingAndIsOverwrittenByProgress) {
    RawServer server({Reply::text("hello")});
    Download download;
    download.progress.verdict = [](size_t number, const Progress::Call&) { return number == 0 ? 1u : 0u; };
    EXPECT_EQ(download.run(server, 5), 0);
    EXPECT_EQ(download.content(), "hello");
    EXPECT_EQ(download.worker.dwProgress, 0u);
}

TEST(WorkerDownload, WithoutAnyProgressTheOpeningVerdictStays) {
    RawServer server({Reply::text("")});
    Download download;
    download.progress.verdict = [](size_t, const Progress::Call&) { return 1u; };
    EXPECT_EQ(download.run(server, 0), 0);
    EXPECT_EQ(download.progress.calls.size(), 1u);
    EXPECT_EQ(download.worker.dwProgress, 1u);
}

TEST(WorkerDownload, ARefusalAtAProgressSignalAborts) {
    const std::uint64_t size = 256 << 20;
    RawServer server({Reply::generated(size, fillPattern)});
    Download download;
    download.progress.verdict = [](size_t number, const Progress::Call&) { return number == 0 ? 0u : 1u; };
    EXPECT_EQ(download.run(server, static_cast<qint64>(size)), 0);
    EXPECT_EQ(download.worker.dwProgress, 1u);
    EXPECT_EQ(download.worker.error_type, QNetworkReply::OperationCanceledError);
    EXPECT_EQ(download.progress.calls.size(), 2u);
    EXPECT_LT(download.file.size(), static_cast<qint64>(size));
}

TEST(WorkerDownload, ACallbackMayRunTheEventLoopToTheEndOfTheReply) {
    for (size_t slow : {0u, 1u}) {
        RawServer server({Reply::text("hello")});
        Download download;
        download.progress.verdict = [&](size_t number, const Progress::Call&) {
            if (number == slow) {
                QEventLoop loop;
                QTimer::singleShot(200, &loop, &QEventLoop::quit);
                loop.exec();
            }
            return 0u;
        };
        EXPECT_EQ(download.run(server, 5), 0);
        EXPECT_EQ(download.content(), "hello") << slow;
        EXPECT_EQ(download.worker.dwProgress, 0u) << slow;
    }
}

TEST(WorkerDownload, TheSizeGuardHoldsWhenTheReplyEndsInTheOpeningCall) {
    RawServer server({Reply::text("hello!")});
    Download download;
    download.progress.verdict = [&](size_t number, const Progress::Call&) {
        if (number == 0) {
            QEventLoop loop;
            QTimer::singleShot(200, &loop, &QEventLoop::quit);
            loop.exec();
        }
        return 0u;
    };
    EXPECT_EQ(download.run(server, 5), 0);
    EXPECT_EQ(download.worker.dwProgress, 2u);
}

TEST(WorkerDownload, ATimeOutClosesTheFile) {
    RawServer server({Reply::text("hello").stallAfterBodyBytes(2)});
    Download download;
    HttpRequestInput input = request(server, "POST");
    input.timeout_msec = 300;
    EXPECT_EQ(download.run(input, 5), 0);
    EXPECT_EQ(download.worker.error_type, 4);
    EXPECT_EQ(download.worker.http_status, 408);
    EXPECT_FALSE(download.file.isOpen());
    EXPECT_EQ(download.content(), "he");
}

TEST(WorkerDownload, OverTlsEveryByteArrives) {
    RawServer::Options options;
    options.certificate = Certificate::SelfSigned;
    RawServer server({Reply::text(pattern(3 << 20))}, options);
    Download download;
    EXPECT_EQ(download.run(secureRequest(server, "POST"), 3 << 20), 0);
    EXPECT_TRUE(download.content() == pattern(3 << 20));
}

namespace {

qint64 peakResidentKiB() {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("VmHWM:", 0) == 0) return std::stoll(line.substr(6));
    }
    return 0;
}

}  // namespace

TEST(WorkerDownload, MemoryStaysFlatWhenTheTargetIsSlow) {
    if (sanitized()) GTEST_SKIP() << "the sanitizer keeps freed memory, so there is nothing to measure";
    const std::uint64_t size = 256 << 20;
    for (bool secure : {false, true}) {
        for (const char* method : {"POST", "GET"}) {
            RawServer::Options options;
            if (secure) options.certificate = Certificate::SelfSigned;
            RawServer server({Reply::generated(size, fillPattern)}, options);
            Download download;
            // The callback keeps the thread from reading, as a slow disk does.
            download.progress.verdict = [](size_t number, const Progress::Call&) {
                if (number < 5) QThread::msleep(200);
                return 0u;
            };
            const qint64 before = peakResidentKiB();
            EXPECT_EQ(download.run(secure ? secureRequest(server, method) : request(server, method),
                                   static_cast<qint64>(size)),
                      0);
            EXPECT_EQ(download.worker.dwProgress, 0u);
            EXPECT_EQ(download.file.size(), static_cast<qint64>(size));
            EXPECT_LT(peakResidentKiB() - before, 32 * 1024) << method << (secure ? " tls" : "");
        }
    }
}
