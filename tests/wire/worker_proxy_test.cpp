// Through a real proxy, with and without a password.

#include <QFile>

#include "support/proxy.h"
#include "support/systemproxy.h"
#include "wire/worker_support.h"

using namespace wire;

namespace {

enum class Way { Get, Post, Upload, LargeUpload, Download };

std::string nameOf(const testing::TestParamInfo<std::tuple<Way, bool>>& info) {
    static const char* const names[] = {"Get", "Post", "Upload", "LargeUpload", "Download"};
    return std::string(names[static_cast<int>(std::get<0>(info.param))]) +
           (std::get<1>(info.param) ? "Tls" : "Plain");
}

QString hostOf(const TinyProxy& proxy) {
    return QString("127.0.0.1:%1").arg(proxy.port());
}

class ThroughProxy : public testing::TestWithParam<std::tuple<Way, bool>> {
protected:
    void SetUp() override {
        if (!TinyProxy::installed()) GTEST_SKIP() << "tinyproxy isn't installed";
        RawServer::Options options;
        if (std::get<1>(GetParam())) options.certificate = Certificate::SelfSigned;
        server = std::make_unique<RawServer>(std::vector<Reply>{Reply::text("hello")}, options);
    }

    int run() {
        const auto [way, secure] = GetParam();
        const char* method = way == Way::Get ? "GET" : "POST";
        HttpRequestInput input = secure ? secureRequest(*server, method) : request(*server, method);
        input.add_var("a", "b");
        if (way == Way::Upload || way == Way::LargeUpload) {
            const std::string path = m_dir.write("f", pattern(way == Way::Upload ? 100 : 4 << 20));
            input.add_file("Filedata", QString::fromStdString(path), "f", "", 4 << 20, 0, false);
            worker.upload(&input, "Upload", false, nullptr, nullptr);
        } else if (way == Way::Download) {
            QFile file(QString::fromStdString(m_dir.file("f")));
            EXPECT_EQ(worker.download(&input, 5, 0, nullptr, nullptr, &file), 0);
        } else {
            worker.execute(&input);
        }
        return worker.error_type;
    }
    /// A download doesn't report what the network did, so nobody asks the proxy what it said.
    void expectRefused(bool knownOfADownload) {
        const int error = run();
        EXPECT_EQ(server->requestCount(), 0u);
        if (std::get<0>(GetParam()) == Way::Download && !knownOfADownload) return;
        EXPECT_EQ(error, 105);
        EXPECT_EQ(worker.http_status, 407);
    }

    std::unique_ptr<RawServer> server;
    HttpRequestWorker worker;

private:
    TempDir m_dir;
};

}  // namespace

TEST_P(ThroughProxy, WithoutAPasswordItGoesThrough) {
    TinyProxy proxy;
    worker.setProxy(kProxyManual, hostOf(proxy), "", "");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(worker.http_status, 200);
    EXPECT_EQ(server->requestCount(), 1u);
    EXPECT_TRUE(proxy.waitForLog("Request"));
}

TEST_P(ThroughProxy, WithTheRightPasswordItGoesThroughAndTheServerDoesntSeeIt) {
    TinyProxy proxy("user", "secret");
    worker.setProxy(kProxyManual, hostOf(proxy), "user", "secret");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(worker.http_status, 200);
    EXPECT_EQ(server->onlyRequest().headerCount("Proxy-Authorization"), 0u);
}

TEST_P(ThroughProxy, AWrongPasswordIs407) {
    TinyProxy proxy("user", "secret");
    worker.setProxy(kProxyManual, hostOf(proxy), "user", "wrong");
    expectRefused(!std::get<1>(GetParam()));
}

TEST_P(ThroughProxy, NoPasswordIs407) {
    TinyProxy proxy("user", "secret");
    worker.setProxy(kProxyManual, hostOf(proxy), "", "");
    expectRefused(true);
}

TEST_P(ThroughProxy, AProxyThatIsntThereIsAnError) {
    worker.setProxy(kProxyManual, QString("127.0.0.1:%1").arg(freePort()), "user", "secret");
    EXPECT_NE(run(), 0);
    EXPECT_EQ(worker.http_status, 0);
}

INSTANTIATE_TEST_SUITE_P(Ways, ThroughProxy,
                         testing::Combine(testing::Values(Way::Get, Way::Post, Way::Upload, Way::LargeUpload,
                                                          Way::Download),
                                          testing::Bool()),
                         nameOf);

TEST(WorkerProxy, InMode1HostUserAndPasswordArentConsulted) {
    RawServer server({Reply::text("hello")});
    HttpRequestInput input = request(server, "POST");
    HttpRequestWorker worker;
    worker.setProxy(kProxySystem, "127.0.0.1:1", "user", "secret");
    EXPECT_EQ(worker.execute(&input), 0);
    EXPECT_EQ(server.onlyRequest().headerCount("Proxy-Authorization"), 0u);
}

TEST(WorkerProxy, TheSecondProxyReplacesTheFirst) {
    RawServer server({Reply::text("hello")});
    HttpRequestInput input = request(server);
    HttpRequestWorker worker;
    worker.setProxy(kProxyManual, "127.0.0.1:1", "user", "secret");
    worker.setProxy(kProxySystem, "", "", "");
    EXPECT_EQ(worker.execute(&input), 0);
}

TEST(WorkerProxy, APortAbove32767CountsAsNone) {
    if (!TinyProxy::installed()) GTEST_SKIP() << "tinyproxy isn't installed";
    RawServer server({Reply::text("hello")});  // the system hands out ports above 32767
    ASSERT_GT(server.port(), 32767);
    HttpRequestInput input(QString("http://127.0.0.1:1/"), "GET", false);
    input.set_timeout_msec(kPatience);
    HttpRequestWorker worker;
    worker.setProxy(kProxyManual, QString("127.0.0.1:%1").arg(server.port()), "", "");
    EXPECT_NE(worker.execute(&input), 0);
    EXPECT_EQ(server.connectionCount(), 0u);
}

TEST(WorkerProxy, A401ThatTheProxyPassesOnStaysA401) {
    if (!TinyProxy::installed()) GTEST_SKIP() << "tinyproxy isn't installed";
    RawServer server({Reply::status(401, "no").header("WWW-Authenticate", "Basic realm=\"nas\"")});
    TinyProxy proxy("user", "secret", TinyProxy::WithVia);
    HttpRequestInput input = request(server, "POST");
    HttpRequestWorker worker;
    worker.setProxy(kProxyManual, hostOf(proxy), "user", "secret");
    EXPECT_EQ(worker.execute(&input), 204);
    EXPECT_EQ(worker.http_status, 401);
}

// Qt takes no application proxy for this machine's own addresses, so the request is for another host, which
// the proxy can't reach: it looks for it once it has accepted the password. Its answer may be lost, as it
// closes without reading the body.
TEST(WorkerProxy, InMode1ABodyGoesThroughTheApplicationsProxyWithItsPassword) {
    if (!TinyProxy::installed()) GTEST_SKIP() << "tinyproxy isn't installed";
    const TempDir dir;
    const std::string path = dir.write("f", "content");
    for (const char* method : {"GET", "POST", "upload"}) {
        const TinyProxy proxy("user", "secret");
        const SystemProxy system(proxy.port(), "user", "secret");
        const bool upload = std::string(method) == "upload";
        HttpRequestInput input("http://nas.invalid/", upload ? "POST" : method, false);
        input.set_timeout_msec(kPatience);
        HttpRequestWorker worker;
        worker.setProxy(kProxySystem, "nowhere.invalid:1", "x", "y");
        if (upload) {
            input.add_file("Filedata", QString::fromStdString(path), "f", "", 7, 0, false);
            worker.upload(&input, "Upload", false, nullptr, nullptr);
        } else {
            worker.execute(&input);
        }
        EXPECT_TRUE(proxy.waitForLog("Could not retrieve address info for nas.invalid")) << method;
    }
}

TEST(WorkerProxy, AConnectionThatTheServerBreaksIsNoRefusal) {
    if (!TinyProxy::installed()) GTEST_SKIP() << "tinyproxy isn't installed";
    const TempDir dir;
    const std::string path = dir.write("f", pattern(4 << 20));
    RawServer server({Reply::resetDuringBody(0)});
    TinyProxy proxy("user", "secret");
    HttpRequestInput input = request(server, "POST");
    input.add_file("Filedata", QString::fromStdString(path), "f", "", 4 << 20, 0, false);
    HttpRequestWorker worker;
    worker.setProxy(kProxyManual, hostOf(proxy), "user", "secret");
    EXPECT_NE(worker.upload(&input, "Upload", false, nullptr, nullptr), 0);
    EXPECT_NE(worker.http_status, 407);
    // What the proxy was asked about it, it didn't pass on.
    EXPECT_EQ(server.requestCount(), 1u);
}
