// HttpRequestWorker::upload: the envelope, the callback's calls and the guards.

#include <unistd.h>

#include <QFile>
#include <QNetworkReply>
#include <QTimer>

#include "wire/worker_support.h"

using namespace wire;

namespace {

struct Upload {
    TempDir dir;
    QString path;
    qint64 size = 0;
    Progress progress;
    HttpRequestWorker worker;

    explicit Upload(const std::string& content, const std::string& name = "local.bin")
        : path(QString::fromStdString(dir.write(name, content))), size(static_cast<qint64>(content.size())) {}

    HttpRequestInput input(const RawServer& server, qint64 offset = 0, bool chunk = false,
                           const QString& sentName = "sent.bin") const {
        HttpRequestInput input = request(server, "POST");
        input.add_var("Filename", sentName);
        input.add_file("Filedata", path, sentName, "application/octet-stream", size, offset, chunk);
        return input;
    }
    int run(HttpRequestInput input) {
        return worker.upload(&input, "Upload", false, &Progress::callback, &progress);
    }
};

std::string shortBody(const QString& path, long long available) {
    return "[WFM]  HttpRequestWorker(" + path.toStdString() +
           ")::upload  PROGRESS_STOP dwProgress(0) llNumberOfBytesAvailable(" + std::to_string(available) +
           ")";
}

}  // namespace

TEST(WorkerUpload, TheEnvelopeIsExact) {
    RawServer server({Reply::text("ok")});
    Upload upload(pattern(1000));
    EXPECT_EQ(upload.run(upload.input(server)), 0);
    EXPECT_EQ(upload.worker.response, "ok");
    const Request sent = server.onlyRequest();
    expectRequestLine(sent, "POST /x HTTP/1.1");
    const std::string b = sent.multipart().boundary;
    EXPECT_THAT(b, testing::MatchesRegex("__-----------------------[0-9]+"));
    EXPECT_TRUE(sent.body ==
                "--" + b + "\r\nContent-Disposition: form-data; name=\"Filename\"\r\n\r\nsent.bin\r\n--" + b +
                    "\r\nContent-Disposition: form-data; name=\"Filedata\"; filename=\"sent.bin\"\r\n"
                    "Content-Type: application/octet-stream\r\n\r\n" +
                    pattern(1000) + "\r\n--" + b +
                    "\r\nContent-Disposition: form-data; name=\"Upload\"\r\n\r\nSubmit Query\r\n--" + b +
                    "--")
        << sent.body;
    HeaderList headers = without(baseHeaders(server), "Pragma");
    headers.emplace_back("Content-Type", "multipart/form-data; boundary=" + b);
    headers.emplace_back("Content-Length", std::to_string(sent.body.size()));
    expectHeaders(sent, headers);
}

TEST(WorkerUpload, NamesWithPercentSignsQuotesAndWideTextGoOutAsTheyAre) {
    for (const char* name : {"100%1 of %2 %%.bin", "a \"b\" c", "\xE4\xB8\xAD\xF0\x9F\x98\x80", "%L1%99"}) {
        RawServer server({Reply::text("ok")});
        Upload upload("x");
        HttpRequestInput input = request(server, "POST");
        const QString text = QString::fromUtf8(name);
        input.add_var(text, text);
        input.add_file(text, upload.path, text, text, 1, 0, false);
        EXPECT_EQ(upload.worker.upload(&input, text, false, nullptr, nullptr), 0);
        const std::string n = name;
        const std::string body = server.onlyRequest().body;
        EXPECT_THAT(body, testing::HasSubstr("form-data; name=\"" + n + "\"\r\n\r\n" + n + "\r\n"));
        EXPECT_THAT(body, testing::HasSubstr("form-data; name=\"" + n + "\"; filename=\"" + n +
                                             "\"\r\nContent-Type: " + n + "\r\n\r\nx\r\n"));
        EXPECT_THAT(body, testing::HasSubstr("form-data; name=\"" + n + "\"\r\n\r\nSubmit Query"));
    }
}

TEST(WorkerUpload, AnEmptyRequestNameBecomesTheFilesOwn) {
    RawServer server({Reply::text("ok")});
    Upload upload("x", "own name.bin");
    HttpRequestInput input = request(server, "POST");
    input.add_file("Filedata", upload.path, "", "", 1, 0, false);
    EXPECT_EQ(upload.run(input), 0);
    const Part part = server.onlyRequest().multipart().part("Filedata");
    EXPECT_EQ(part.head, "Content-Disposition: form-data; name=\"Filedata\"; filename=\"own name.bin\"");
}

TEST(WorkerUpload, OnlyTheFirstOfTwoVariablesIsSent) {
    RawServer server({Reply::text("ok")});
    Upload upload("x");
    HttpRequestInput input = upload.input(server);
    input.add_var("second", "2");
    EXPECT_EQ(upload.run(input), 0);
    const Multipart body = server.onlyRequest().multipart();
    ASSERT_EQ(body.parts.size(), 3u);
    EXPECT_EQ(body.parts[0].name, "Filename");
    EXPECT_EQ(body.parts[1].name, "Filedata");
    EXPECT_EQ(body.parts[2].name, "Upload");
}

TEST(WorkerUpload, TheFirstOfTheFilesThatCanBeSentIsTaken) {
    RawServer server({Reply::text("ok")});
    Upload upload("content");
    HttpRequestInput input = request(server, "POST");
    input.add_file("Missing", upload.path + "-", "a", "", 7, 0, false);
    input.add_file("Folder", QString::fromStdString(upload.dir.string()), "a", "", 7, 0, false);
    input.add_file("", upload.path, "a", "", 7, 0, false);
    input.add_file("Unnamed", "", "a", "", 7, 0, false);
    input.add_file("PastItsEnd", upload.path, "a", "", 7, 8, false);
    input.add_file("Good", upload.path, "a", "", 7, 0, false);
    input.add_file("AlsoGood", upload.path, "a", "", 7, 0, false);
    EXPECT_EQ(upload.run(input), 0);
    const Multipart body = server.onlyRequest().multipart();
    ASSERT_EQ(body.parts.size(), 2u);
    EXPECT_EQ(body.parts[0].name, "Good");
    EXPECT_EQ(body.parts[0].body, "content");
    EXPECT_EQ(upload.worker.llTotalFileSize, 7);
}

TEST(WorkerUpload, WithoutAFileElementItIs299AndNothingIsSent) {
    RawServer server({Reply::text("ok")});
    HttpRequestInput input = request(server, "POST");
    HttpRequestWorker worker;
    EXPECT_EQ(worker.upload(&input, "Upload", false, nullptr, nullptr), 299);
    EXPECT_EQ(worker.error_type, 299);
    EXPECT_EQ(server.connectionCount(), 0u);
}

TEST(WorkerUpload, AnOffsetAboveTheSizeIs202AndNothingIsSent) {
    RawServer server({Reply::text("ok")});
    Upload upload("content");
    EXPECT_EQ(upload.run(upload.input(server, 8)), 202);
    EXPECT_TRUE(upload.progress.calls.empty());
    EXPECT_EQ(server.connectionCount(), 0u);
}

TEST(WorkerUpload, AFileThatIsGoneIs202) {
    RawServer server({Reply::text("ok")});
    Upload upload("content");
    QFile::remove(upload.path);
    EXPECT_EQ(upload.run(upload.input(server)), 202);
    EXPECT_EQ(server.connectionCount(), 0u);
}

TEST(WorkerUpload, AnOffsetEqualToTheSizeSendsHeadAndTail) {
    RawServer server({Reply::text("ok")});
    Upload upload("content");
    EXPECT_EQ(upload.run(upload.input(server, 7)), 0);
    EXPECT_EQ(server.onlyRequest().multipart().part("Filedata").body, "");
    const std::vector<Progress::Call> expected = {{7, 0, 7, 0, 1, 1}, {7, 7, 7, 7, 0, 0}};
    EXPECT_EQ(upload.progress.calls, expected);
}

TEST(WorkerUpload, AnOffsetSendsTheRestAndCountsFromTheStartOfTheFile) {
    RawServer server({Reply::text("ok")});
    Upload upload("0123456789");
    EXPECT_EQ(upload.run(upload.input(server, 4)), 0);
    EXPECT_EQ(server.onlyRequest().multipart().part("Filedata").body, "456789");
    const std::vector<Progress::Call> expected = {
        {10, 0, 10, 0, 1, 1}, {10, 10, 10, 10, 1, 0}, {10, 10, 10, 10, 0, 0}};
    EXPECT_EQ(upload.progress.calls, expected);
    EXPECT_EQ(upload.worker.llTotalBytesTransferred, 10);
    EXPECT_EQ(upload.worker.dwProgress, 0u);
}

TEST(WorkerUpload, AnEmptyFileHasAnOpeningAndAClosingCall) {
    RawServer server({Reply::text("ok")});
    Upload upload("");
    EXPECT_EQ(upload.run(upload.input(server)), 0);
    EXPECT_EQ(server.onlyRequest().multipart().part("Filedata").body, "");
    const std::vector<Progress::Call> expected = {{0, 0, 0, 0, 1, 1}, {0, 0, 0, 0, 0, 0}};
    EXPECT_EQ(upload.progress.calls, expected);
}

TEST(WorkerUpload, ALargeFileRisesToItsSizeInOrder) {
    const qint64 size = 32 << 20;
    RawServer::Options options;
    options.keepBody = 1000;
    RawServer server({Reply::text("ok").readSlowly(1 << 20)}, options);
    Upload upload(pattern(size));
    EXPECT_EQ(upload.run(upload.input(server)), 0);
    const auto& calls = upload.progress.calls;
    ASSERT_GE(calls.size(), 3u);
    EXPECT_EQ(calls.front(), (Progress::Call{size, 0, size, 0, 1, 1}));
    EXPECT_EQ(calls.back(), (Progress::Call{size, size, size, size, 0, 0}));
    for (size_t i = 1; i + 1 < calls.size(); ++i) {
        EXPECT_EQ(calls[i].streamNumber, 1u);
        EXPECT_EQ(calls[i].reason, 0u);
        EXPECT_EQ(calls[i].transferred, calls[i].streamTransferred);
        EXPECT_GE(calls[i].transferred, calls[i - 1].transferred);
        EXPECT_LE(calls[i].transferred, size);
    }
    EXPECT_EQ(server.onlyRequest().bodySize,
              static_cast<std::uint64_t>(upload.worker.llHeadSize + size + upload.worker.llTailSize));
}

TEST(WorkerUpload, TheOpeningCallsRefusalIs5) {
    RawServer server({Reply::text("ok")});
    Upload upload(pattern(1 << 20));
    upload.progress.verdict = [](size_t, const Progress::Call&) { return 7u; };
    EXPECT_EQ(upload.run(upload.input(server)), 5);
    EXPECT_EQ(upload.worker.dwProgress, 7u);
    EXPECT_EQ(upload.progress.calls.size(), 1u);
    for (const Request& sent : server.requests()) EXPECT_FALSE(sent.complete);
}

TEST(WorkerUpload, ARefusalAtTheFirstProgressEndsItWithoutAClosingCall) {
    LogCapture log;
    RawServer::Options options;
    options.keepBody = 1000;
    RawServer server({Reply::text("ok").readSlowly(1 << 18)}, options);
    Upload upload(pattern(32 << 20));
    upload.progress.verdict = [](size_t number, const Progress::Call&) { return number == 0 ? 0u : 1u; };
    EXPECT_EQ(upload.run(upload.input(server)), QNetworkReply::OperationCanceledError);
    EXPECT_EQ(upload.worker.dwProgress, 1u);
    EXPECT_EQ(upload.progress.calls.size(), 2u);
    log.expectLines({"[WFM] HttpRequestWorker::uploadProgress abort(1)"});
}

TEST(WorkerUpload, TheClosingVerdictIsKept) {
    RawServer server({Reply::text("ok")});
    Upload upload("content");
    upload.progress.verdict = [](size_t, const Progress::Call& call) {
        return call.streamNumber == 0 ? 9u : 0u;
    };
    EXPECT_EQ(upload.run(upload.input(server)), 0);
    EXPECT_EQ(upload.worker.dwProgress, 9u);
    EXPECT_EQ(upload.worker.response, "ok");
}

TEST(WorkerUpload, AFailedReplyHasAClosingCallToo) {
    LogCapture log;
    const RefusedPort port;
    Upload upload("content");
    HttpRequestInput input(QString("http://127.0.0.1:%1/").arg(port.port()), "POST", false);
    input.add_file("Filedata", upload.path, "f", "", 7, 0, false);
    EXPECT_EQ(upload.run(input), 1);
    const std::vector<Progress::Call> expected = {{7, 0, 7, 0, 1, 1}, {7, 0, 7, 0, 0, 0}};
    EXPECT_EQ(upload.progress.calls, expected);
    log.expectNoLines();
}

TEST(WorkerUpload, ASliceHasNoClosingCall) {
    RawServer server({Reply::text("ok")});
    Upload upload("content");
    EXPECT_EQ(upload.run(upload.input(server, 0, true)), 0);
    const std::vector<Progress::Call> expected = {{7, 0, 7, 0, 1, 1}, {7, 7, 7, 7, 1, 0}};
    EXPECT_EQ(upload.progress.calls, expected);
    EXPECT_EQ(upload.worker.dwProgress, 0u);
}

TEST(WorkerUpload, WithoutACallbackTheShortBodyTestStillRunsAfterANetworkError) {
    LogCapture log;
    const RefusedPort port;
    Upload upload("content");
    HttpRequestInput input(QString("http://127.0.0.1:%1/").arg(port.port()), "POST", false);
    input.add_file("Filedata", upload.path, "f", "", 7, 0, false);
    EXPECT_EQ(upload.worker.upload(&input, "Upload", false, nullptr, nullptr), 1);
    EXPECT_EQ(upload.worker.dwProgress, 2u);
    log.expectLines({shortBody(upload.path, 7)});
}

TEST(WorkerUpload, TheOffsetWeighsTwiceInTheShortBodyTest) {
    LogCapture log;
    const RefusedPort port;
    // 10 - offset bytes to send, none sent: fires while 10 - offset - 2 * offset is above 0.
    for (const auto& [offset, verdict] :
         std::vector<std::pair<int, quint32>>{{0, 2}, {3, 2}, {4, 0}, {9, 0}}) {
        Upload upload("0123456789");
        HttpRequestInput input(QString("http://127.0.0.1:%1/").arg(port.port()), "POST", false);
        input.add_file("Filedata", upload.path, "f", "", 10, offset, true);
        EXPECT_EQ(upload.run(input), 1);
        EXPECT_EQ(upload.worker.dwProgress, verdict) << offset;
        log.clear();
    }
}

TEST(WorkerUpload, AFileThatChangesUnderTheUploadEndsIt) {
    for (const qint64 newSize : {qint64(64) << 20, qint64(40) << 20, qint64(1000)}) {
        LogCapture log;
        RawServer::Options options;
        options.keepBody = 1000;
        RawServer server({Reply::text("ok").readSlowly(1 << 18)}, options);
        Upload upload(pattern(48 << 20));
        bool changed = false;
        upload.progress.verdict = [&](size_t number, const Progress::Call&) {
            if (number == 1) changed = QFile::resize(upload.path, newSize);
            return 0u;
        };
        HttpRequestInput input = upload.input(server);
        input.timeout_msec = -1;
        EXPECT_NE(upload.run(input), 0) << newSize;
        EXPECT_TRUE(changed);
        for (const Request& sent : server.requests()) EXPECT_FALSE(sent.complete) << newSize;
        // A file cut behind the read position may run dry before the next progress tells.
        if (newSize > 1000) {
            EXPECT_THAT(log.texts(),
                        testing::Contains("[WFM] HttpRequestWorker::uploadProgress file size is changed"))
                << newSize;
        }
    }
}

TEST(WorkerUpload, AFileThatGrewBeforeTheUploadGoesOutWhole) {
    RawServer server({Reply::text("ok")});
    Upload upload("0123456789");
    upload.size = 4;  // what the caller believed
    EXPECT_EQ(upload.run(upload.input(server)), 0);
    EXPECT_EQ(server.onlyRequest().multipart().part("Filedata").body, "0123456789");
    EXPECT_EQ(upload.worker.llTotalFileSize, 4);
    EXPECT_EQ(upload.worker.llTotalBytesTransferred, 10);
}

TEST(WorkerUpload, WithoutFileDataThePartIsEmptyAndNoCallbackRuns) {
    RawServer server({Reply::text("ok")});
    HttpRequestInput input = request(server, "POST");
    input.add_var("Filename", "new");
    input.add_file("Filedata", "no/such/file", "new", "application/octet-stream", 0, 0, false);
    Progress progress;
    HttpRequestWorker worker;
    EXPECT_EQ(worker.upload(&input, "Upload", true, &Progress::callback, &progress), 0);
    EXPECT_TRUE(progress.calls.empty());
    EXPECT_EQ(worker.dwProgress, 0u);
    const Request sent = server.onlyRequest();
    const Multipart body = sent.multipart();
    ASSERT_EQ(body.parts.size(), 3u);
    EXPECT_EQ(body.parts[1].filename, "new");
    EXPECT_EQ(body.parts[1].body, "");
    EXPECT_EQ(sent.header("Content-Length"), std::to_string(sent.body.size()));
    EXPECT_EQ(static_cast<size_t>(worker.llHeadSize + worker.llTailSize), sent.body.size());
}

TEST(WorkerUpload, WithoutFileDataAnElementNeedsOnlyItsVariableName) {
    RawServer server({Reply::text("ok")});
    HttpRequestInput input = request(server, "POST");
    input.add_var("Filename", "");
    input.add_file("Filedata", "", "", "", 0, 0, false);
    HttpRequestWorker worker;
    EXPECT_EQ(worker.upload(&input, "Upload", true, nullptr, nullptr), 0);
    EXPECT_EQ(server.onlyRequest().multipart().part("Filedata").filename, "file");
}

TEST(WorkerUpload, WithoutFileDataAndANamelessElementThereIsNoFilePart) {
    RawServer server({Reply::text("ok")});
    HttpRequestInput input = request(server, "POST");
    input.add_var("Filename", "");
    input.add_file("", "", "", "", 0, 0, false);
    HttpRequestWorker worker;
    EXPECT_EQ(worker.upload(&input, "Upload", true, nullptr, nullptr), 0);
    const Request sent = server.onlyRequest();
    const std::string b = sent.multipart().boundary;
    EXPECT_EQ(sent.body,
              "--" + b + "\r\nContent-Disposition: form-data; name=\"Filename\"\r\n\r\n\r\n--" + b +
                  "\r\nContent-Disposition: form-data; name=\"Upload\"\r\n\r\nSubmit Query\r\n--" + b + "--");
}

TEST(WorkerUpload, ATimeOutGives408) {
    RawServer server({Reply::stall()});
    Upload upload("content");
    HttpRequestInput input = upload.input(server);
    input.timeout_msec = 200;
    EXPECT_EQ(upload.run(input), 4);
    EXPECT_EQ(upload.worker.http_status, 408);
}

TEST(WorkerUpload, OtherMethodsCarryTheBodyOrNone) {
    for (const char* method : {"PUT", "PROPFIND", "GET", "DELETE"}) {
        RawServer server({Reply::text("ok")});
        Upload upload("content");
        HttpRequestInput input = upload.input(server);
        input.http_method = method;
        EXPECT_EQ(upload.worker.upload(&input, "Upload", false, nullptr, nullptr), 0);
        const Request sent = server.onlyRequest();
        EXPECT_EQ(sent.method(), method);
        const bool body = std::string(method) == "PUT" || std::string(method) == "PROPFIND";
        EXPECT_EQ(sent.body.find("content") != std::string::npos, body) << method;
    }
}

TEST(WorkerUpload, ACallbackMayRunTheEventLoop) {
    RawServer server({Reply::text("ok")});
    Upload upload(pattern(1 << 20));
    upload.progress.verdict = [](size_t, const Progress::Call&) {
        QEventLoop loop;
        QTimer::singleShot(50, &loop, &QEventLoop::quit);
        loop.exec();
        return 0u;
    };
    EXPECT_EQ(upload.run(upload.input(server)), 0);
    EXPECT_EQ(upload.worker.response, "ok");
    EXPECT_TRUE(server.onlyRequest().multipart().part("Filedata").body == pattern(1 << 20));
}

TEST(WorkerUpload, OverTlsEveryByteArrives) {
    RawServer::Options options;
    options.certificate = Certificate::SelfSigned;
    RawServer server({Reply::text("ok")}, options);
    Upload upload(pattern(3 << 20));
    HttpRequestInput input = secureRequest(server, "POST");
    input.add_file("Filedata", upload.path, "f", "", upload.size, 0, false);
    EXPECT_EQ(upload.run(input), 0);
    EXPECT_TRUE(server.onlyRequest().multipart().part("Filedata").body == pattern(3 << 20));
}
