#include <gmock/gmock.h>

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <memory>
#include <string>

#include "support/rawserver.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;
using wire::Certificate;

namespace {

struct Exchange {
    int error = 0;
    int status = 0;
    QByteArray body;
};

Exchange finish(QNetworkReply* pending, bool ignoreTls = false) {
    std::unique_ptr<QNetworkReply> reply(pending);
    if (ignoreTls) reply->ignoreSslErrors();
    QEventLoop loop;
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    if (!reply->isFinished()) loop.exec();
    return {reply->error(), reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(),
            reply->readAll()};
}

QUrl url(const RawServer& server, const char* path = "/x", const char* scheme = "http") {
    return QUrl(QString::fromStdString(std::string(scheme) + "://" + server.authority() + path));
}

Exchange get(const RawServer& server, const char* path = "/x") {
    QNetworkAccessManager manager;
    return finish(manager.get(QNetworkRequest(url(server, path))));
}

Exchange post(const RawServer& server, const QByteArray& body,
              const char* type = "application/x-www-form-urlencoded") {
    QNetworkAccessManager manager;
    QNetworkRequest request(url(server));
    request.setHeader(QNetworkRequest::ContentTypeHeader, type);
    return finish(manager.post(request, body));
}

}  // namespace

TEST(SupportRawServer, RecordsARequestByteForByte) {
    RawServer server({Reply::json(R"({"status":1})")});
    QNetworkAccessManager manager;
    QNetworkRequest request(url(server, "/a%20b?k=v%2Fw&k=2"));
    request.setRawHeader("X-oDd", " v ");
    const Exchange exchange = finish(manager.get(request));
    EXPECT_EQ(exchange.status, 200);
    EXPECT_EQ(exchange.body, "{\"status\":1}");

    const wire::Request got = server.onlyRequest();
    EXPECT_TRUE(got.complete);
    EXPECT_EQ(got.line, "GET /a%20b?k=v%2Fw&k=2 HTTP/1.1");
    EXPECT_EQ(got.path(), "/a%20b");
    EXPECT_EQ(got.header("host"), server.authority());
    EXPECT_EQ(got.headers[0].first, "Host");
    EXPECT_EQ(got.headerCount("X-oDd"), 1u);
    EXPECT_EQ(got.raw.substr(0, got.line.size() + 2), got.line + "\r\n");
    ASSERT_EQ(got.query().size(), 2u);
    EXPECT_EQ(got.query()[0].rawValue, "v%2Fw");
    EXPECT_EQ(got.query()[0].value, "v/w");
}

TEST(SupportRawServer, FollowsTheScriptAndRepeatsItsLastStep) {
    RawServer server({Reply::text("1"), Reply::status(503, "2")});
    EXPECT_EQ(get(server).body, "1");
    EXPECT_EQ(get(server).status, 503);
    EXPECT_EQ(get(server).status, 503);
    EXPECT_EQ(server.requestCount(), 3u);
    EXPECT_EQ(server.connectionCount(), 3u);
}

TEST(SupportRawServer, ClosesBehindTheScriptIfTold) {
    RawServer::Options options;
    options.repeatLast = false;
    RawServer server({Reply::text("1")}, options);
    EXPECT_EQ(get(server).error, 0);
    EXPECT_NE(get(server).error, 0);
}

TEST(SupportRawServer, ReadsFormFieldsRawAndDecoded) {
    RawServer server({Reply::text("")});
    post(server, "user=a%40b+c&empty=&bare");
    const auto form = server.onlyRequest().form();
    ASSERT_EQ(form.size(), 3u);
    EXPECT_EQ(form[0].rawValue, "a%40b+c");
    EXPECT_EQ(form[0].value, "a@b c");
    EXPECT_EQ(form[1].key, "empty");
    EXPECT_EQ(form[2].key, "bare");
    EXPECT_EQ(server.onlyRequest().bodySha256, wire::sha256Hex("user=a%40b+c&empty=&bare"));
}

TEST(SupportRawServer, ReadsMultipartBodies) {
    RawServer server({Reply::text("")});
    post(
        server,
        "--B\r\nContent-Disposition: form-data; name=\"v\"\r\n\r\n1\r\n"
        "--B\r\nContent-Disposition: form-data; name=\"f\"; filename=\"a;b.txt\"\r\nContent-Type: x/y\r\n\r\n"
        "\r\n--X\r\n\r\n--B--",
        "multipart/form-data; boundary=B");
    const wire::Multipart body = server.onlyRequest().multipart();
    ASSERT_EQ(body.parts.size(), 2u);
    EXPECT_EQ(body.part("v").body, "1");
    EXPECT_EQ(body.part("v").filename, std::nullopt);
    EXPECT_EQ(body.part("f").filename, "a;b.txt");
    EXPECT_EQ(body.part("f").header("content-type"), "x/y");
    EXPECT_EQ(body.part("f").body, "\r\n--X\r\n");
    EXPECT_TRUE(body.closed);
    EXPECT_EQ(body.epilogue, "");
    EXPECT_THROW(body.part("w"), std::runtime_error);
}

TEST(SupportRawServer, KeepsOnlyAsMuchOfABodyAsItMay) {
    RawServer::Options options;
    options.keepBody = 10;
    RawServer server({Reply::text("")}, options);
    const std::string body = wire::pattern(3000000);
    post(server, QByteArray::fromStdString(body), "application/octet-stream");
    const wire::Request got = server.onlyRequest();
    EXPECT_EQ(got.body, body.substr(0, 10));
    EXPECT_EQ(got.bodySize, body.size());
    EXPECT_EQ(got.bodySha256, wire::sha256Hex(body));
}

TEST(SupportRawServer, ShowsThatAnUnansweredRequestIsSentAgain) {
    RawServer server({Reply::closeBeforeReply()});
    EXPECT_NE(post(server, "a=1").error, 0);
    EXPECT_GT(server.requestCount(), 1u);  // Qt's own doing: the reason why every body needs a guard
}

TEST(SupportRawServer, ClosesAndResetsInsideTheReply) {
    const std::string body(1000, 'x');
    {
        RawServer server({Reply::text(body).closeAfterBodyBytes(10)});
        const Exchange exchange = get(server);
        EXPECT_EQ(exchange.error, QNetworkReply::RemoteHostClosedError);
        EXPECT_EQ(exchange.body.size(), 10);
    }
    {
        RawServer server({Reply::text(body).resetAfterBodyBytes(10)});
        EXPECT_NE(get(server).error, 0);
    }
    {
        RawServer server({Reply::text(body).closeAfterBytes(5)});
        const Exchange exchange = get(server);
        EXPECT_NE(exchange.error, 0);
        EXPECT_EQ(exchange.status, 0);
    }
}

TEST(SupportRawServer, FramesBodiesInEveryWay) {
    const std::string body = wire::pattern(5000);
    const QByteArray expected = QByteArray::fromStdString(body);
    RawServer server({Reply::text(body).chunked(), Reply::text(body).gzip(),
                      Reply::text(body).chunked(1000).gzip(), Reply::text(body).trickle(500),
                      Reply::generated(5000, wire::fillPattern), Reply::text(body).contentLength(5001),
                      Reply::text(body).contentLength(4999)});
    for (int i = 0; i < 5; ++i) {
        const Exchange exchange = get(server);
        EXPECT_EQ(exchange.error, 0) << i;
        EXPECT_TRUE(exchange.body == expected) << i;
    }
    EXPECT_EQ(get(server).error, QNetworkReply::RemoteHostClosedError);
    EXPECT_EQ(get(server).body.size(), 4999);
}

TEST(SupportRawServer, EndsABodyByClosing) {
    // Its own server: Qt now and then asks again when body and end come together.
    RawServer server({Reply::text("hello").untilClose()});
    EXPECT_EQ(get(server).body, "hello");
    EXPECT_EQ(server.request(0).line, "GET /x HTTP/1.1");
}

TEST(SupportRawServer, StallsUntilTheClientGivesUp) {
    RawServer server({Reply::stall()});
    QNetworkAccessManager manager;
    std::unique_ptr<QNetworkReply> reply(manager.get(QNetworkRequest(url(server))));
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, reply.get(), [&] {
        if (server.requestCount() == 1) reply->abort();
    });
    poll.start(1);
    QEventLoop loop;
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    EXPECT_EQ(reply->error(), QNetworkReply::OperationCanceledError);
    EXPECT_TRUE(server.waitUntilAllClosed());
}

TEST(SupportRawServer, EndsWhileAClientStillWaits) {
    QNetworkAccessManager manager;
    std::unique_ptr<QNetworkReply> reply;
    {
        RawServer server({Reply::stall()});
        reply.reset(manager.get(QNetworkRequest(url(server))));
        QEventLoop loop;
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
            if (server.requestCount() == 1) loop.quit();
        });
        poll.start(1);
        loop.exec();
    }
    EXPECT_NE(finish(reply.release()).error, 0);
}

TEST(SupportRawServer, HoldsAnAnswerUntilItIsReleased) {
    RawServer server({Reply::text("late").held()});
    QNetworkAccessManager manager;
    QNetworkReply* reply = manager.get(QNetworkRequest(url(server)));
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, reply, [&] {
        if (server.requestCount() != 1 || reply->isFinished()) return;
        poll.stop();
        server.release();
    });
    poll.start(1);
    EXPECT_EQ(finish(reply).body, "late");
}

TEST(SupportRawServer, BreaksOffInsideTheRequestBody) {
    RawServer server({Reply::closeDuringBody(1000)});
    EXPECT_NE(post(server, QByteArray(8 << 20, 'x')).error, 0);
    const wire::Request got = server.request(0);
    EXPECT_EQ(got.bodySize, 1000u);
    EXPECT_FALSE(got.complete);
}

TEST(SupportRawServer, AnswersInsideTheRequestBody) {
    RawServer server({Reply::status(413, "no").answerDuringBody(1000)});
    EXPECT_EQ(post(server, QByteArray(1 << 20, 'x')).status, 413);
}

TEST(SupportRawServer, ReadsABodySlowly) {
    RawServer server({Reply::text("ok").readSlowly(64 << 10)});
    EXPECT_EQ(post(server, QByteArray(1 << 20, 'x')).body, "ok");
    EXPECT_EQ(server.onlyRequest().bodySize, 1u << 20);
}

TEST(SupportRawServer, SpeaksTlsWithACertificateThatNobodyTrusts) {
    for (const Certificate kind : {Certificate::SelfSigned, Certificate::Expired}) {
        RawServer::Options options;
        options.certificate = kind;
        RawServer server({Reply::text("hidden")}, options);
        QNetworkAccessManager manager;
        EXPECT_EQ(finish(manager.get(QNetworkRequest(url(server, "/", "https")))).error,
                  QNetworkReply::SslHandshakeFailedError);
        QNetworkAccessManager careless;
        EXPECT_EQ(finish(careless.get(QNetworkRequest(url(server, "/", "https"))), true).body, "hidden");
        EXPECT_EQ(server.requestCount(), 1u);
    }
}

TEST(SupportRawServer, ClosesOnAccept) {
    RawServer server({Reply::closeOnAccept()});
    EXPECT_NE(get(server).error, 0);
    EXPECT_EQ(server.requestCount(), 0u);
    EXPECT_GE(server.connectionCount(), 1u);
}

TEST(SupportRawServer, AnswersByAFunctionOfTheRequest) {
    RawServer server([](const wire::Request& request) { return Reply::text(request.path()); });
    EXPECT_EQ(get(server, "/one").body, "/one");
    EXPECT_EQ(get(server, "/two").body, "/two");
}

TEST(SupportRawServer, RefusedPortRefuses) {
    wire::RefusedPort port;
    QNetworkAccessManager manager;
    const QUrl target(QString("http://127.0.0.1:%1/").arg(port.port()));
    EXPECT_EQ(finish(manager.get(QNetworkRequest(target))).error, QNetworkReply::ConnectionRefusedError);
}
