// Connections that break: a body reaches a server once, and nothing waits for ever.

#include <QFile>
#include <QNetworkReply>

#include "wire/worker_support.h"

using namespace wire;

namespace {

enum class Road { Form, EmptyForm, Put, Custom, Upload, LargeUpload, Download };

std::string nameOf(const testing::TestParamInfo<std::tuple<Road, bool>>& info) {
    static const char* const names[] = {"Form",   "EmptyForm",   "Put",     "Custom",
                                        "Upload", "LargeUpload", "Download"};
    return std::string(names[static_cast<int>(std::get<0>(info.param))]) +
           (std::get<1>(info.param) ? "Tls" : "Plain");
}

/// All that sends a body, over both kinds of connection.
class LostConnection : public testing::TestWithParam<std::tuple<Road, bool>> {
protected:
    /// Runs the exchange and gives the network error.
    int run(RawServer& server) {
        const auto [road, secure] = GetParam();
        const char* method = road == Road::Put ? "PUT" : road == Road::Custom ? "PROPFIND" : "POST";
        HttpRequestInput input = secure ? secureRequest(server, method) : request(server, method);
        if (road != Road::EmptyForm) input.add_var("a", "b");
        if (road == Road::Upload || road == Road::LargeUpload) {
            const std::string path = m_dir.write("f", pattern(road == Road::Upload ? 100 : 4 << 20));
            input.add_file("Filedata", QString::fromStdString(path), "f", "application/octet-stream", 4 << 20,
                           0, false);
            worker.upload(&input, "Upload", false, nullptr, nullptr);
        } else if (road == Road::Download) {
            QFile file(QString::fromStdString(m_dir.file("f")));
            EXPECT_EQ(worker.download(&input, 5, 0, nullptr, nullptr, &file), 0);
        } else {
            EXPECT_EQ(worker.execute(&input), worker.error_type);
        }
        return worker.error_type;
    }

    std::unique_ptr<RawServer> serve(Reply reply) {
        RawServer::Options options;
        if (std::get<1>(GetParam())) options.certificate = Certificate::SelfSigned;
        return std::make_unique<RawServer>(std::vector<Reply>{std::move(reply)}, options);
    }

    HttpRequestWorker worker;

private:
    TempDir m_dir;
};

}  // namespace

TEST_P(LostConnection, ClosedBeforeTheReplyTheRequestArrivesOnceAndEndsInTwo) {
    const auto server = serve(Reply::closeBeforeReply());
    EXPECT_EQ(run(*server), 2);
    EXPECT_EQ(worker.http_status, 0);
    EXPECT_EQ(server->requestCount(), 1u);
}

TEST_P(LostConnection, ResetBeforeTheReplyTheRequestArrivesOnceAndEndsInTwo) {
    const auto server = serve(Reply::resetBeforeReply());
    EXPECT_EQ(run(*server), 2);
    EXPECT_EQ(server->requestCount(), 1u);
}

TEST_P(LostConnection, ClosedOnAcceptItEndsWithoutARequest) {
    const auto server = serve(Reply::closeOnAccept());
    EXPECT_NE(run(*server), 0);
    EXPECT_EQ(worker.http_status, 0);
    EXPECT_EQ(server->requestCount(), 0u);
}

TEST_P(LostConnection, ClosedInsideTheHeadItArrivesOnce) {
    for (std::uint64_t bytes : {1, 9, 20}) {
        const auto server = serve(Reply::text("hello").closeAfterBytes(bytes));
        EXPECT_EQ(run(*server), 2);
        EXPECT_EQ(server->requestCount(), 1u);
    }
}

TEST_P(LostConnection, ClosedInsideTheReplysBodyItEndsInTwo) {
    const auto server = serve(Reply::text("hello").closeAfterBodyBytes(2));
    EXPECT_EQ(run(*server), 2);
    EXPECT_EQ(worker.http_status, 200);
    EXPECT_EQ(server->requestCount(), 1u);
}

TEST_P(LostConnection, AReplyThatTheConnectionsEndEndsIsComplete) {
    for (int i = 0; i < 20; ++i) {
        const auto server = serve(Reply::text("hello").untilClose());
        EXPECT_EQ(run(*server), 0);
        EXPECT_EQ(worker.http_status, 200);
        EXPECT_EQ(server->requestCount(), 1u);
    }
}

INSTANTIATE_TEST_SUITE_P(Roads, LostConnection,
                         testing::Combine(testing::Values(Road::Form, Road::EmptyForm, Road::Put,
                                                          Road::Custom, Road::Upload, Road::LargeUpload,
                                                          Road::Download),
                                          testing::Bool()),
                         nameOf);

TEST(WorkerFaults, AnUploadThatLosesItsConnectionUnderTheBodyEndsInTwoOnceOnly) {
    const TempDir dir;
    const std::string path = dir.write("f", pattern(16 << 20));
    for (std::uint64_t bytes : {0, 1, 1000, 1000000}) {
        for (const Reply& reply : {Reply::closeDuringBody(bytes), Reply::resetDuringBody(bytes)}) {
            RawServer server({reply});
            HttpRequestInput input(urlOf(server), "POST", false);  // no time-out, as uploads have
            input.add_file("Filedata", QString::fromStdString(path), "f", "", 16 << 20, 0, false);
            HttpRequestWorker worker;
            EXPECT_EQ(worker.upload(&input, "Upload", false, nullptr, nullptr), 2) << bytes;
            EXPECT_EQ(worker.http_status, 0);
            EXPECT_EQ(server.requestCount(), 1u) << bytes;
        }
    }
}

TEST(WorkerFaults, AGetMayBeRepeatedOnALostConnectionAndEndsInTwo) {
    RawServer server({Reply::closeBeforeReply()});
    HttpRequestInput input = request(server);
    HttpRequestWorker worker;
    EXPECT_EQ(worker.execute(&input), 2);
    EXPECT_GE(server.requestCount(), 1u);
}

TEST(WorkerFaults, ARefusedConnectionIsError1) {
    const RefusedPort port;
    for (const char* method : {"GET", "POST"}) {
        HttpRequestInput input(QString("http://127.0.0.1:%1/").arg(port.port()), method, false);
        input.add_var("a", "b");
        HttpRequestWorker worker;
        EXPECT_EQ(worker.execute(&input), 1);
        EXPECT_EQ(worker.http_status, 0);
    }
}

TEST(WorkerFaults, ABodyShorterThanItsStatedLengthIsError2WithWhatCame) {
    RawServer server({Reply::text("hello").contentLength(100)});
    HttpRequestInput input = request(server, "POST");
    HttpRequestWorker worker;
    EXPECT_EQ(worker.execute(&input), 2);
    EXPECT_EQ(worker.response, "hello");
}

TEST(WorkerFaults, ABodyLongerThanItsStatedLengthIsCutThere) {
    RawServer server({Reply::text("hello").contentLength(3)});
    HttpRequestInput input = request(server, "POST");
    HttpRequestWorker worker;
    EXPECT_EQ(worker.execute(&input), 0);
    EXPECT_EQ(worker.response, "hel");
}

TEST(WorkerFaults, WhatIsntHttpIsAnErrorAndIsAskedOnce) {
    RawServer server({Reply::bytes("this is no reply\r\n\r\n").close()});
    HttpRequestInput input = request(server, "POST");
    input.add_var("a", "b");
    HttpRequestWorker worker;
    EXPECT_NE(worker.execute(&input), 0);
    EXPECT_EQ(server.requestCount(), 1u);
}

TEST(WorkerFaults, AnErrorThatComesWhileTheBodyGoesOutIsRead) {
    const TempDir dir;
    const std::string path = dir.write("f", pattern(4 << 20));
    RawServer server({Reply::status(503, "full").answerDuringBody(1000)});
    HttpRequestInput input = request(server, "POST");
    input.add_file("Filedata", QString::fromStdString(path), "f", "", 4 << 20, 0, false);
    HttpRequestWorker worker;
    EXPECT_EQ(worker.upload(&input, "Upload", false, nullptr, nullptr), 403);
    EXPECT_EQ(worker.http_status, 503);
}

TEST(WorkerFaults, AFileThatGivesLessThanItsSizeEndsTheUploadAsAnError) {
    // The kernel states a page for it and gives a line.
    const QString path = "/sys/kernel/uevent_seqnum";
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.readAll().size() >= file.size())
        GTEST_SKIP() << "no such file here";
    RawServer server({Reply::text("ok")});
    HttpRequestInput input(urlOf(server), "POST", false);  // no time-out, as uploads have
    input.add_file("Filedata", path, "f", "", file.size(), 0, false);
    HttpRequestWorker worker;
    EXPECT_EQ(worker.upload(&input, "Upload", false, nullptr, nullptr), 99);
    for (const Request& sent : server.requests()) EXPECT_FALSE(sent.complete);
}
