// HttpRequestWorker::execute: what goes out and what comes back.

#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <set>
#include <thread>

#include "wire/worker_support.h"

using namespace wire;

TEST(WorkerExecute, AGetSendsItsLineAndTheseHeadersAndNoBody) {
    RawServer server({Reply::text("hello")});
    HttpRequestInput input = request(server);
    HttpRequestWorker worker;
    EXPECT_EQ(worker.execute(&input), 0);
    EXPECT_EQ(worker.http_status, 200);
    EXPECT_EQ(worker.response, "hello");
    expectGet(server.onlyRequest(), "/x", baseHeaders(server));
}

TEST(WorkerExecute, AGetAppendsItsFieldsToTheUrl) {
    RawServer server({Reply::text("")});
    HttpRequestInput input = request(server);
    input.add_var("a b", "c&d/e");
    input.add_var("z", QString::fromUtf8("\xE4\xB8\xAD"));
    HttpRequestWorker worker;
    EXPECT_EQ(worker.execute(&input), 0);
    expectRequestLine(server.onlyRequest(), "GET /x?a%20b=c%26d%2Fe&z=%E4%B8%AD HTTP/1.1");
}

TEST(WorkerExecute, AUrlThatHasAQueryGetsASecondQuestionMark) {
    RawServer server({Reply::text("")});
    HttpRequestInput input(urlOf(server, "/x?p=%2525"), "GET", false);
    input.add_var("a", "%25");
    HttpRequestWorker worker;
    EXPECT_EQ(worker.execute(&input), 0);
    expectRequestLine(server.onlyRequest(), "GET /x?p=%2525?a=%2525 HTTP/1.1");
}

TEST(WorkerExecute, TextBeyondAsciiAndTheTildeGoOutAsQUrlWritesThem) {
    RawServer server({Reply::text("")});
    HttpRequestInput input(urlOf(server, QString::fromUtf8("/x?n=\xE4\xB8\xAD%20%7E%2F%27")), "GET", false);
    HttpRequestWorker worker;
    EXPECT_EQ(worker.execute(&input), 0);
    expectRequestLine(server.onlyRequest(), "GET /x?n=%E4%B8%AD%20~%2F%27 HTTP/1.1");
}

TEST(WorkerExecute, AFormPostSendsItsFieldsInOrder) {
    RawServer server({Reply::text("ok")});
    HttpRequestInput input = request(server, "POST");
    input.add_var("z", "1 2");
    input.add_var("a", "~-._!*'");
    input.add_var("z", "");
    HttpRequestWorker worker;
    EXPECT_EQ(worker.execute(&input), 0);
    const Request sent = server.onlyRequest();
    expectRequestLine(sent, "POST /x HTTP/1.1");
    EXPECT_EQ(sent.body, "z=1%202&a=~-._%21%2A%27&z=");
    expectHeaders(sent, formHeaders(server, sent.body.size()));
}

TEST(WorkerExecute, APostWithNoFieldsSendsAnEmptyFormBody) {
    RawServer server({Reply::text("ok")});
    HttpRequestInput input = request(server, "POST");
    HttpRequestWorker worker;
    EXPECT_EQ(worker.execute(&input), 0);
    const Request sent = server.onlyRequest();
    EXPECT_EQ(sent.body, "");
    expectHeaders(sent, formHeaders(server, 0));
}

TEST(WorkerExecute, EveryMethodGoesOutUnderItsName) {
    for (const char* method : {"GET", "POST", "PUT", "HEAD", "DELETE", "PROPFIND", "post"}) {
        RawServer server({Reply::text("hello")});
        HttpRequestInput input = request(server, method);
        input.add_var("a", "b");
        HttpRequestWorker worker;
        EXPECT_EQ(worker.execute(&input), 0) << method;
        const Request sent = server.onlyRequest();
        const std::string name = method;
        EXPECT_EQ(sent.method(), name);
        const bool inUrl = name == "GET" || name == "HEAD";
        EXPECT_EQ(sent.target(), inUrl ? "/x?a=b" : "/x") << method;
        EXPECT_EQ(sent.body, inUrl || name == "DELETE" ? "" : "a=b") << method;
    }
}

TEST(WorkerExecute, ALayoutThatTheCallerChoseStands) {
    RawServer server({Reply::text("ok")});
    HttpRequestInput input = request(server, "POST");
    input.var_layout = kVarsInUrl;
    input.add_var("a", "b");
    HttpRequestWorker worker;
    EXPECT_EQ(worker.execute(&input), 0);
    const Request sent = server.onlyRequest();
    EXPECT_EQ(sent.target(), "/x?a=b");
    EXPECT_EQ(sent.body, "");
}

TEST(WorkerExecute, AgentNameAndRawHeadersGoOut) {
    RawServer server({Reply::text("")});
    HttpRequestInput input = request(server);
    input.set_agent_name("other/1.0");
    input.add_raw_header("X-Forwarded-For", "10.0.0.1");
    input.add_raw_header("X-Wide", QString::fromUtf8("\xE4\xB8\xAD"));
    input.add_raw_header("Pragma", "mine");
    HttpRequestWorker worker;
    EXPECT_EQ(worker.execute(&input), 0);
    HeaderList headers = baseHeaders(server, "other/1.0");
    headers = with(headers, "X-Forwarded-For", "10.0.0.1");
    headers = with(headers, "X-Wide", "\xE4\xB8\xAD");
    expectHeaders(server.onlyRequest(), with(headers, "Pragma", "mine"));
}

TEST(WorkerExecute, ARawHeaderGoesOutEmptyToo) {
    const RawServer server({Reply::text("")});
    HttpRequestInput input = request(server);
    input.add_raw_header("X-VEXA-CHECK", QString(""));
    input.add_raw_header("X-VEXA-TIME", "1");
    HttpRequestWorker worker;
    EXPECT_EQ(worker.execute(&input), 0);
    EXPECT_THAT(server.onlyRequest().raw, testing::HasSubstr("\r\nX-VEXA-CHECK: \r\nX-VEXA-TIME: 1\r\n"));
}

TEST(WorkerExecute, AMultipartBodyIsExactAndEndsWithoutALineEnd) {
    const TempDir dir;
    const std::string path = dir.write("local name.bin", std::string("a\0\r\nb", 5));
    RawServer server({Reply::text("ok")});
    HttpRequestInput input = request(server, "POST");
    input.add_var("one", "1");
    input.add_var(QString::fromUtf8("n\xC3\xA4me"), "%1 %2");
    input.add_file("Filedata", QString::fromStdString(path), "", "text/plain", 5, 0, false);
    input.add_file("Second", QString::fromStdString(path), "sent %1.bin", "", 5, 0, false);
    HttpRequestWorker worker;
    EXPECT_EQ(worker.execute(&input), 0);
    EXPECT_EQ(input.var_layout, 4);
    const Request sent = server.onlyRequest();
    const std::string b = sent.multipart().boundary;
    EXPECT_THAT(b, testing::MatchesRegex("__-----------------------[0-9]+"));
    EXPECT_EQ(sent.header("Content-Type"), "multipart/form-data; boundary=" + b);
    const std::string content("a\0\r\nb", 5);
    EXPECT_EQ(sent.body,
              "--" + b + "\r\nContent-Disposition: form-data; name=\"one\"\r\n\r\n1\r\n" +  //
                  "--" + b + "\r\nContent-Disposition: form-data; name=\"n\xC3\xA4me\"\r\n\r\n%1 %2\r\n" +
                  "--" + b +
                  "\r\nContent-Disposition: form-data; name=\"Filedata\"; filename=\"local name.bin\"\r\n"
                  "Content-Type: text/plain\r\nContent-Transfer-Encoding: binary\r\n\r\n" +
                  content + "\r\n" +  //
                  "--" + b +
                  "\r\nContent-Disposition: form-data; name=\"Second\"; filename=\"sent %1.bin\"\r\n"
                  "Content-Transfer-Encoding: binary\r\n\r\n" +
                  content + "\r\n" +  //
                  "--" + b + "--");
    EXPECT_EQ(sent.header("Content-Length"), std::to_string(sent.body.size()));
}

TEST(WorkerExecute, AFileElementThatCantBeReadIsLeftOut) {
    const TempDir dir;
    RawServer server({Reply::text("ok")});
    HttpRequestInput input = request(server, "POST");
    input.add_var("a", "b");
    input.add_file("Filedata", QString::fromStdString(dir.file("missing")), "n", "", 1, 0, false);
    input.add_file("Folder", QString::fromStdString(dir.string()), "n", "", 1, 0, false);
    input.add_file("", QString::fromStdString(dir.write("f", "x")), "n", "", 1, 0, false);
    HttpRequestWorker worker;
    EXPECT_EQ(worker.execute(&input), 0);
    ASSERT_EQ(server.onlyRequest().multipart().parts.size(), 1u);
}

TEST(WorkerExecute, TwoWorkersHaveTwoBoundaries) {
    RawServer server({Reply::text("ok")});
    std::set<std::string> boundaries;
    for (int i = 0; i < 3; ++i) {
        HttpRequestInput input = request(server, "POST");
        input.var_layout = kVarsInMultipart;
        input.add_var("a", "b");
        HttpRequestWorker worker;
        EXPECT_EQ(worker.execute(&input), 0);
        boundaries.insert(server.request(static_cast<size_t>(i)).multipart().boundary);
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    EXPECT_EQ(boundaries.size(), 3u);
}

TEST(WorkerExecute, ARedirectIsAnAnswerAndIsntFollowed) {
    for (const char* method : {"GET", "POST"}) {
        for (int status : {301, 302, 303, 307, 308}) {
            RawServer server({Reply::status(status, "moved").header("Location", "/y")});
            HttpRequestInput input = request(server, method);
            HttpRequestWorker worker;
            EXPECT_EQ(worker.execute(&input), 0) << method << status;
            EXPECT_EQ(worker.http_status, status);
            EXPECT_EQ(server.onlyRequest().target(), "/x");
        }
    }
}

TEST(WorkerExecute, AnErrorStatusKeepsTheBody) {
    const std::vector<std::pair<int, int>> expected = {{400, 302}, {401, 204}, {403, 201}, {404, 203},
                                                       {407, 105}, {500, 401}, {503, 403}};
    for (const char* method : {"GET", "POST"}) {
        for (const auto& [status, error] : expected) {
            RawServer server({Reply::status(status, "why")});
            HttpRequestInput input = request(server, method);
            HttpRequestWorker worker;
            EXPECT_EQ(worker.execute(&input), error) << method << status;
            EXPECT_EQ(worker.error_type, error);
            EXPECT_EQ(worker.http_status, status);
            EXPECT_EQ(worker.response, "why");
            EXPECT_EQ(server.requestCount(), 1u);
        }
    }
}

TEST(WorkerExecute, ChunkedAndCompressedBodiesArriveWhole) {
    const std::string text = pattern(100000);
    for (const char* method : {"GET", "POST"}) {
        RawServer server({Reply::text(text).chunked(999), Reply::text(text).gzip(),
                          Reply::text(text).gzip().chunked(50), Reply::text(text).trickle(20000)});
        for (int i = 0; i < 4; ++i) {
            HttpRequestInput input = request(server, method);
            HttpRequestWorker worker;
            EXPECT_EQ(worker.execute(&input), 0) << method << i;
            EXPECT_TRUE(worker.response.toStdString() == text) << method << i;
        }
    }
}

TEST(WorkerExecute, AnEmptyBodyIsAnAnswer) {
    RawServer server({Reply::status(200)});
    HttpRequestInput input = request(server, "POST");
    HttpRequestWorker worker;
    EXPECT_EQ(worker.execute(&input), 0);
    EXPECT_EQ(worker.http_status, 200);
    EXPECT_TRUE(worker.response.isEmpty());
}

TEST(WorkerExecute, ASelfSignedOrExpiredCertificateDoesntFailARequest) {
    for (Certificate kind : {Certificate::SelfSigned, Certificate::Expired}) {
        for (const char* method : {"GET", "POST"}) {
            RawServer::Options options;
            options.certificate = kind;
            RawServer server({Reply::text("hello")}, options);
            HttpRequestInput input = secureRequest(server, method);
            HttpRequestWorker worker;
            EXPECT_EQ(worker.execute(&input), 0);
            EXPECT_EQ(worker.response, "hello");
        }
    }
}

TEST(WorkerExecute, ACertificateIsRefusedWithoutTheSecureFlag) {
    RawServer::Options options;
    options.certificate = Certificate::SelfSigned;
    RawServer server({Reply::text("hello")}, options);
    HttpRequestInput input(urlOf(server, "/x", "https"), "GET", false);
    input.set_timeout_msec(kPatience);
    HttpRequestWorker worker;
    EXPECT_EQ(worker.execute(&input), QNetworkReply::SslHandshakeFailedError);
}

TEST(WorkerExecute, ATimeOutGivesFourAnd408AndNoBody) {
    for (const Reply& reply : {Reply::stall(), Reply::text("hello").stallAfterBodyBytes(2)}) {
        RawServer server({reply});
        HttpRequestInput input = request(server, "POST");
        input.timeout_msec = 200;
        HttpRequestWorker worker;
        EXPECT_EQ(worker.execute(&input), 4);
        EXPECT_EQ(worker.error_type, 4);
        EXPECT_EQ(worker.http_status, 408);
        EXPECT_TRUE(worker.response.isEmpty());
        EXPECT_EQ(server.requestCount(), 1u);
    }
}

TEST(WorkerExecute, ARequestWithoutATimeOutStartsNoTimerAndWaits) {
    RawServer server({Reply::text("late").held()});
    HttpRequestInput input(urlOf(server), "GET", false);
    QTimer::singleShot(100, [&] { server.release(); });
    HttpRequestWorker worker;
    EXPECT_EQ(worker.execute(&input), 0);
    EXPECT_EQ(worker.response, "late");
}

TEST(WorkerExecute, AnEmptyOrInvalidUrlEndsInAnErrorWithoutAWait) {
    for (const char* url : {"", "garbage", "http://", "http://[::1", "nothing://here/"}) {
        for (const char* method : {"GET", "POST"}) {
            HttpRequestInput input(url, method, false);
            HttpRequestWorker worker;
            EXPECT_NE(worker.execute(&input), 0) << url;
            EXPECT_EQ(worker.http_status, 0) << url;
        }
    }
}

TEST(WorkerExecute, AReplyThatHasEndedAlreadyIsntWaitedFor) {
    RawServer server({Reply::text("hello")});
    QNetworkAccessManager manager;
    QNetworkReply* reply = manager.get(QNetworkRequest(QUrl(urlOf(server))));
    while (!reply->isFinished()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    HttpRequestWorker worker;
    EXPECT_EQ(worker.wait_for_finished(reply, -1), 0);
    EXPECT_EQ(worker.response, "hello");
}

TEST(WorkerExecute, AWorkerStartsAfreshWithEachRequest) {
    RawServer server({Reply::status(404, "no"), Reply::text("yes")});
    HttpRequestWorker worker;
    HttpRequestInput first = request(server);
    EXPECT_NE(worker.execute(&first), 0);
    HttpRequestInput second = request(server);
    EXPECT_EQ(worker.execute(&second), 0);
    EXPECT_EQ(worker.http_status, 200);
    EXPECT_EQ(worker.response, "yes");
}

// It marks the whole thread, so it happens in one of its own.
TEST(WorkerExecute, AThreadThatIsToldToQuitGetsItsCallsBack) {
    RawServer server({Reply::stall()});
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        for (int i = 0; i < 2; ++i) {  // the second finds the mark set
            HttpRequestInput input(urlOf(server), "POST", false);
            HttpRequestWorker worker;
            if (i == 0) QTimer::singleShot(50, [] { QThread::currentThread()->exit(); });
            EXPECT_EQ(worker.execute(&input), QNetworkReply::OperationCanceledError);
            EXPECT_EQ(worker.http_status, 0);
        }
    }));
    thread->start();
    thread->wait();
}

TEST(WorkerExecute, WhileACallWaitsTheThreadsOwnTimersRun) {
    RawServer server({Reply::text("x").held()});
    bool ran = false;
    QTimer::singleShot(10, [&] {
        ran = true;
        server.release();
    });
    HttpRequestInput input = request(server);
    HttpRequestWorker worker;
    EXPECT_EQ(worker.execute(&input), 0);
    EXPECT_TRUE(ran);
}

TEST(WorkerExecute, AThreadWithoutAnEventLoopWillDo) {
    RawServer server({Reply::text("hello")});
    std::thread thread([&] {
        HttpRequestInput input = request(server, "POST");
        HttpRequestWorker worker;
        EXPECT_EQ(worker.execute(&input), 0);
        EXPECT_EQ(worker.response, "hello");
    });
    thread.join();
}

TEST(WorkerExecute, ThirtyTwoThreadsRunAtOnce) {
    RawServer server(RawServer::Handler([](const Request& request) {
        return Reply::text(request.method() + request.body + request.queryText());
    }));
    std::vector<std::thread> threads;
    for (int t = 0; t < 32; ++t) {
        threads.emplace_back([&server, t] {
            for (int i = 0; i < 3; ++i) {
                const bool get = (t + i) % 2 == 0;
                HttpRequestInput input = request(server, get ? "GET" : "POST");
                const QString number = QString::number(t * 100 + i);
                input.add_var("n", number);
                HttpRequestWorker worker;
                EXPECT_EQ(worker.execute(&input), 0);
                EXPECT_EQ(QString(worker.response), (get ? "GETn=" : "POSTn=") + number);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(server.requestCount(), 96u);
}
